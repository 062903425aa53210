#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

/// The objects in the order of the descriptors; equal ones stay in the order in which they came.
///
/// Each key is read once per object. Missing values come first, numbers and dates by value, texts by
/// code point; values of types that have no order count as equal.
ArrayController::ObjectList sortedObjects(const ArrayController::ObjectList &objects,
                                          const QList<ArrayController::SortDescriptor> &descriptors);

} // namespace tembra

#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

/// The objects in the order of the descriptors; equal ones in the order of @p tieKey, without one in
/// the order in which they came.
///
/// Each key is read once per object. Missing values come first, numbers and dates by value, texts by
/// code point; values of types that have no order count as equal.
ArrayController::ObjectList sortedObjects(const ArrayController::ObjectList &objects,
                                          const QList<ArrayController::SortDescriptor> &descriptors,
                                          const ArrayController::TieKey &tieKey = {});

} // namespace tembra

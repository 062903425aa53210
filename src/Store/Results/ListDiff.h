#pragma once

#include "Store/Objects/RowChange.h"

#include <span>
#include <vector>

namespace tembra {

/// The steps that lead from the rows @p before to the rows @p after, in the order RowChange
/// describes, without updates. Keys are different from each other within a list. Moves as few rows
/// as possible.
std::vector<RowChange> listDiff(std::span<const qint64> before, std::span<const qint64> after);

} // namespace tembra

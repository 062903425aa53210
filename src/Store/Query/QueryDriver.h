#pragma once

#include "Store/Query/PredicateNode.h"

#include <vector>

namespace tembra {

// Which of several conditions leads to the records, as far as one can tell.

/// True for a comparison that few records pass.
bool narrows(const Comparison &comparison);

/// The condition through which the records are found; only an equality with a record leads anywhere.
/// A plain one is quicker than one with ANY, which then merely tests what the plain one finds. Two
/// with ANY together leave so few records that going through the first of them is quicker still.
/// Null when none leads anywhere.
const PredicateNode *driverAmong(const std::vector<const PredicateNode *> &parts);
bool leadsThroughAny(const PredicateNode *driver);

bool isPlainRecordEquality(const PredicateNode &part);

} // namespace tembra

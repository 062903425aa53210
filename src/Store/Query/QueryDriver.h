#pragma once

#include "Store/Query/PredicateNode.h"

#include <vector>

namespace tembra {

// A query's driver is the condition whose index SQLite walks through first; the other conditions are
// tests of the rows that it gives.

/// True for a comparison that few records pass.
bool isSelective(const Comparison &comparison);

/// The condition that drives a query of which all of @p conditions must hold; only an equality with
/// a record can, as relationships are indexed. One without ANY is the quicker driver, unless two
/// have ANY: together these leave so few records that the first of them is. Null when none can.
const PredicateNode *chooseDriver(const std::vector<const PredicateNode *> &conditions);
bool hasAny(const PredicateNode *driver);

/// True for an equality with a record, without ANY.
bool isPlainRecordEquality(const PredicateNode &condition);

} // namespace tembra

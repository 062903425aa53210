#pragma once

#include "Store/File/StoreFault.h"

namespace tembra {

class Connection;
class ObjectModel;

/// Makes sure that a store's tables and indexes are exactly those that the model's migrations up to
/// @p version make. An index that says something else than its table, a trigger or a view would
/// have statements do what this program never asked for.
StoreResult<void> checkSchema(Connection &connection, const ObjectModel &model, int version);

} // namespace tembra

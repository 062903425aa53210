#pragma once

#include "Foundation/Result.h"
#include "Store/ObjectID.h"

#include <vector>

namespace tembra {

class RowReader;
class StoreSchema;

/// The records that a deletion takes: those it was asked for and all that cascades from them, as
/// explicit lists of keys.
class DeletionPlan
{
public:
    static Result<DeletionPlan> cascadingFrom(const std::vector<ObjectID> &roots,
                                              const StoreSchema &schema, RowReader &reader);

    bool contains(ObjectID id) const;
    /// Ascending.
    const std::vector<qint64> &keys(int entity) const { return m_keys[size_t(entity)]; }
    size_t count() const;

private:
    explicit DeletionPlan(int entityCount);

    std::vector<std::vector<qint64>> m_keys;
};

} // namespace tembra

#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"

#include <vector>

namespace tembra {

class RowReader;
class ObjectModel;
struct ToOneDescription;

/// The records that a deletion takes: those it was asked for and all that cascades from them, as
/// explicit lists of keys. Records at the end of a cascade may be very many; nothing refers to
/// them, so they are named by their owners instead.
class DeletionPlan
{
public:
    static Result<DeletionPlan> cascadingFrom(const std::vector<ObjectID> &roots,
                                              const ObjectModel &schema, RowReader &reader);

    /// Ascending; of an entity that is deleted by owner, none.
    const std::vector<qint64> &keys(int entity) const { return m_keys[size_t(entity)]; }
    /// The column by which the deleted records of an entity refer to deleted owners; null for those
    /// that are named by keys().
    const ToOneDescription *ownerColumn(int entity) const { return m_ownerColumns[size_t(entity)]; }
    /// Whether the record is deleted by its key.
    bool contains(ObjectID id) const;

private:
    explicit DeletionPlan(size_t entityCount);

    std::vector<std::vector<qint64>> m_keys;
    std::vector<const ToOneDescription *> m_ownerColumns;
};

} // namespace tembra

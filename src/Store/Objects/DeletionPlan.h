#pragma once

#include "Foundation/Result.h"
#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/ObjectModel.h"

#include <optional>
#include <vector>

namespace tembra {

/// The records that a deletion takes: those it was asked for and all that cascades from them, as
/// explicit lists of keys. Very many records at the end of a cascade may be left for later: those
/// are known by whom they belong to.
class DeletionPlan
{
public:
    enum class Extent { Everything, MayLeaveRows };
    static Result<DeletionPlan> cascadingFrom(const std::vector<ObjectID> &roots,
                                              const ObjectModel &schema, RowReader &reader,
                                              Extent extent);

    /// By which records that are left refer to their owners, which are in keys().
    const std::optional<ToOneDescription> &left() const { return m_left; }
    /// Whether a record with such a row is left.
    bool leaves(int entity, const RowReader::Row &row) const;

    bool contains(ObjectID id) const;
    /// Ascending.
    const std::vector<qint64> &keys(int entity) const { return m_keys[size_t(entity)]; }
    size_t count() const;

private:
    explicit DeletionPlan(int entityCount);

    std::vector<std::vector<qint64>> m_keys;
    std::optional<ToOneDescription> m_left;
};

} // namespace tembra

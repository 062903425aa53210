#include "Store/Objects/DeletionPlan.h"

#include "Store/Rows/LeftoverRows.h"

#include <algorithm>

namespace tembra {

DeletionPlan::DeletionPlan(int entityCount) : m_keys(size_t(entityCount)) {}

Result<DeletionPlan> DeletionPlan::cascadingFrom(const std::vector<ObjectID> &roots,
                                                 const ObjectModel &schema, RowReader &reader,
                                                 Extent extent)
{
    DeletionPlan plan(schema.entityCount());
    for (const ObjectID id : roots)
        plan.m_keys[size_t(id.entity)].push_back(id.key);
    // Cascades lead from an entity to later ones only, so one pass finds them all.
    for (int entity = 0; entity < schema.entityCount(); ++entity) {
        std::vector<qint64> &keys = plan.m_keys[size_t(entity)];
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
        for (const ToOneDescription &column : schema.entity(entity).references) {
            if (column.rule != DeleteRule::Cascade)
                continue;
            if (extent == Extent::MayLeaveRows && keys.size() >= LeftoverRows::fewestOwners
                && LeftoverRows::canBeLeft(schema, column)) {
                plan.m_left = column;
                continue;
            }
            std::vector<qint64> &reached = plan.m_keys[size_t(column.entity)];
            const Result<void> done = reader.referrers(column, keys, [&](qint64 referrer, qint64) {
                reached.push_back(referrer);
            });
            if (!done)
                return failure(done.error());
        }
    }
    return plan;
}

bool DeletionPlan::leaves(int entity, const RowReader::Row &row) const
{
    if (!m_left || m_left->entity != entity)
        return false;
    const auto *owner = std::get_if<qint64>(&row[size_t(m_left->property)]);
    return owner && contains({m_left->destination, *owner});
}

bool DeletionPlan::contains(ObjectID id) const
{
    const std::vector<qint64> &known = keys(id.entity);
    return std::binary_search(known.begin(), known.end(), id.key);
}

size_t DeletionPlan::count() const
{
    size_t sum = 0;
    for (const auto &known : m_keys)
        sum += known.size();
    return sum;
}

} // namespace tembra

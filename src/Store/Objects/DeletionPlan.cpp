#include "Store/Objects/DeletionPlan.h"

#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectModel.h"

#include <algorithm>

namespace tembra {

namespace {

bool isEndOfCascade(const EntityDescription &table)
{
    return table.toOnes.size() == 1 && table.references.empty() && table.toManys.empty();
}

} // namespace

DeletionPlan::DeletionPlan(size_t entityCount) : m_keys(entityCount), m_ownerColumns(entityCount) {}

Result<DeletionPlan> DeletionPlan::cascadingFrom(const std::vector<ObjectID> &roots,
                                                 const ObjectModel &schema, RowReader &reader)
{
    DeletionPlan plan(size_t(schema.entityCount()));
    for (const ObjectID id : roots)
        plan.m_keys[size_t(id.entity)].push_back(id.key);
    // Cascades lead from an entity to later ones only, so one pass finds them all.
    for (int entity = 0; entity < schema.entityCount(); ++entity) {
        std::vector<qint64> &keys = plan.m_keys[size_t(entity)];
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
        if (keys.empty())
            continue;
        for (const ToOneDescription &column : schema.entity(entity).references) {
            std::vector<qint64> &reached = plan.m_keys[size_t(column.entity)];
            if (reached.empty() && isEndOfCascade(schema.entity(column.entity))) {
                plan.m_ownerColumns[size_t(column.entity)] = &column;
                continue;
            }
            const Result<void> done = reader.referrers(column, keys, [&](qint64 referrer, qint64) {
                reached.push_back(referrer);
            });
            if (!done)
                return failure(done.error());
        }
    }
    return plan;
}

bool DeletionPlan::contains(ObjectID id) const
{
    const std::vector<qint64> &known = keys(id.entity);
    return std::binary_search(known.begin(), known.end(), id.key);
}

} // namespace tembra

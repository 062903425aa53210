#include "Store/Objects/DeletionEffects.h"

#include "Store/Objects/DeletionPlan.h"
#include "Store/Schema/ObjectModel.h"

#include <algorithm>

namespace tembra {

QVarLengthArray<ToOneChange, 1> toOnesOf(const RowReader::Row &row, const ObjectModel &schema,
                                         int entity, bool appearing)
{
    QVarLengthArray<ToOneChange, 1> toOnes;
    for (const ToOneDescription &column : schema.entity(entity).toOnes) {
        const auto *key = std::get_if<qint64>(&row[size_t(column.property)]);
        if (key)
            toOnes.append({column.property, appearing ? 0 : *key, appearing ? *key : 0});
    }
    return toOnes;
}

Result<DeletionEffects> DeletionEffects::of(const DeletionPlan &plan, const ObjectModel &schema,
                                            RowReader &reader)
{
    DeletionEffects effects;
    effects.archive = std::make_shared<RecordArchive>(schema.entityCount());
    effects.changes.deleted.reserve(plan.count());
    for (int entity = 0; entity < schema.entityCount(); ++entity) {
        const size_t firstChange = effects.changes.deleted.size();
        const auto add = [&](qint64 key, const RowReader::Row &row) {
            effects.addRow(plan, schema, {entity, key}, row);
        };
        if (const Result<void> done = reader.rows(entity, plan.keys(entity), add); !done)
            return failure(done.error());
        effects.addVanished(plan, entity, firstChange);
        if (const Result<void> done = effects.addLinks(plan, schema, reader, entity); !done)
            return failure(done.error());
        if (const Result<void> done = effects.addCleared(plan, schema, reader, entity); !done)
            return failure(done.error());
    }
    if (plan.left())
        effects.changes.wholesale |= entityBit(plan.left()->entity);
    effects.archive->finish();
    return effects;
}

void DeletionEffects::addRow(const DeletionPlan &plan, const ObjectModel &schema, ObjectID id,
                             const RowReader::Row &row)
{
    archive->addRow(id, row);
    changes.deleted.push_back({id, allProperties, toOnesOf(row, schema, id.entity, false)});
    for (const ToOneChange &toOne : changes.deleted.back().toOnes) {
        const ToOneDescription &column = *schema.entity(id.entity).toOne(toOne.property);
        const ObjectID owner{column.destination, toOne.oldKey};
        if (column.inverse >= 0 && !plan.contains(owner))
            losses[{owner, column.inverse}].push_back(id.key);
    }
}

/// Records that are to be deleted but are not there any more are told as deleted all the same.
void DeletionEffects::addVanished(const DeletionPlan &plan, int entity, size_t firstChange)
{
    std::vector<ObjectChange> &deleted = changes.deleted;
    if (deleted.size() - firstChange == plan.keys(entity).size())
        return;
    std::vector<qint64> present;
    for (size_t i = firstChange; i < deleted.size(); ++i)
        present.push_back(deleted[i].id.key);
    std::sort(present.begin(), present.end());
    for (const qint64 key : plan.keys(entity)) {
        if (!std::binary_search(present.begin(), present.end(), key))
            deleted.push_back({{entity, key}, allProperties, {}});
    }
}

Result<void> DeletionEffects::addLinks(const DeletionPlan &plan, const ObjectModel &schema,
                                       RowReader &reader, int entity)
{
    for (const ToManyDescription &link : schema.entity(entity).toManys) {
        if (!link.joined)
            continue;
        const Result<void> done = reader.related(
            link, plan.keys(entity), [&](qint64 own, qint64 other) {
                archive->addLink(LinkKey::of(link, own, other));
                if (!plan.contains({link.destination, other}))
                    losses[{{link.destination, other}, link.inverse}].push_back(own);
            });
        if (!done)
            return done;
    }
    return {};
}

Result<void> DeletionEffects::addCleared(const DeletionPlan &plan, const ObjectModel &schema,
                                         RowReader &reader, int entity)
{
    for (const ToOneDescription &column : schema.entity(entity).references) {
        if (column.rule != DeleteRule::Nullify)
            continue;
        const Result<void> done = reader.referrers(
            column, plan.keys(entity), [&](qint64 referrer, qint64 key) {
                if (!plan.contains({column.entity, referrer}))
                    archive->addCleared({{column.entity, referrer}, column.property, key});
            });
        if (!done)
            return done;
    }
    return {};
}

void RestorationEffects::addRow(ObjectID id, const RowReader::Row &row, const ObjectModel &schema)
{
    changes.inserted.push_back({id, allProperties, toOnesOf(row, schema, id.entity, true)});
    for (const ToOneChange &toOne : changes.inserted.back().toOnes) {
        const ToOneDescription &column = *schema.entity(id.entity).toOne(toOne.property);
        if (column.inverse >= 0)
            gains[{{column.destination, toOne.newKey}, column.inverse}].push_back(id.key);
    }
}

} // namespace tembra

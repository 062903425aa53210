#include "Store/Objects/RecordDeleter.h"

#include "Store/File/Statement.h"
#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/ContextWriter.h"
#include "Store/Objects/DeletionPlan.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/PropertyNotifications.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Objects/RelationshipChanges.h"
#include "Store/Rows/RecordArchive.h"
#include "Store/Rows/RowReader.h"
#include "Store/Rows/RowWriter.h"
#include "Store/Undo/UndoHistory.h"

#include <algorithm>

namespace tembra {

/// What a deletion takes, read before it is gone.
struct RecordDeleter::Deletion
{
    explicit Deletion(int entityCount) : archive(std::make_shared<RecordArchive>(entityCount)) {}

    std::shared_ptr<RecordArchive> archive;
    PendingChanges changes;
    RelationshipChanges losses;
    IdentityMap::ObjectList live;
    std::vector<std::pair<std::shared_ptr<ManagedObject>, RowReader::Row>> faults;
};

Result<void> RecordDeleter::deleteRecords(const std::vector<ObjectID> &roots)
{
    if (roots.empty())
        return {};
    // Somebody who hears that a record had been deleted elsewhere may edit another one.
    while (!m.edits.isEmpty()) {
        if (Result<void> written = m.writer.writeEdits(); !written)
            return written;
    }
    Deletion deletion(m.schema.entityCount());
    Result<void> done = m.writer.transact(
        [&](Transaction &transaction) { return deleteCascading(transaction, roots, deletion); });
    if (done)
        finish(deletion);
    return done;
}

Result<void> RecordDeleter::deleteCascading(Transaction &transaction,
                                            const std::vector<ObjectID> &roots, Deletion &deletion)
{
    const Result<DeletionPlan> plan = DeletionPlan::cascadingFrom(roots, m.schema, m.reader);
    if (!plan)
        return failure(plan.error());
    for (int entity = 0; entity < m.schema.entityCount(); ++entity) {
        Result<void> read = readRows(*plan, entity, deletion).and_then([&] {
            return readLinks(*plan, entity, deletion);
        });
        if (!read)
            return read;
    }
    deletion.archive->finish();
    for (int entity = m.schema.entityCount() - 1; entity >= 0; --entity) {
        if (Result<void> deleted = deleteRows(transaction, *plan, entity); !deleted)
            return deleted;
    }
    return {};
}

Result<void> RecordDeleter::readRows(const DeletionPlan &plan, int entity, Deletion &deletion)
{
    const EntityDescription &table = m.schema.entity(entity);
    std::vector<qint64> present;
    const auto add = [&](qint64 key, const Statement &row) {
        const ObjectID id{entity, key};
        deletion.archive->addRow(id, row, table.columns.size());
        present.push_back(key);
        ObjectChange change{id, allProperties, {}};
        for (const ToOneDescription &column : table.toOnes) {
            const ObjectID owner{column.destination, row.key(column.property + 1)};
            if (owner.isNull())
                continue;
            change.toOnes.append({column.property, owner.key, 0});
            if (column.inverse >= 0 && !plan.contains(owner))
                deletion.losses.add(owner, column.inverse, key);
        }
        deletion.changes.addDeleted(std::move(change));
        if (auto live = m.objects.find(id)) {
            if (IdentityMap::isFault(*live))
                deletion.faults.emplace_back(live, m.reader.decode(row, entity));
            deletion.live.append(std::move(live));
        }
    };
    if (const ToOneDescription *column = plan.ownerColumn(entity))
        return m.reader.storedReferrers(*column, plan.keys(column->destination), add);
    return m.reader.storedRows(entity, plan.keys(entity), add).map([&] {
        addVanished(plan, entity, std::move(present), deletion);
    });
}

/// Records that are to be deleted but are not there any more are told as deleted all the same.
void RecordDeleter::addVanished(const DeletionPlan &plan, int entity, std::vector<qint64> present,
                                Deletion &deletion)
{
    if (present.size() == plan.keys(entity).size())
        return;
    std::sort(present.begin(), present.end());
    for (const qint64 key : plan.keys(entity)) {
        if (std::binary_search(present.begin(), present.end(), key))
            continue;
        deletion.changes.addDeleted({{entity, key}, allProperties, {}});
        if (auto live = m.objects.find({entity, key}))
            deletion.live.append(std::move(live));
    }
}

Result<void> RecordDeleter::readLinks(const DeletionPlan &plan, int entity, Deletion &deletion)
{
    for (const ToManyDescription &link : m.schema.entity(entity).toManys) {
        if (!link.joined)
            continue;
        const auto add = [&](qint64 own, qint64 other) {
            const ObjectID otherID{link.destination, other};
            deletion.archive->addLink(LinkKey::of(link, own, other));
            if (plan.contains(otherID))
                return;
            deletion.changes.addUpdated(otherID, propertyBit(link.inverse));
            deletion.losses.add(otherID, link.inverse, own);
        };
        if (Result<void> done = m.reader.related(link, plan.keys(entity), add); !done)
            return done;
    }
    return {};
}

Result<void> RecordDeleter::deleteRows(Transaction &transaction, const DeletionPlan &plan,
                                       int entity)
{
    if (const ToOneDescription *column = plan.ownerColumn(entity))
        return m.rows.deleteReferrers(transaction, *column, plan.keys(column->destination));
    for (const ToManyDescription &link : m.schema.entity(entity).toManys) {
        if (!link.joined)
            continue;
        if (Result<void> done = m.rows.removeLinks(transaction, link, plan.keys(entity)); !done)
            return done;
    }
    return m.rows.deleteRows(transaction, entity, plan.keys(entity));
}

/// The deletion is certain now, so the hooks can be called: the values can still be read, and what
/// a hook deletes itself is undone before this, so that its links lead somewhere again.
void RecordDeleter::finish(Deletion &deletion)
{
    if (m.history)
        m.history->recordDeleted(deletion.archive);
    m.changes.add(deletion.changes.take());
    for (auto &[object, row] : deletion.faults)
        IdentityMap::setValues(*object, std::move(row));
    IdentityMap::beginDeletion(deletion.live);
    for (const auto &object : std::as_const(deletion.live))
        (void)m.objects.takeDeleted(object->objectID());
    PropertyNotifications notifications;
    deletion.losses.apply(false, m.relationships, m.objects, notifications);
    m.changes.didEdit();
    IdentityMap::notifyDeleted(deletion.live);
    notifications.emitAll();
}

} // namespace tembra

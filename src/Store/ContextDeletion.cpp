// Deleting records with all that cascades from them, and bringing them back.

#include "Store/DeletionEffects.h"
#include "Store/DeletionPlan.h"
#include "Store/ManagedObjectContextPrivate.h"
#include "Store/UndoHistory.h"
#include "Store/UndoManager.h"

#include <algorithm>
#include <iterator>

namespace tembra {

Result<void> ManagedObjectContext::Private::deleteRecords(std::vector<ObjectID> roots)
{
    if (roots.empty())
        return {};
    ++deletionDepth;
    Result<void> done = deleteAfterHooks(std::move(roots));
    if (--deletionDepth == 0)
        hooked.clear();
    return done;
}

Result<void> ManagedObjectContext::Private::deleteAfterHooks(std::vector<ObjectID> roots)
{
    for (;;) {
        const quint64 editsBefore = edits;
        if (Result<void> written = writeDrafts(); !written)
            return written;
        const Result<DeletionPlan> plan = DeletionPlan::cascadingFrom(roots, schema, reader);
        if (!plan)
            return failure(plan.error());
        runHooks(*plan);
        if (edits == editsBefore)
            return runDeletion(*plan);
        // The hooks changed something: what there is to delete, and to read, may be different now.
        std::erase_if(roots, [&](ObjectID id) { return !exists(id); });
    }
}

void ManagedObjectContext::Private::runHooks(const DeletionPlan &plan)
{
    QList<std::shared_ptr<ManagedObject>> live;
    registry.forEach([&](ManagedObject &object) {
        if (plan.contains(object.m_id) && !hooked.contains(object.m_id)) {
            if (auto held = registry.find(object.m_id))
                live.append(std::move(held));
        }
    });
    // The values of a deleted object can still be read: so they are read now.
    (void)loadTogether(live);
    for (const auto &object : live) {
        if (object->m_deleted || hooked.contains(object->m_id))
            continue;
        hooked.insert(object->m_id);
        object->prepareForDeletion();
    }
}

Result<void> ManagedObjectContext::Private::runDeletion(const DeletionPlan &plan)
{
    const Result<DeletionEffects> effects = DeletionEffects::of(plan, schema, reader);
    if (!effects)
        return failure(effects.error());
    const Result<void> done = inTransaction([&](Transaction &transaction) -> Result<void> {
        for (int entity = schema.entityCount() - 1; entity >= 0; --entity) {
            if (Result<void> deleted = deleteRows(transaction, plan, entity); !deleted)
                return deleted;
        }
        return {};
    });
    if (done)
        finishDeletion(plan, *effects);
    return done;
}

Result<void> ManagedObjectContext::Private::deleteRows(Transaction &transaction,
                                                       const DeletionPlan &plan, int entity)
{
    const std::vector<qint64> &keys = plan.keys(entity);
    for (const ToManyLink &link : schema.table(entity).toManys) {
        if (!link.joined)
            continue;
        if (Result<void> done = writer.removeLinks(transaction, link, keys); !done)
            return done;
    }
    for (const ToOneColumn &column : schema.table(entity).references) {
        if (column.rule != DeleteRule::Nullify)
            continue;
        if (Result<void> done = writer.nullify(transaction, column, keys); !done)
            return done;
    }
    return writer.deleteRows(transaction, entity, keys);
}

void ManagedObjectContext::Private::finishDeletion(const DeletionPlan &plan,
                                                   const DeletionEffects &effects)
{
    if (UndoHistory *history = recorder())
        history->recordDeleted(effects.archive);
    note([&](PendingChanges &changes) { changes.note(effects.changes); });
    ObjectList gone;
    registry.forEach([&](ManagedObject &object) {
        if (plan.contains(object.m_id)) {
            if (auto held = registry.find(object.m_id))
                gone.push_back(std::move(held));
        }
    });
    for (const auto &object : gone)
        (void)becomeDeleted(object->m_id);
    Announcements announcements;
    applyRelated(effects.losses, false, announcements);
    for (const auto &cleared : effects.archive->cleared())
        applyToOne(cleared.id, {cleared.property, cleared.key, 0}, announcements);
    didEdit();
    announceDeleted(gone);
    announce(announcements);
}

/// Takes over a change of a to-one that the store has already.
void ManagedObjectContext::Private::applyToOne(ObjectID id, const ToOneChange &change,
                                               Announcements &announcements)
{
    note([&](PendingChanges &changes) { changes.noteToOne(id, change); });
    auto live = registry.find(id);
    if (!live || live->m_values.empty())
        return;
    live->m_values[size_t(change.property)] = change.newKey ? Value(change.newKey) : Value();
    announcements.emplace_back(std::move(live), change.property);
}

std::shared_ptr<ManagedObject> ManagedObjectContext::Private::becomeDeleted(ObjectID id)
{
    auto object = registry.find(id);
    if (!object)
        return nullptr;
    registry.remove(*object);
    pinned.remove(id);
    object->m_deleted = true;
    object->m_context = nullptr;
    object->m_isNew = false;
    object->m_unwritten = 0;
    return object;
}

void ManagedObjectContext::Private::announceDeleted(const ObjectList &gone)
{
    for (const auto &object : gone)
        Q_EMIT object->deleted();
}

void ManagedObjectContext::Private::noteVanished(ObjectID id)
{
    ObjectChange change{id, allProperties, {}};
    const auto live = registry.find(id);
    if (live && !live->m_values.empty())
        change.toOnes = toOnesOf(live->m_values, schema, id.entity, false);
    note([&](PendingChanges &changes) { changes.noteDeleted(change); });
    scheduleTurnEnd();
}

void ManagedObjectContext::Private::applyRelated(const RelatedChanges &related, bool gained,
                                                 Announcements &announcements)
{
    for (const auto &[end, changedKeys] : related) {
        const auto &[owner, property] = end;
        if (schema.table(owner.entity).toMany(property).joined)
            note([&, id = owner, bit = propertyBit(property)](PendingChanges &c) {
                c.noteUpdated(id, bit);
            });
        auto live = registry.find(owner);
        if (!live)
            continue;
        if (auto *known = knownRelated(*live, property)) {
            std::vector<qint64> sorted = changedKeys;
            std::sort(sorted.begin(), sorted.end());
            std::vector<qint64> result;
            if (gained)
                std::set_union(known->begin(), known->end(), sorted.begin(), sorted.end(),
                               std::back_inserter(result));
            else
                std::set_difference(known->begin(), known->end(), sorted.begin(), sorted.end(),
                                    std::back_inserter(result));
            *known = std::move(result);
        }
        announcements.emplace_back(std::move(live), property);
    }
}

Result<void> ManagedObjectContext::Private::restoreRecords(const RecordArchive &archive)
{
    if (Result<void> written = writeDrafts(); !written)
        return written;
    RestorationEffects restoration;
    const Result<void> done = inTransaction(
        [&](Transaction &transaction) { return writeRestored(transaction, archive, restoration); });
    if (!done)
        return done;
    note([&](PendingChanges &changes) { changes.note(restoration.changes); });
    if (UndoHistory *history = recorder()) {
        std::vector<ObjectID> ids;
        for (const ObjectChange &change : restoration.changes.inserted)
            ids.push_back(change.id);
        history->recordInserted(std::move(ids));
    }
    Announcements announcements;
    applyRelated(restoration.gains, true, announcements);
    for (const auto &[id, change] : restoration.toOnes)
        applyToOne(id, change, announcements);
    didEdit();
    announce(announcements);
    return {};
}

Result<void> ManagedObjectContext::Private::writeRestored(Transaction &transaction,
                                                          const RecordArchive &archive,
                                                          RestorationEffects &restoration)
{
    Result<void> done;
    QHash<ObjectID, bool> isThere; // What to-ones and links lead to.
    const auto reaches = [&](ObjectID id) {
        const auto known = isThere.constFind(id);
        return known != isThere.cend() ? *known : *isThere.insert(id, exists(id));
    };
    archive.forEachRow([&](ObjectID id, RowReader::Row row) {
        if (!schema.table(id.entity).toManys.empty())
            isThere.insert(id, true);
        for (const ToOneColumn &column : schema.table(id.entity).toOnes) {
            Value &value = row[size_t(column.property)];
            if (!isMissing(value) && !reaches({column.destination, std::get<qint64>(value)}))
                value = Value();
        }
        done = writer.insertRow(transaction, id, row);
        restoration.addRow(id, row, schema);
        return done.has_value();
    });
    if (done)
        done = writeRestoredLinks(transaction, archive, restoration, reaches);
    return done ? writeCleared(transaction, archive, restoration) : done;
}

Result<void> ManagedObjectContext::Private::writeRestoredLinks(
    Transaction &transaction, const RecordArchive &archive, RestorationEffects &restoration,
    const std::function<bool(ObjectID)> &reaches)
{
    for (const LinkKey &key : archive.links()) {
        const ToManyLink &link = schema.table(key.entity).toMany(key.property);
        const ObjectID owner{link.entity, key.owner};
        const ObjectID other{link.destination, key.other};
        if (!reaches(owner) || !reaches(other))
            continue;
        const Result<void> done = writer.addLink(transaction, link, key.owner, key.other);
        if (!done)
            return done;
        restoration.gains[{owner, link.property}].push_back(key.other);
        restoration.gains[{other, link.inverse}].push_back(key.owner);
    }
    return {};
}

/// Points to-ones that the deletion cleared to their old records, unless they point elsewhere by now.
Result<void> ManagedObjectContext::Private::writeCleared(Transaction &transaction,
                                                         const RecordArchive &archive,
                                                         RestorationEffects &restoration)
{
    for (const auto &cleared : archive.cleared()) {
        Result<std::optional<RowReader::Row>> row = reader.row(cleared.id);
        if (!row)
            return failure(row.error());
        if (!*row || !isMissing((**row)[size_t(cleared.property)]))
            continue;
        (**row)[size_t(cleared.property)] = Value(cleared.key);
        const PropertyMask column = propertyBit(cleared.property);
        if (const Result<bool> done = writer.updateRow(transaction, cleared.id, column, **row);
            !done)
            return failure(done.error());
        restoration.toOnes.emplace_back(cleared.id, ToOneChange{cleared.property, 0, cleared.key});
        const ToOneColumn &toOne = *schema.table(cleared.id.entity).toOne(cleared.property);
        if (toOne.inverse >= 0)
            restoration.gains[{{toOne.destination, cleared.key}, toOne.inverse}].push_back(
                cleared.id.key);
    }
    return {};
}

} // namespace tembra

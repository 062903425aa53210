// Deleting records with all that cascades from them.

#include "Foundation/Logging.h"
#include "Store/File/ForeignKeysOff.h"
#include "Store/Objects/DeletionEffects.h"
#include "Store/Objects/DeletionPlan.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Undo/UndoHistory.h"
#include "Store/Undo/UndoManager.h"

#include <algorithm>
#include <iterator>

namespace tembra {

using namespace std::chrono_literals;

namespace {

constexpr auto leftoverRetryDelay = 500ms;

} // namespace

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
        // A background context is one transaction: there nothing can be left for a later one.
        const auto extent = setup.isBackground ? DeletionPlan::Extent::Everything
                                               : DeletionPlan::Extent::MayLeaveRows;
        const Result<DeletionPlan> plan = DeletionPlan::cascadingFrom(roots, schema, reader,
                                                                      extent);
        if (!plan)
            return failure(plan.error());
        if (const Result<void> run = runHooks(*plan); !run)
            return run;
        if (edits == editsBefore)
            return runDeletion(*plan);
        // The hooks changed something: what there is to delete, and to read, may be different now.
        std::erase_if(roots, [&](ObjectID id) { return !exists(id); });
    }
}

Result<ObjectList> ManagedObjectContext::Private::liveObjectsOf(const DeletionPlan &plan)
{
    ObjectList live;
    QList<std::shared_ptr<ManagedObject>> perhapsLeft;
    registry.forEach([&](ManagedObject &object) {
        const bool isTaken = plan.contains(object.m_id);
        if (!isTaken && !(plan.left() && plan.left()->entity == object.m_id.entity))
            return;
        auto held = registry.find(object.m_id);
        if (held && isTaken)
            live.push_back(std::move(held));
        else if (held)
            perhapsLeft.append(std::move(held));
    });
    if (const Result<void> loaded = loadTogether(perhapsLeft); !loaded)
        return failure(loaded.error());
    for (const auto &object : perhapsLeft) {
        if (!object->m_values.empty() && plan.leaves(object->m_id.entity, object->m_values))
            live.push_back(object);
    }
    return live;
}

Result<void> ManagedObjectContext::Private::runHooks(const DeletionPlan &plan)
{
    const Result<ObjectList> live = liveObjectsOf(plan);
    if (!live)
        return failure(live.error());
    QList<std::shared_ptr<ManagedObject>> unhooked;
    for (const auto &object : *live) {
        if (!hooked.contains(object->m_id))
            unhooked.append(object);
    }
    // The values of a deleted object can still be read: so they are read now.
    (void)loadTogether(unhooked);
    for (const auto &object : unhooked) {
        if (object->m_deleted || hooked.contains(object->m_id))
            continue;
        hooked.insert(object->m_id);
        object->prepareForDeletion();
    }
    return {};
}

Result<void> ManagedObjectContext::Private::runDeletion(const DeletionPlan &plan)
{
    const Result<DeletionEffects> effects = DeletionEffects::of(plan, schema, reader);
    if (!effects)
        return failure(effects.error());
    const Result<ObjectList> live = liveObjectsOf(plan);
    if (!live)
        return failure(live.error());
    const Result<void> done = writeDeletion(plan);
    if (done)
        finishDeletion(plan, *effects, *live);
    return done;
}

Result<void> ManagedObjectContext::Private::writeDeletion(const DeletionPlan &plan)
{
    // What is left refers to owners that are gone, for a moment.
    std::optional<ForeignKeysOff> unchecked;
    if (plan.left())
        unchecked.emplace(connection);
    return inTransaction([&](Transaction &transaction) -> Result<void> {
        for (int entity = schema.entityCount() - 1; entity >= 0; --entity) {
            if (Result<void> deleted = deleteRows(transaction, plan, entity); !deleted)
                return deleted;
        }
        if (!plan.left())
            return {};
        return checkForNewcomers(plan).and_then([&] {
            return leftovers.leave(transaction, *plan.left(), plan.keys(plan.left()->destination));
        });
    });
}

/// Another context may have added to what is deleted since that was looked up. The foreign keys,
/// which find that otherwise, are off when rows are left.
Result<void> ManagedObjectContext::Private::checkForNewcomers(const DeletionPlan &plan)
{
    for (int entity = 0; entity < schema.entityCount(); ++entity) {
        for (const ToOneDescription &column : schema.entity(entity).references) {
            if (column.entity == plan.left()->entity && column.property == plan.left()->property)
                continue;
            bool found = false;
            const Result<void> read = reader.referrers(column, plan.keys(entity),
                                                       [&](qint64, qint64) { found = true; });
            if (!read)
                return read;
            if (found)
                return failure(storeError(StoreFault::Constraint, connection.file(),
                                          QStringLiteral("it was added to meanwhile")));
        }
    }
    return {};
}

Result<void> ManagedObjectContext::Private::deleteRows(Transaction &transaction,
                                                       const DeletionPlan &plan, int entity)
{
    const std::vector<qint64> &keys = plan.keys(entity);
    for (const ToManyDescription &link : schema.entity(entity).toManys) {
        if (!link.joined)
            continue;
        if (Result<void> done = writer.removeLinks(transaction, link, keys); !done)
            return done;
    }
    for (const ToOneDescription &column : schema.entity(entity).references) {
        if (column.rule != DeleteRule::Nullify)
            continue;
        if (Result<void> done = writer.nullify(transaction, column, keys); !done)
            return done;
    }
    return writer.deleteRows(transaction, entity, keys);
}

void ManagedObjectContext::Private::finishDeletion(const DeletionPlan &plan,
                                                   const DeletionEffects &effects,
                                                   const ObjectList &gone)
{
    if (plan.left()) {
        leftovers.add(*plan.left(), plan.keys(plan.left()->destination), effects.archive);
        leftoverTimer.start(0);
    }
    if (UndoHistory *history = recorder())
        history->recordDeleted(effects.archive);
    note([&](PendingChanges &changes) { changes.note(effects.changes); });
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
        if (schema.entity(owner.entity).toMany(property).joined)
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

std::optional<HiddenRecords> ManagedObjectContext::Private::hiddenFrom(
    const FetchRequest &request) const
{
    const int entity = schema.entityIndex(request.entityName);
    return entity < 0 ? std::nullopt : leftovers.hidden(entity);
}

/// A piece with each turn of the event loop, so that whoever types does not notice.
void ManagedObjectContext::Private::deleteSomeLeftovers()
{
    const Result<void> done = leftovers.deletePiece();
    if (!done && !std::exchange(leftoversFail, true))
        qCWarning(storeLog, "A deletion could not be finished yet; it is tried again: %s",
                  qUtf8Printable(done.error().description()));
    if (done)
        leftoversFail = false;
    if (!leftovers.isEmpty())
        leftoverTimer.start(done ? 0ms : leftoverRetryDelay);
}

Result<void> ManagedObjectContext::Private::deleteLeftovers()
{
    while (!leftovers.isEmpty()) {
        if (const Result<void> done = leftovers.deletePiece(); !done)
            return done;
    }
    leftoverTimer.stop();
    return {};
}

} // namespace tembra

// Drafts and saves.

#include "Foundation/Logging.h"
#include "Store/File/IdAllocator.h"
#include "Store/File/StoreMeta.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Undo/UndoManager.h"

#include <QThread>

#include <algorithm>

namespace tembra {

using namespace std::chrono_literals;

namespace {

constexpr auto draftDelay = 1000ms;
constexpr auto draftRetryDelay = 500ms;

/// A background context waits this long for the short write of another one to end.
constexpr int longestWaitForLock = 5000;

} // namespace

void ManagedObjectContext::Private::startDraftTimer()
{
    if (!setup.isBackground && !draftTimer.isActive())
        draftTimer.start(draftDelay);
}

Result<void> ManagedObjectContext::Private::writeDrafts()
{
    if (setup.isBackground)
        return writePiece();
    if (unwritten.isEmpty())
        return {};
    const Result<ObjectList> gone = writeInOwnTransaction(Transaction::Durability::Draft);
    if (gone) {
        announceDeleted(*gone);
        return {};
    }
    if (!std::exchange(draftsFail, true)) {
        qCWarning(storeLog, "Edits could not be written yet; they are kept and tried again: %s",
                  qUtf8Printable(gone.error().description()));
    }
    draftTimer.start(draftRetryDelay);
    return failure(gone.error());
}

Result<ObjectList> ManagedObjectContext::Private::writeInOwnTransaction(
    Transaction::Durability durability)
{
    std::vector<ObjectID> vanished;
    {
        Result<Transaction> transaction = Transaction::begin(connection, durability);
        if (!transaction)
            return failure(transaction.error());
        Result<std::vector<ObjectID>> written = writeUnwritten(*transaction);
        if (!written)
            return failure(written.error());
        vanished = std::move(*written);
        if (const Result<void> committed = transaction->commit(); !committed)
            return failure(committed.error());
    }
    return didWrite(vanished);
}

Result<void> ManagedObjectContext::Private::inTransaction(
    const std::function<Result<void>(Transaction &)> &work)
{
    if (setup.isBackground) {
        if (Result<void> begun = beginLongTransaction(); !begun)
            return begun;
        if (const Result<void> done = work(*longTransaction); !done)
            return lose(done.error());
        return {};
    }
    Result<Transaction> transaction = Transaction::begin(connection,
                                                         Transaction::Durability::Draft);
    if (!transaction)
        return failure(transaction.error());
    if (Result<void> done = work(*transaction); !done)
        return done;
    return transaction->commit();
}

Result<std::vector<ObjectID>> ManagedObjectContext::Private::writeUnwritten(Transaction &transaction)
{
    // New records first, each after those it may point to; that is the order of their ids.
    const auto firstUpdate = std::partition(unwritten.objects.begin(), unwritten.objects.end(),
                                            [](const auto &object) { return object->m_isNew; });
    std::sort(unwritten.objects.begin(), firstUpdate,
              [](const auto &a, const auto &b) { return a->m_id < b->m_id; });
    std::vector<ObjectID> vanished;
    for (const auto &object : unwritten.objects) {
        if (const Result<void> done = writeObject(transaction, *object, vanished); !done)
            return failure(done.error());
    }
    for (auto it = unwritten.links.cbegin(); it != unwritten.links.cend(); ++it) {
        const LinkKey &key = it.key();
        const ToManyDescription &link = schema.entity(key.entity).toMany(key.property);
        const Result<void> done = it.value()
                                      ? writer.addLink(transaction, link, key.owner, key.other)
                                      : writer.removeLink(transaction, link, key.owner, key.other);
        if (!done)
            return failure(done.error());
    }
    if (firstUpdate != unwritten.objects.begin()) {
        const qint64 mark = setup.ids->highWaterMark();
        if (const Result<void> done = StoreMeta::raiseHighWaterMark(transaction, connection, mark);
            !done)
            return failure(done.error());
    }
    return vanished;
}

Result<void> ManagedObjectContext::Private::writeObject(Transaction &transaction,
                                                        ManagedObject &object,
                                                        std::vector<ObjectID> &vanished)
{
    if (object.m_deleted)
        return {};
    if (object.m_isNew)
        return writer.insertRow(transaction, object.m_id, object.m_values);
    const Result<bool> updated = writer.updateRow(transaction, object.m_id, object.m_unwritten,
                                                  object.m_values);
    if (!updated)
        return failure(updated.error());
    if (!*updated)
        vanished.push_back(object.m_id);
    return {};
}

ObjectList ManagedObjectContext::Private::didWrite(const std::vector<ObjectID> &vanished)
{
    const UnwrittenEdits written = std::exchange(unwritten, {});
    for (const auto &object : written.objects) {
        object->m_isNew = false;
        object->m_unwritten = 0;
    }
    draftTimer.stop();
    if (std::exchange(draftsFail, false) && !unseenByQueries.isEmpty()) {
        turn.note(unseenByQueries.take());
        scheduleTurnEnd();
    }
    ObjectList gone;
    for (const ObjectID id : vanished) {
        qCWarning(storeLog, "An edited record had been deleted elsewhere; it stays deleted.");
        noteVanished(id);
        if (auto object = becomeDeleted(id))
            gone.push_back(std::move(object));
    }
    return gone;
}

Result<void> ManagedObjectContext::Private::save()
{
    tellChanges();
    if (!hasChanges)
        return {};
    const Result<ObjectList> gone = setup.isBackground
                                        ? saveLongTransaction()
                                        : writeInOwnTransaction(Transaction::Durability::Durable);
    if (!gone) {
        if (!setup.isBackground && !unwritten.isEmpty())
            draftTimer.start(draftRetryDelay);
        return failure(gone.error());
    }
    hasChanges = false;
    const ChangeSet saved = sinceSave.take();
    announceDeleted(*gone);
    Q_EMIT q.hasChangesChanged(false);
    Q_EMIT q.didSave(saved);
    return {};
}

Result<void> ManagedObjectContext::Private::beginLongTransaction()
{
    if (lost)
        return failure(*lost);
    if (longTransaction)
        return {};
    for (int waited = 0;; ++waited) {
        Result<Transaction> begun = Transaction::begin(connection,
                                                       Transaction::Durability::Durable);
        if (begun) {
            longTransaction.emplace(std::move(*begun));
            return {};
        }
        if (connection.lastFault() != StoreFault::Busy || waited >= longestWaitForLock)
            return failure(begun.error());
        QThread::msleep(1);
    }
}

/// What is written already cannot be told apart from what is not once the transaction is gone:
/// so any failure loses the whole import, and save() says why.
tl::unexpected<Error> ManagedObjectContext::Private::lose(const Error &reason)
{
    lost = reason;
    longTransaction.reset();
    unwritten = {};
    return failure(reason);
}

Result<void> ManagedObjectContext::Private::writePiece()
{
    if (lost)
        return lose(Error(*lost));
    if (unwritten.isEmpty())
        return {};
    if (const Result<void> begun = beginLongTransaction(); !begun)
        return begun;
    if (const Result<void> done = dropVanishedToOnes(); !done)
        return lose(done.error());
    const Result<std::vector<ObjectID>> written = writeUnwritten(*longTransaction);
    if (!written)
        return lose(written.error());
    announceDeleted(didWrite(*written));
    return {};
}

Result<ObjectList> ManagedObjectContext::Private::saveLongTransaction()
{
    if (const Result<void> written = writePiece(); !written)
        return failure(written.error());
    if (!longTransaction)
        return ObjectList();
    if (const Result<void> committed = longTransaction->commit(); !committed)
        return lose(committed.error());
    longTransaction.reset();
    // On this thread, where nobody waits for it.
    connection.checkpointAsFarAsPossible();
    return ObjectList();
}

Result<void> ManagedObjectContext::Private::dropVanishedToOnes()
{
    ObjectID lastSeen; // Neighbours mostly point to the same record.
    for (const auto &object : unwritten.objects) {
        if (object->m_deleted)
            continue;
        for (const ToOneDescription &column : schema.entity(object->m_id.entity).toOnes) {
            Value &value = object->m_values[size_t(column.property)];
            const auto *key = std::get_if<qint64>(&value);
            const ObjectID destination{column.destination, key ? *key : 0};
            if (!key || destination == lastSeen)
                continue;
            const auto live = registry.find(destination);
            const Result<bool> found = live && live->m_isNew ? Result<bool>(true)
                                                             : reader.exists(destination);
            if (!found)
                return failure(found.error());
            if (*found) {
                lastSeen = destination;
                continue;
            }
            value = Value();
            sinceSave.noteToOne(object->m_id, {column.property, destination.key, 0});
        }
    }
    return {};
}

} // namespace tembra

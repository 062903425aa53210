// Bringing deleted records back.

#include "Store/Objects/DeletionEffects.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Undo/UndoHistory.h"

#include <algorithm>

namespace tembra {

namespace {

/// Those of the records that no other of them takes along when it is deleted.
std::vector<ObjectID> topmost(const std::vector<ObjectChange> &restored, const ObjectModel &schema)
{
    QSet<ObjectID> owners;
    for (const ObjectChange &change : restored) {
        if (!schema.entity(change.id.entity).references.empty())
            owners.insert(change.id);
    }
    std::vector<ObjectID> found;
    for (const ObjectChange &change : restored) {
        const auto isTakenAlong = [&](const ToOneChange &toOne) {
            const ToOneDescription &column = *schema.entity(change.id.entity).toOne(toOne.property);
            return column.rule == DeleteRule::Cascade
                   && owners.contains({column.destination, toOne.newKey});
        };
        if (std::none_of(change.toOnes.begin(), change.toOnes.end(), isTakenAlong))
            found.push_back(change.id);
    }
    return found;
}

} // namespace

Result<void> ManagedObjectContext::Private::restoreRecords(const RecordArchive &archive)
{
    if (Result<void> written = writeDrafts(); !written)
        return written;
    // Before that the archive is not complete, and its rows are still there.
    if (Result<void> done = deleteLeftovers(); !done)
        return done;
    RestorationEffects restoration;
    const Result<void> done = inTransaction(
        [&](Transaction &transaction) { return writeRestored(transaction, archive, restoration); });
    if (!done)
        return done;
    note([&](PendingChanges &changes) { changes.note(restoration.changes); });
    if (UndoHistory *history = recorder())
        history->recordInserted(topmost(restoration.changes.inserted, schema));
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
        if (!schema.entity(id.entity).toManys.empty())
            isThere.insert(id, true);
        for (const ToOneDescription &column : schema.entity(id.entity).toOnes) {
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
        const ToManyDescription &link = schema.entity(key.entity).toMany(key.property);
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
        const ToOneDescription &toOne = *schema.entity(cleared.id.entity).toOne(cleared.property);
        if (toOne.inverse >= 0)
            restoration.gains[{{toOne.destination, cleared.key}, toOne.inverse}].push_back(
                cleared.id.key);
    }
    return {};
}

} // namespace tembra

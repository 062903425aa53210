#include "Store/Objects/RecordRestorer.h"

#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/ContextWriter.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/PropertyNotifications.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Objects/RelationshipChanges.h"
#include "Store/Rows/RecordArchive.h"
#include "Store/Rows/RowWriter.h"
#include "Store/Undo/UndoHistory.h"

#include <QSet>

namespace tembra {

struct RecordRestorer::Restoration
{
    QSet<ObjectID> restored; ///< Of those that others can refer to.
    QHash<ObjectID, bool> isThere; ///< Of those that are not restored.
    std::vector<ObjectID> topmost; ///< Those that no other restored record owns.
    PendingChanges changes;
    RelationshipChanges gains;
};

Result<void> RecordRestorer::restore(const RecordArchive &archive)
{
    while (!m.edits.isEmpty()) {
        if (Result<void> written = m.writer.writeEdits(); !written)
            return written;
    }
    Restoration restoration;
    Result<void> done = m.writer.transact([&](Transaction &transaction) {
        return restoreRows(transaction, archive, restoration).and_then([&] {
            return restoreLinks(transaction, archive, restoration);
        });
    });
    if (!done)
        return done;
    if (m.history)
        m.history->recordInserted(std::move(restoration.topmost));
    m.changes.add(restoration.changes.take());
    PropertyNotifications notifications;
    restoration.gains.apply(true, m.relationships, m.objects, notifications);
    m.changes.didEdit();
    notifications.emitAll();
    return {};
}

Result<void> RecordRestorer::restoreRows(Transaction &transaction, const RecordArchive &archive,
                                         Restoration &restoration)
{
    Result<void> done;
    archive.forEachRow([&](ObjectID id, std::vector<StoredValue> &row) {
        done = restoreRow(transaction, id, row, restoration);
        return done.has_value();
    });
    return done;
}

Result<void> RecordRestorer::restoreRow(Transaction &transaction, ObjectID id,
                                        std::vector<StoredValue> &row, Restoration &restoration)
{
    const EntityDescription &table = m.schema.entity(id.entity);
    ObjectChange change{id, allProperties, {}};
    bool isTopmost = true;
    for (const ToOneDescription &column : table.toOnes) {
        StoredValue &value = row[size_t(column.property)];
        const auto *key = std::get_if<qint64>(&value);
        if (!key)
            continue;
        const ObjectID owner{column.destination, *key};
        const bool isRestored = restoration.restored.contains(owner);
        if (!isRestored && !exists(owner, restoration)) {
            value = {};
            continue;
        }
        isTopmost = isTopmost && !isRestored;
        change.toOnes.append({column.property, 0, owner.key});
        if (column.inverse >= 0 && !isRestored)
            restoration.gains.add(owner, column.inverse, id.key);
    }
    if (!table.references.empty() || !table.toManys.empty())
        restoration.restored.insert(id);
    if (isTopmost)
        restoration.topmost.push_back(id);
    restoration.changes.addInserted(std::move(change));
    return m.rows.restoreRow(transaction, id, row);
}

Result<void> RecordRestorer::restoreLinks(Transaction &transaction, const RecordArchive &archive,
                                          Restoration &restoration)
{
    for (const LinkKey &key : archive.links()) {
        const ToManyDescription &link = m.schema.entity(key.entity).toMany(key.property);
        const ObjectID owner{link.entity, key.owner};
        const ObjectID other{link.destination, key.other};
        if (!exists(owner, restoration) || !exists(other, restoration))
            continue;
        if (Result<void> done = m.rows.addLink(transaction, link, key.owner, key.other); !done)
            return done;
        const auto addGain = [&](ObjectID id, int property, qint64 gained) {
            if (restoration.restored.contains(id))
                return;
            restoration.changes.addUpdated(id, propertyBit(property));
            restoration.gains.add(id, property, gained);
        };
        addGain(owner, link.property, key.other);
        addGain(other, link.inverse, key.owner);
    }
    return {};
}

bool RecordRestorer::exists(ObjectID id, Restoration &restoration)
{
    if (restoration.restored.contains(id))
        return true;
    const auto known = restoration.isThere.constFind(id);
    if (known != restoration.isThere.cend())
        return *known;
    return *restoration.isThere.insert(id, m.objects.exists(id));
}

} // namespace tembra

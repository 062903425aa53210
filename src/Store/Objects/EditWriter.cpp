#include "Store/Objects/EditWriter.h"

#include "Foundation/Logging.h"
#include "Store/File/IdAllocator.h"
#include "Store/File/StoreMeta.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Rows/RowWriter.h"

namespace tembra {

EditWriter::EditWriter(const ObjectModel &schema, RowWriter &rows, Connection &connection,
                       const IdAllocator &ids, PendingEdits &edits, IdentityMap &objects)
    : m_schema(schema)
    , m_rows(rows)
    , m_connection(connection)
    , m_ids(ids)
    , m_edits(edits)
    , m_objects(objects)
{
}

Result<std::vector<ObjectID>> EditWriter::write(Transaction &transaction)
{
    std::vector<ObjectID> vanished;
    return writeRecords(transaction, vanished)
        .and_then([&] { return writeLinks(transaction); })
        .map([&] { return std::move(vanished); });
}

Result<void> EditWriter::writeRecords(Transaction &transaction, std::vector<ObjectID> &vanished)
{
    bool hasNew = false;
    for (const auto &[object, columns, isNew] : m_edits.recordsInWriteOrder()) {
        if (!object->isLive())
            continue;
        const ObjectID id = object->objectID();
        const std::vector<Value> &values = IdentityMap::values(*object);
        hasNew |= isNew;
        const Result<bool> written = isNew ? m_rows.insertRow(transaction, id, values).map([] {
            return true;
        })
                                           : m_rows.updateRow(transaction, id, columns, values);
        if (!written)
            return failure(written.error());
        if (!*written)
            vanished.push_back(id);
    }
    return hasNew ? StoreMeta::raiseHighWaterMark(transaction, m_connection, m_ids.highWaterMark())
                  : Result<void>();
}

Result<void> EditWriter::writeLinks(Transaction &transaction)
{
    for (auto it = m_edits.links().cbegin(); it != m_edits.links().cend(); ++it) {
        const LinkKey &key = it.key();
        const ToManyDescription &link = m_schema.entity(key.entity).toMany(key.property);
        Result<void> done = it.value() ? m_rows.addLink(transaction, link, key.owner, key.other)
                                       : m_rows.removeLink(transaction, link, key.owner, key.other);
        if (!done)
            return done;
    }
    return {};
}

IdentityMap::ObjectList EditWriter::didCommit(const std::vector<ObjectID> &vanished)
{
    m_edits.clear();
    if (!vanished.empty())
        qCWarning(storeLog, "An edited record had been deleted elsewhere; it stays deleted.");
    return m_objects.takeVanished(vanished);
}

void EditWriter::discard()
{
    m_edits.clear();
}

} // namespace tembra

#include "Store/File/StoreMeta.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/File/Transaction.h"

#include <QUuid>

namespace tembra {

Result<void> StoreMeta::create(Transaction &transaction, Connection &connection)
{
    return transaction
        .execute("CREATE TABLE store_meta ("
                 "id INTEGER PRIMARY KEY CHECK (id = 1), "
                 "uuid TEXT NOT NULL, "
                 "high_water_mark INTEGER NOT NULL, "
                 "saves INTEGER NOT NULL)")
        .and_then([&] { return connection.prepare("INSERT INTO store_meta VALUES (1, ?, 0, 0)"); })
        .and_then([&](Statement *insert) {
            insert->bind(1, QUuid::createUuid().toString(QUuid::WithoutBraces));
            return transaction.run(*insert);
        });
}

StoreResult<StoreMeta> StoreMeta::read(Connection &connection)
{
    const auto select = connection.prepare(
        "SELECT uuid, high_water_mark, saves FROM store_meta WHERE id = 1");
    if (!select)
        return tl::unexpected(StoreError(select.error(), connection.lastFault()));
    const auto row = (*select)->step();
    if (!row)
        return tl::unexpected(StoreError(row.error(), connection.lastFault()));
    StoreMeta meta;
    if (*row) {
        const Value uuid = (*select)->value(0);
        meta.highWaterMark = (*select)->key(1);
        if (const auto *text = std::get_if<QString>(&uuid))
            meta.uuid = *text;
    }
    (*select)->reset();
    const bool isSound = QUuid(meta.uuid).toString(QUuid::WithoutBraces) == meta.uuid
                         && !QUuid(meta.uuid).isNull() && meta.highWaterMark >= 0;
    if (!isSound)
        return tl::unexpected(storeError(StoreFault::Damaged, connection.file(),
                                         QStringLiteral("no sound record in store_meta")));
    return meta;
}

Result<void> StoreMeta::raiseHighWaterMark(Transaction &transaction, Connection &connection,
                                           qint64 mark)
{
    const auto update = connection.prepare(
        "UPDATE store_meta SET high_water_mark = ?1 WHERE high_water_mark < ?1");
    if (!update)
        return failure(update.error());
    (*update)->bindKey(1, mark);
    return transaction.run(**update);
}

} // namespace tembra

#pragma once

#include "Store/File/StoreFault.h"

#include <QByteArray>
#include <QString>

namespace tembra {

class Connection;
class Transaction;

/// What a store knows about itself: one row of its table "store_meta".
struct StoreMeta
{
    QString uuid; ///< Lower case, without braces; part of every object URI.
    qint64 highWaterMark = 0; ///< The highest key ever given to a record.

    /// Makes the table and gives the store a new uuid.
    static Result<void> create(Transaction &transaction, Connection &connection);
    /// Fails when there is no such table or its row makes no sense.
    static StoreResult<StoreMeta> read(Connection &connection);

    /// To be called in every transaction that inserts records, with the allocator's mark.
    static Result<void> raiseHighWaterMark(Transaction &transaction, Connection &connection,
                                           qint64 mark);

    /// Changes the row: an empty commit would sync nothing, so every durable one runs this.
    static constexpr char stampSave[] = "UPDATE store_meta SET saves = saves + 1";
};

} // namespace tembra

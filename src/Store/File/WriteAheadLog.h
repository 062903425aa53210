#pragma once

#include "Foundation/Result.h"

#include <QSet>
#include <QString>

namespace tembra {

/// What the committed transactions of a write-ahead log say about the checkpoint id (CheckpointId.h)
/// of the database they were written for.
struct WriteAheadLog
{
    bool hasTransactions = false; ///< There is something that SQLite would replay.
    QSet<quint32> checkpointIds; ///< Of every transaction that wrote the database's header.

    /// Reads the file without SQLite, so that nothing is changed by it. One that is missing, empty or
    /// none at all has no transactions: SQLite replays nothing of it either.
    static Result<WriteAheadLog> read(const QString &file);
};

} // namespace tembra

#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>

namespace tembra {

class Connection;

/// SQLite replays a write-ahead log into whatever file stands beside it, also into a copy that the
/// user has put in the place of the file for which the log was written; the result is a damaged
/// copy. So a store says which log belongs to it:
///
/// Each checkpoint gives the file a new random id (SQLite's "application_id", which lies in the
/// file's header), and each transaction writes the header with the id that it found into the log.
/// A log belongs to a file if one of the log's transactions has the file's id: either the id that
/// the file had when the log began, or the id of a checkpoint that was interrupted.

/// Writes the header of the database with its present id; part of every transaction.
Result<void> repeatCheckpointId(Connection &connection);
/// Gives the database another id; before every checkpoint, outside of a transaction.
Result<void> renewCheckpointId(Connection &connection);
/// Gives a database that nobody has open another id than the one it was copied from.
Result<void> renewCheckpointIdOfCopy(const QString &file);

/// The id in the header of a database.
quint32 checkpointIdIn(const QByteArray &header);

/// Whether the log beside a store belongs to it. True where there is nothing that could be replayed,
/// and for files and logs of the time before there were such ids (both are 0 or missing then).
Result<bool> logBelongsTo(const QString &file);

} // namespace tembra

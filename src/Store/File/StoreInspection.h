#pragma once

#include "Store/File/StoreFault.h"

#include <QByteArray>
#include <QString>

namespace tembra {

class ObjectModel;

/// What was found in a store's place.
struct StoreInspection
{
    int version = 0; ///< Of its schema, at most the model's; 0 when there is nothing yet.
    bool wasEmpty = false; ///< There is a file, but without content.
    bool logBelongs = true; ///< Else the log beside it was written for another file.
};

/// Looks at what lies in a store's place, without changing it or anything beside it.
///
/// Fails on whatever this program must not touch: anything but a regular file, another program's
/// file, a damaged or newer store, one with a schema of its own, one that may not be read or changed
/// or belongs to another user. A log that does not belong to the file is left out of account.
///
/// Damage is found as far as that is cheap: the header, the schema, the file's length and the first
/// pages of every table.
StoreResult<StoreInspection> inspectStore(const QString &file, const ObjectModel &model,
                                          const QByteArray &vfs);

/// The files that SQLite keeps beside a store: "-wal", "-shm", "-journal".
QStringList companionsOf(const QString &file);

} // namespace tembra

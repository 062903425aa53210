#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>

namespace tembra {

class ObjectModel;

/// Looks at what lies in a store's place, without changing it or anything beside it.
///
/// The version of its schema, at most the model's; 0 when there is nothing yet (no file, or an
/// empty one). Fails on whatever this program must not touch: anything but a regular file, another
/// program's file, a damaged or newer store, one that may not be read or changed.
///
/// Damage is found as far as that is cheap: the header, the schema, the file's length and the first
/// pages of every table.
Result<int> inspectStore(const QString &file, const ObjectModel &model, const QByteArray &vfs);

/// The files that SQLite keeps beside a store: "-wal", "-shm", "-journal".
QStringList companionsOf(const QString &file);

} // namespace tembra

#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>

namespace tembra {

class Connection;
class ObjectModel;

/// Makes a new store with everything in it, then puts it in its place in one step: there is never
/// half a store. An empty file there is replaced.
Result<void> createStore(const QString &file, const ObjectModel &model, const QByteArray &vfs);

/// Takes a database and the companions that SQLite keeps beside it away.
void removeDatabase(const QString &file);
void removeCompanions(const QString &file);

/// Writes a copy of the store beside it, as `<name>-before-version-N.sqlite`, and reads it back from
/// the disk to prove it whole. A copy of that name from an earlier try is replaced in one step.
Result<void> setAsideCopy(Connection &connection, const ObjectModel &model, const QByteArray &vfs);

/// Runs the migrations above @p fromVersion, each in one durable transaction.
Result<void> migrate(Connection &connection, const ObjectModel &model, int fromVersion);

} // namespace tembra

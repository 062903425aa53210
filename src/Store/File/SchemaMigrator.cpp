#include "Store/File/SchemaMigrator.h"

#include "Store/File/CheckpointId.h"
#include "Store/File/Connection.h"
#include "Store/File/PrivateFile.h"
#include "Store/File/Statement.h"
#include "Store/File/StoreInspection.h"
#include "Store/File/StoreMeta.h"
#include "Store/File/Transaction.h"
#include "Store/Schema/ObjectModel.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace tembra {

namespace {

/// Replaces @p target by @p made, in one step that is on the disk when this returns.
Result<void> putInPlace(const QString &made, const QString &target)
{
    if (::rename(QFile::encodeName(made).constData(), QFile::encodeName(target).constData()) != 0)
        return failure(fileError(target, errno));
    return syncFolder(QFileInfo(target).path());
}

Result<void> checkForeignKeys(Connection &connection)
{
    const auto statement = connection.prepare("PRAGMA foreign_key_check");
    if (!statement)
        return failure(statement.error());
    const auto violation = (*statement)->step();
    (*statement)->reset();
    if (!violation)
        return failure(violation.error());
    if (*violation)
        return failure(storeError(StoreFault::Damaged, connection.file(),
                                  QStringLiteral("a record refers to another that is not there")));
    return {};
}

Result<void> runStatements(Transaction &transaction, Connection &connection,
                           const SchemaMigration &migration)
{
    if (migration.to == 1) {
        if (auto made = StoreMeta::create(transaction, connection); !made)
            return made;
    }
    for (const QByteArray &statement : migration.statements) {
        if (auto done = transaction.execute(statement); !done)
            return done;
    }
    return transaction.execute("PRAGMA user_version = " + QByteArray::number(migration.to))
        .and_then([&] { return checkForeignKeys(connection); });
}

Result<void> runMigration(Connection &connection, const SchemaMigration &migration)
{
    auto transaction = Transaction::begin(connection, Transaction::Durability::Durable);
    if (!transaction)
        return failure(transaction.error());
    return runStatements(*transaction, connection, migration).and_then([&] {
        return transaction->commit();
    });
}

Result<void> writeNewStore(const QString &file, const ObjectModel &model, const QByteArray &vfs)
{
    const auto connection = Connection::open(file, Connection::Mode::Create, vfs);
    if (!connection)
        return failure(connection.error());
    return migrate(**connection, model, 0).and_then([&] { return (*connection)->checkpoint(); });
}

Result<void> writeCopy(Connection &connection, const QString &copy)
{
    if (auto made = createPrivateFile(copy); !made)
        return made;
    const auto vacuum = connection.prepare("VACUUM INTO ?");
    if (!vacuum)
        return failure(vacuum.error());
    (*vacuum)->bind(1, copy);
    return (*vacuum)->run().and_then([&] { return renewCheckpointIdOfCopy(copy); }).and_then([&] {
        return syncFile(copy);
    });
}

Result<void> verifyCopy(const QString &copy, const ObjectModel &model, const QByteArray &vfs)
{
    if (const auto version = inspectStore(copy, model, vfs); !version)
        return failure(version.error());
    const auto connection = Connection::open(copy, Connection::Mode::ReadOnly, vfs);
    if (!connection)
        return failure(connection.error());
    const auto check = (*connection)->prepare("PRAGMA integrity_check(1)");
    if (!check)
        return failure(check.error());
    const auto row = (*check)->step();
    if (!row)
        return failure(row.error());
    if ((*check)->value(0) != Value(QStringLiteral("ok")))
        return failure(storeError(StoreFault::Damaged, copy,
                                  QStringLiteral("the copy does not pass its check")));
    return {};
}

QString copyName(const QString &file, int version)
{
    const QFileInfo info(file);
    return info.path() + QLatin1Char('/')
           + QStringLiteral("%1-before-version-%2.%3")
                 .arg(info.completeBaseName())
                 .arg(version)
                 .arg(info.suffix());
}

Error explained(const QString &what, const Error &reason)
{
    const QString message = what + QLatin1Char(' ') + reason.message;
    return {message, reason.detail};
}

} // namespace

void removeDatabase(const QString &file)
{
    ::unlink(QFile::encodeName(file).constData());
    removeCompanions(file);
}

void removeCompanions(const QString &file)
{
    for (const QString &path : companionsOf(file))
        ::unlink(QFile::encodeName(path).constData());
}

Result<void> createStore(const QString &file, const ObjectModel &model, const QByteArray &vfs)
{
    const QString made = file + QLatin1String("-new");
    removeDatabase(made);
    auto written = writeNewStore(made, model, vfs).and_then([&] { return putInPlace(made, file); });
    removeDatabase(made);
    return written;
}

Result<void> setAsideCopy(Connection &connection, const ObjectModel &model, const QByteArray &vfs)
{
    const QString target = copyName(connection.file(), model.version());
    const QString made = target + QLatin1String("-new");
    removeDatabase(made);
    auto written = writeCopy(connection, made)
                       .and_then([&] { return verifyCopy(made, model, vfs); })
                       .and_then([&] { return putInPlace(made, target); });
    removeDatabase(made);
    return written.map_error([](const Error &reason) {
        return explained(
            QStringLiteral(
                "The journal was left as it is, because no safe copy of it could be made "
                "before bringing it up to date."),
            reason);
    });
}

Result<void> migrate(Connection &connection, const ObjectModel &model, int fromVersion)
{
    // Tables are rebuilt and dropped by migrations; with foreign keys on, dropping one would delete
    // what refers to its rows. They are checked once per migration instead.
    connection.setEnforcesForeignKeys(false);
    const auto enforceAgain = qScopeGuard([&] { connection.setEnforcesForeignKeys(true); });
    for (const SchemaMigration &migration : model.migrations()) {
        if (migration.to <= fromVersion)
            continue;
        if (auto done = runMigration(connection, migration); !done)
            return done;
    }
    return {};
}

} // namespace tembra

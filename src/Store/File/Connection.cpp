#include "Store/File/ConnectionPrivate.h"

#include "Store/File/PrivateFile.h"
#include "Store/Query/SearchFunction.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

#include <cerrno>

namespace tembra {

namespace {

constexpr char settingsOfEveryConnection[] = "PRAGMA cell_size_check=ON;"
                                             "PRAGMA mmap_size=0;"
                                             "PRAGMA cache_spill=OFF;"
                                             "PRAGMA temp_store=MEMORY;";

bool hasWriteAheadLog(const QString &file)
{
    const QFileInfo log(file + QStringLiteral("-wal"));
    return log.exists() && log.size() > 0;
}

/// "file:" name of a database nobody changes: SQLite then locks nothing and makes no companions.
QByteArray immutableUri(const QString &file)
{
    return "file://" + QUrl::toPercentEncoding(file, "/") + "?immutable=1";
}

SQLite::Database openDatabase(const QString &file, Connection::Mode mode, const QByteArray &vfs)
{
    QByteArray name = QFile::encodeName(file);
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW;
    if (mode == Connection::Mode::ReadOnly && !hasWriteAheadLog(file)) {
        name = immutableUri(file);
        flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOFOLLOW;
    }
    return SQLite::Database(name.constData(), flags, 0, vfs.isEmpty() ? nullptr : vfs.constData());
}

void applySafetySettings(sqlite3 *handle)
{
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_wal_autocheckpoint(handle, 0);
}

/// In exclusive mode the index of the log is kept in memory, so that not even that file is touched.
Result<void> applyReadOnly(Connection &connection)
{
    connection.setCheckpointsOnClose(false);
    return connection.execute("PRAGMA locking_mode=EXCLUSIVE; PRAGMA query_only=ON;");
}

Result<void> applyWriteAheadLog(Connection &connection)
{
    const auto statement = connection.prepare("PRAGMA journal_mode=WAL");
    if (!statement)
        return failure(statement.error());
    const auto row = (*statement)->step();
    if (!row)
        return failure(row.error());
    const Value mode = (*statement)->value(0);
    (*statement)->reset();
    if (mode != Value(QStringLiteral("wal")))
        return failure(
            QStringLiteral("The folder of the journal “%1” does not support a write-ahead log. "
                           "Keep the journal on a disk of this computer.")
                .arg(connection.file()));
    return connection.execute("PRAGMA synchronous=NORMAL");
}

Result<void> applySettings(Connection &connection, Connection::Mode mode)
{
    applySafetySettings(connection.handle());
    if (auto registered = registerSearchFunction(connection.handle()); !registered)
        return registered;
    return connection.execute(settingsOfEveryConnection).and_then([&] {
        return mode == Connection::Mode::ReadOnly ? applyReadOnly(connection)
                                                  : applyWriteAheadLog(connection);
    });
}

} // namespace

Error Connection::Private::failed(int sqliteCode)
{
    sqlite3 *handle = database.getHandle();
    const bool isLatest = sqlite3_extended_errcode(handle) == sqliteCode;
    const char *message = isLatest ? sqlite3_errmsg(handle) : sqlite3_errstr(sqliteCode);
    lastFault = storeFaultOf(sqliteCode, sqlite3_system_errno(handle));
    return storeError(lastFault, file,
                      QStringLiteral("%1 (%2)").arg(QString::fromUtf8(message)).arg(sqliteCode));
}

Result<std::unique_ptr<Connection>> Connection::open(const QString &file, Mode mode,
                                                     const QByteArray &vfs)
{
    if (mode == Mode::Create) {
        if (auto created = createPrivateFile(file); !created)
            return failure(created.error());
    }
    try {
        auto priv = std::make_unique<Private>(file, openDatabase(file, mode, vfs));
        std::unique_ptr<Connection> connection(new Connection(std::move(priv)));
        if (auto applied = applySettings(*connection, mode); !applied) {
            connection->setCheckpointsOnClose(false);
            return failure(applied.error());
        }
        return connection;
    } catch (const SQLite::Exception &exception) {
        return failure(storeError(storeFaultOf(exception.getErrorCode(), errno), file,
                                  QString::fromUtf8(exception.what())));
    }
}

Connection::Connection(std::unique_ptr<Private> priv) : d(std::move(priv)) {}

Connection::~Connection() = default;

Result<Statement *> Connection::prepare(const QByteArray &sql)
{
    if (const auto known = d->statements.constFind(sql); known != d->statements.cend()) {
        SQLite::Statement &statement = (*known)->d->statement;
        statement.tryReset();
        statement.clearBindings();
        return known->get();
    }
    try {
        auto priv = std::make_unique<Statement::Private>(*d, sql);
        const std::shared_ptr<Statement> statement(new Statement(std::move(priv)));
        d->statements.insert(sql, statement);
        return statement.get();
    } catch (const SQLite::Exception &exception) {
        return failure(d->failed(exception.getExtendedErrorCode()));
    }
}

Result<void> Connection::execute(const QByteArray &sql)
{
    const int code = d->database.tryExec(sql.constData());
    if (code != SQLITE_OK)
        return failure(d->failed(code));
    return {};
}

bool Connection::inTransaction() const
{
    return sqlite3_get_autocommit(handle()) == 0;
}

int Connection::changedRows() const
{
    return d->database.getChanges();
}

StoreFault Connection::lastFault() const
{
    return d->lastFault;
}

Result<void> Connection::checkpoint()
{
    const int code = sqlite3_wal_checkpoint_v2(handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE,
                                               nullptr, nullptr);
    if (code != SQLITE_OK)
        return failure(d->failed(code));
    d->logIsSuspect = false;
    return {};
}

void Connection::checkpointAsFarAsPossible()
{
    (void)sqlite3_wal_checkpoint_v2(handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

void Connection::setCheckpointsOnClose(bool checkpoints)
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, checkpoints ? 0 : 1, nullptr);
}

void Connection::setEnforcesForeignKeys(bool enforces)
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_ENABLE_FKEY, enforces ? 1 : 0, nullptr);
}

const QString &Connection::file() const
{
    return d->file;
}

sqlite3 *Connection::handle() const
{
    return d->database.getHandle();
}

} // namespace tembra

#include "Store/File/ConnectionPrivate.h"

#include "Store/File/CheckpointId.h"
#include "Store/File/PrivateFile.h"
#include "Store/Query/SearchFunction.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra {

namespace {

constexpr char settingsOfEveryConnection[] = "PRAGMA cell_size_check=ON;"
                                             "PRAGMA mmap_size=0;"
                                             "PRAGMA cache_spill=OFF;"
                                             "PRAGMA temp_store=MEMORY;";

constexpr int triesToOpenForWriting = 3;

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
    if (mode == Connection::Mode::InMemory)
        return SQLite::Database(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (mode == Connection::Mode::WithoutLog
        || (mode == Connection::Mode::ReadOnly && !hasWriteAheadLog(file))) {
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
    return connection.execute(settingsOfEveryConnection).and_then([&]() -> Result<void> {
        switch (mode) {
        case Connection::Mode::InMemory:
            connection.setCheckpointsOnClose(false);
            return {};
        case Connection::Mode::WithoutLog:
        case Connection::Mode::ReadOnly:
            return applyReadOnly(connection);
        case Connection::Mode::Create:
        case Connection::Mode::ReadWrite:
            break;
        }
        return applyWriteAheadLog(connection);
    });
}

/// SQLite goes on with a file that it could open for reading only, or a log of that kind; every
/// save would then fail.
bool isReadOnly(sqlite3 *handle)
{
    if (sqlite3_db_readonly(handle, "main") == 1)
        return true;
    const int code = sqlite3_exec(handle, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    if (code == SQLITE_OK)
        sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
    return (code & 0xff) == SQLITE_READONLY;
}

/// The file is not opened once more to find out: closing it would take SQLite's locks away.
Error openedReadOnly(const QString &file)
{
    for (const QString &path :
         {file, QString(file + QLatin1String("-wal")), QString(file + QLatin1String("-shm"))}) {
        if (::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK | W_OK, AT_EACCESS) != 0
            && errno != ENOENT)
            return fileError(path, errno);
    }
    return {QStringLiteral("“%1” could be opened for reading only, so nothing could be saved. "
                           "Close other programs and try again.")
                .arg(file),
            QStringLiteral("SQLite opened the file or its log read-only")};
}

} // namespace

void OpenedFiles::remember(const QString &file)
{
    m_file = identityOf(file);
    m_log = identityOf(file + QLatin1String("-wal"));
}

bool OpenedFiles::areInPlace(const QString &file) const
{
    return identityOf(file) == m_file && identityOf(file + QLatin1String("-wal")) == m_log;
}

std::optional<OpenedFiles::Identity> OpenedFiles::identityOf(const QString &path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return Identity{status.st_dev, status.st_ino};
}

Error Connection::Private::failed(int sqliteCode)
{
    sqlite3 *handle = database.getHandle();
    const bool isLatest = sqlite3_extended_errcode(handle) == sqliteCode;
    const char *message = isLatest ? sqlite3_errmsg(handle) : sqlite3_errstr(sqliteCode);
    lastFault = storeFaultOf(sqliteCode, sqlite3_system_errno(handle));
    return storeError(lastFault, file,
                      QStringLiteral("%1 (%2)").arg(QString::fromUtf8(message)).arg(sqliteCode));
}

StoreResult<std::unique_ptr<Connection>> Connection::open(const QString &file, Mode mode,
                                                          const QByteArray &vfs)
{
    if (mode == Mode::Create) {
        if (auto created = createPrivateFile(file); !created)
            return failure(created.error());
    }
    const bool writes = mode == Mode::Create || mode == Mode::ReadWrite;
    auto opened = tryOpen(file, mode, vfs);
    // What kept a file from being opened for writing, such as too many open files, may be over.
    for (int tries = 1; writes && opened && isReadOnly((*opened)->handle()); ++tries) {
        (*opened)->setCheckpointsOnClose(false);
        if (tries == triesToOpenForWriting)
            return failure(openedReadOnly(file));
        opened->reset();
        opened = tryOpen(file, mode, vfs);
    }
    if (opened)
        (*opened)->d->files.remember(file);
    return opened;
}

StoreResult<std::unique_ptr<Connection>> Connection::tryOpen(const QString &file, Mode mode,
                                                             const QByteArray &vfs)
{
    try {
        auto priv = std::make_unique<Private>(file, openDatabase(file, mode, vfs));
        std::unique_ptr<Connection> connection(new Connection(std::move(priv)));
        if (auto applied = applySettings(*connection, mode); !applied) {
            connection->setCheckpointsOnClose(false);
            return tl::unexpected(StoreError(applied.error(), connection->lastFault()));
        }
        return connection;
    } catch (const SQLite::Exception &exception) {
        return tl::unexpected(storeError(storeFaultOf(exception.getErrorCode(), errno), file,
                                         QString::fromUtf8(exception.what())));
    }
}

StoreResult<std::unique_ptr<Connection>> Connection::copyInMemory(const Connection &source)
{
    auto copy = open({}, Mode::InMemory);
    if (!copy)
        return copy;
    sqlite3 *target = (*copy)->handle();
    sqlite3_backup *backup = sqlite3_backup_init(target, "main", source.handle(), "main");
    sqlite3_backup_step(backup, -1);
    if (const int code = sqlite3_backup_finish(backup); code != SQLITE_OK)
        return failure((*copy)->d->failed(code));
    if (auto readOnly = (*copy)->execute("PRAGMA query_only=ON"); !readOnly)
        return failure(readOnly.error());
    return copy;
}

Connection::Connection(std::unique_ptr<Private> priv) : d(std::move(priv)) {}

Connection::~Connection()
{
    // SQLite does a checkpoint of its own when the last connection closes, and deletes the log.
    if (d->checkpointsOnClose && hasWriteAheadLog(d->file)
        && !(isInPlace() && renewCheckpointId(*this)))
        setCheckpointsOnClose(false);
}

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
    if (hasWriteAheadLog(d->file)) {
        if (auto renewed = renewCheckpointId(*this); !renewed)
            return renewed;
    }
    const int code = sqlite3_wal_checkpoint_v2(handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE,
                                               nullptr, nullptr);
    if (code != SQLITE_OK)
        return failure(d->failed(code));
    d->logIsSuspect = false;
    return {};
}

void Connection::checkpointAsFarAsPossible()
{
    if (!renewCheckpointId(*this))
        return;
    (void)sqlite3_wal_checkpoint_v2(handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

void Connection::setCheckpointsOnClose(bool checkpoints)
{
    d->checkpointsOnClose = checkpoints;
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, checkpoints ? 0 : 1, nullptr);
}

void Connection::setEnforcesForeignKeys(bool enforces)
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_ENABLE_FKEY, enforces ? 1 : 0, nullptr);
}

bool Connection::isInPlace() const
{
    return d->files.areInPlace(d->file);
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

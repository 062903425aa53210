#include "Store/File/StoreInspection.h"

#include "Store/File/CheckpointId.h"
#include "Store/File/Connection.h"
#include "Store/File/SchemaCheck.h"
#include "Store/File/Statement.h"
#include "Store/File/StoreMeta.h"
#include "Store/Schema/ObjectModel.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra {

namespace {

struct FileState
{
    bool exists = false;
    bool isRegular = false;
    bool isOwn = true;
    qint64 size = 0;
};

FileState stateOf(const QString &file)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(file).constData(), &status) != 0)
        return {};
    return {true, S_ISREG(status.st_mode), status.st_uid == ::geteuid(), qint64(status.st_size)};
}

tl::unexpected<StoreError> notAJournal(const QString &file, const QString &detail)
{
    return tl::unexpected(storeError(StoreFault::NotAJournal, file, detail));
}

/// No links, folders, pipes or devices, and no log without the store it belongs to.
StoreResult<void> checkKinds(const QString &file, const FileState &store)
{
    if (store.exists && !store.isRegular)
        return failure(
            QStringLiteral(
                "“%1” is not a file. Move it somewhere else, or put your journal in its place.")
                .arg(file));
    for (const QString &companion : companionsOf(file)) {
        const FileState state = stateOf(companion);
        if (state.exists && !state.isRegular)
            return failure(
                QStringLiteral("“%1” is not a file. Move it somewhere else.").arg(companion));
        if (state.size == 0 || companion.endsWith(QLatin1String("-shm")))
            continue;
        if (store.size == 0)
            return tl::unexpected(StoreError(
                {QStringLiteral(
                     "The journal “%1” is missing, but “%2” holds a part of it. Put the journal "
                     "back, or move that file somewhere else.")
                     .arg(file, companion),
                 {}},
                StoreFault::Damaged));
        if (companion.endsWith(QLatin1String("-journal")))
            return failure(
                QStringLiteral(
                    "Another program was stopped while it changed “%1”. Open it with that "
                    "program again, or put a copy of your journal in its place.")
                    .arg(file));
    }
    return {};
}

StoreResult<void> checkPermissions(const QString &file)
{
    const QString folder = QFileInfo(file).path();
    if (::faccessat(AT_FDCWD, QFile::encodeName(folder).constData(), R_OK | W_OK | X_OK, AT_EACCESS)
        != 0)
        return failure(fileError(folder, errno));
    for (const QString &path : QStringList{file} + companionsOf(file)) {
        if (!stateOf(path).isOwn)
            return failure(
                QStringLiteral(
                    "“%1” belongs to another user of this computer, who can read and change what "
                    "is written to it. Use a copy of your own.")
                    .arg(path));
        if (::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK | W_OK, AT_EACCESS) != 0
            && errno != ENOENT)
            return failure(fileError(path, errno));
    }
    return {};
}

/// The first bytes tell another program's file from a damaged one of ours.
StoreResult<void> checkSignature(const QString &file)
{
    constexpr std::array<char, 16> signature = {'S', 'Q', 'L', 'i', 't', 'e', ' ', 'f',
                                                'o', 'r', 'm', 'a', 't', ' ', '3', '\0'};
    std::array<char, 16> start = {};
    const int handle = ::open(QFile::encodeName(file).constData(),
                              O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (handle < 0)
        return failure(fileError(file, errno));
    const ssize_t size = ::read(handle, start.data(), start.size());
    const int reason = errno;
    ::close(handle);
    if (size < 0)
        return failure(fileError(file, reason));
    if (std::memcmp(start.data(), signature.data(), size_t(size)) != 0)
        return notAJournal(file, QStringLiteral("no database signature"));
    return {};
}

Result<qint64> number(Connection &connection, const QByteArray &sql)
{
    const auto statement = connection.prepare(sql);
    if (!statement)
        return failure(statement.error());
    const auto row = (*statement)->step();
    if (!row)
        return failure(row.error());
    const qint64 result = *row ? (*statement)->key(0) : 0;
    (*statement)->reset();
    return result;
}

/// Refuses other programs' databases, and newer ones of this program (which keeps "store_meta").
StoreResult<int> readVersion(Connection &connection, const ObjectModel &model)
{
    const QString &file = connection.file();
    const auto failed = [&](const Error &error) {
        return tl::unexpected(StoreError(error, connection.lastFault()));
    };
    const auto metaTables = number(connection, "SELECT count(*) FROM sqlite_schema "
                                               "WHERE type = 'table' AND name = 'store_meta'");
    if (!metaTables)
        return failed(metaTables.error());
    const auto version = number(connection, "PRAGMA user_version");
    if (!version)
        return failed(version.error());
    if (*metaTables == 0 || *version <= 0)
        return notAJournal(file, QStringLiteral("a database without store_meta or version"));
    if (*version > model.version())
        return failure(
            QStringLiteral(
                "The journal “%1” was made by a newer version of Tembra. Open it with that "
                "version, or install the newest one.")
                .arg(file),
            QStringLiteral("schema version %1, at most %2 is known")
                .arg(*version)
                .arg(model.version()));
    return int(*version);
}

Result<QList<QByteArray>> tableNames(Connection &connection)
{
    const auto statement = connection.prepare("SELECT name FROM sqlite_schema WHERE type = 'table' "
                                              "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
    if (!statement)
        return failure(statement.error());
    QList<QByteArray> names;
    for (;;) {
        const auto row = (*statement)->step();
        if (!row)
            return failure(row.error());
        if (!*row)
            return names;
        const Value name = (*statement)->value(0);
        if (const auto *text = std::get_if<QString>(&name))
            names.append(text->toUtf8());
    }
}

Result<void> readFirstRow(Connection &connection, const QByteArray &columns,
                          const QByteArray &table)
{
    QByteArray quoted = table;
    quoted.replace('"', "\"\"");
    const QByteArray sql = "SELECT " + columns + " FROM \"" + quoted + "\" LIMIT 1";
    return connection.prepare(sql).and_then([](Statement *statement) { return statement->run(); });
}

Result<void> readFirstRows(Connection &connection)
{
    const auto tables = tableNames(connection);
    if (!tables)
        return failure(tables.error());
    for (const QByteArray &table : *tables) {
        if (auto read = readFirstRow(connection, "*", table); !read)
            return read;
    }
    return {};
}

StoreResult<int> inspectDatabase(Connection &connection, const ObjectModel &model)
{
    const auto version = readVersion(connection, model);
    if (!version)
        return version;
    if (auto read = readFirstRows(connection); !read)
        return tl::unexpected(StoreError(read.error(), connection.lastFault()));
    return StoreMeta::read(connection)
        .and_then([&](const StoreMeta &) { return checkSchema(connection, model, *version); })
        .map([&] { return *version; });
}

} // namespace

QStringList companionsOf(const QString &file)
{
    return {file + QLatin1String("-wal"), file + QLatin1String("-shm"),
            file + QLatin1String("-journal")};
}

StoreResult<StoreInspection> inspectStore(const QString &file, const ObjectModel &model,
                                          const QByteArray &vfs)
{
    const FileState store = stateOf(file);
    auto checked = checkKinds(file, store).and_then([&] { return checkPermissions(file); });
    if (!checked)
        return tl::unexpected(checked.error());
    if (store.size == 0)
        return StoreInspection{.wasEmpty = store.exists};
    if (auto known = checkSignature(file); !known)
        return tl::unexpected(known.error());
    const auto belongs = logBelongsTo(file);
    if (!belongs)
        return failure(belongs.error());
    const auto mode = *belongs ? Connection::Mode::ReadOnly : Connection::Mode::WithoutLog;
    const auto connection = Connection::open(file, mode, vfs);
    if (!connection)
        return tl::unexpected(connection.error());
    return inspectDatabase(**connection, model).map([&](int version) {
        return StoreInspection{.version = version, .logBelongs = *belongs};
    });
}

} // namespace tembra

#include "Store/File/CheckpointId.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/File/WriteAheadLog.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <array>
#include <cerrno>

namespace tembra {

namespace {

constexpr qsizetype databaseHeaderSize = 100;
constexpr qsizetype idOffset = 68;

/// Never 0, which is what a database without an id has.
quint32 newId()
{
    return QRandomGenerator::system()->bounded(1U, 0xffffffffU);
}

Result<quint32> currentId(Connection &connection)
{
    const auto statement = connection.prepare("PRAGMA application_id");
    if (!statement)
        return failure(statement.error());
    const auto row = (*statement)->step();
    if (!row)
        return failure(row.error());
    const auto id = quint32(*row ? (*statement)->key(0) : 0);
    (*statement)->reset();
    return id;
}

Result<void> writeId(Connection &connection, quint32 id)
{
    // SQLite reads and writes it as a signed number.
    return connection.execute("PRAGMA application_id = " + QByteArray::number(qint32(id)));
}

} // namespace

Result<void> repeatCheckpointId(Connection &connection)
{
    return currentId(connection).and_then([&](quint32 id) { return writeId(connection, id); });
}

Result<void> renewCheckpointId(Connection &connection)
{
    // The old one first: this may be where the log begins anew.
    return repeatCheckpointId(connection).and_then([&] { return writeId(connection, newId()); });
}

Result<void> renewCheckpointIdOfCopy(const QString &file)
{
    std::array<char, 4> bytes = {};
    qToBigEndian(newId(), bytes.data());
    QFile copy(file);
    if (!copy.open(QIODevice::ReadWrite) || !copy.seek(idOffset)
        || copy.write(bytes.data(), bytes.size()) != qint64(bytes.size()) || !copy.flush())
        return failure(fileError(file, EIO));
    return {};
}

quint32 checkpointIdIn(const QByteArray &header)
{
    return header.size() < databaseHeaderSize
               ? 0
               : qFromBigEndian<quint32>(header.constData() + idOffset);
}

Result<bool> logBelongsTo(const QString &file)
{
    const auto log = WriteAheadLog::read(file + QLatin1String("-wal"));
    if (!log)
        return failure(log.error());
    if (!log->hasTransactions)
        return true;
    QFile database(file);
    if (!database.open(QIODevice::ReadOnly))
        return failure(fileError(file, EIO));
    const quint32 id = checkpointIdIn(database.read(databaseHeaderSize));
    return log->checkpointIds.isEmpty() ? id == 0 : log->checkpointIds.contains(id);
}

} // namespace tembra

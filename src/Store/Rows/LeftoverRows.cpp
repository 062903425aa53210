#include "Store/Rows/LeftoverRows.h"

#include "Store/File/Connection.h"
#include "Store/Query/SqlText.h"
#include "Store/Rows/KeyChunks.h"
#include "Store/Rows/RecordArchive.h"

#include <algorithm>

namespace tembra {

namespace {

/// Some milliseconds of work.
constexpr size_t ownersOfOnePiece = 128;

constexpr char createTable[] = "CREATE TABLE IF NOT EXISTS leftover ("
                               "\"table\" TEXT NOT NULL, \"column\" TEXT NOT NULL, "
                               "owner INTEGER NOT NULL, "
                               "PRIMARY KEY (\"table\", \"column\", owner)) WITHOUT ROWID";
constexpr char dropTable[] = "DROP TABLE leftover";

QByteArray literal(const QByteArray &text)
{
    return QByteArray('\'' + QByteArray(text).replace('\'', "''") + '\'');
}

QByteArray ownersOf(const QByteArray &table, const QByteArray &column)
{
    return QByteArray("(SELECT owner FROM leftover WHERE \"table\" = " + literal(table)
                      + " AND \"column\" = " + literal(column) + ')');
}

Result<QList<std::pair<QByteArray, QByteArray>>> leftColumns(Connection &connection)
{
    QList<std::pair<QByteArray, QByteArray>> found;
    const auto known = connection.prepare(
        "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'leftover'");
    if (!known)
        return failure(known.error());
    const Result<bool> isThere = (*known)->step();
    (*known)->reset();
    if (!isThere)
        return failure(isThere.error());
    if (!*isThere)
        return found;
    const auto select = connection.prepare("SELECT DISTINCT \"table\", \"column\" FROM leftover");
    if (!select)
        return failure(select.error());
    Result<bool> row = (*select)->step();
    for (; row && *row; row = (*select)->step()) {
        const auto text = [&](int column) {
            const Value value = (*select)->value(column);
            const auto *name = std::get_if<QString>(&value);
            return name ? name->toUtf8() : QByteArray();
        };
        found.append({text(0), text(1)});
    }
    if (!row)
        return failure(row.error());
    return found;
}

} // namespace

LeftoverRows::LeftoverRows(const ObjectModel &schema, Connection &connection, RowReader &reader)
    : m_schema(schema)
    , m_connection(connection)
    , m_reader(reader)
{
}

bool LeftoverRows::canBeLeft(const ObjectModel &schema, const ToOneDescription &column)
{
    const EntityDescription &table = schema.entity(column.entity);
    return column.rule == DeleteRule::Cascade && table.references.empty() && table.toManys.empty()
           && table.toOnes.size() == 1;
}

Result<void> LeftoverRows::leave(Transaction &transaction, const ToOneDescription &column,
                                 std::span<const qint64> owners)
{
    if (Result<void> made = transaction.execute(createTable); !made)
        return made;
    const EntityDescription &table = m_schema.entity(column.entity);
    const auto insert = m_connection.prepare(
        "INSERT OR IGNORE INTO leftover VALUES (" + literal(table.table) + ", "
        + literal(table.columns[size_t(column.property)]) + ", ?)");
    if (!insert)
        return failure(insert.error());
    for (const qint64 owner : owners) {
        (*insert)->bindKey(1, owner);
        if (Result<void> named = transaction.run(**insert); !named)
            return named;
    }
    return {};
}

void LeftoverRows::add(const ToOneDescription &column, std::vector<qint64> owners,
                       std::weak_ptr<RecordArchive> archive)
{
    m_parts.push_back({column, std::move(owners), std::move(archive)});
}

bool LeftoverRows::isEmpty(int entity) const
{
    return std::none_of(m_parts.begin(), m_parts.end(),
                        [&](const Part &part) { return part.column.entity == entity; });
}

bool LeftoverRows::includes(ObjectID id, const RowReader::Row &row) const
{
    return std::any_of(m_parts.begin(), m_parts.end(), [&](const Part &part) {
        if (part.column.entity != id.entity)
            return false;
        const auto *owner = std::get_if<qint64>(&row[size_t(part.column.property)]);
        return owner && std::binary_search(part.owners.begin(), part.owners.end(), *owner);
    });
}

std::optional<HiddenRecords> LeftoverRows::hidden(int entity) const
{
    if (isEmpty(entity))
        return std::nullopt;
    const EntityDescription &table = m_schema.entity(entity);
    const QByteArray &column = table.columns[size_t(table.toOnes.front().property)];
    return HiddenRecords{column, ownersOf(table.table, column)};
}

Result<void> LeftoverRows::deletePiece()
{
    if (isEmpty())
        return {};
    Part &part = m_parts.front();
    const std::span owners = std::span(std::as_const(part.owners)).subspan(part.done);
    const std::span piece = owners.first(std::min(ownersOfOnePiece, owners.size()));
    const std::shared_ptr<RecordArchive> archive = part.archive.lock();
    std::vector<std::pair<qint64, RowReader::Row>> rows;
    if (archive) {
        const Result<void> read = m_reader.referringRows(part.column, piece,
                                                         [&](qint64 key, RowReader::Row row) {
                                                             rows.emplace_back(key, std::move(row));
                                                         });
        if (!read)
            return read;
    }
    const bool endsPart = piece.size() == owners.size();
    if (Result<void> gone = deleteRowsOf(part.column, piece, endsPart && m_parts.size() == 1);
        !gone)
        return gone;
    // Not before: what could not be deleted is read again.
    for (const auto &[key, row] : rows)
        archive->addRow({part.column.entity, key}, row);
    part.done += piece.size();
    if (endsPart) {
        if (archive)
            archive->finish();
        m_parts.pop_front();
    }
    return {};
}

Result<void> LeftoverRows::deleteRowsOf(const ToOneDescription &column, std::span<const qint64> owners,
                                        bool isLast)
{
    Result<Transaction> transaction = Transaction::begin(m_connection,
                                                         Transaction::Durability::Draft);
    if (!transaction)
        return failure(transaction.error());
    const EntityDescription &table = m_schema.entity(column.entity);
    Result<void> done = KeyChunks::forEach(m_connection,
                                           "DELETE FROM " + quoted(table.table) + " WHERE "
                                               + quoted(table.columns[size_t(column.property)])
                                               + " IN ",
                                           owners, {}, [&](Statement &statement) {
                                               return transaction->run(statement);
                                           });
    if (done && isLast)
        done = transaction->execute(dropTable);
    return done ? transaction->commit() : done;
}

Result<void> LeftoverRows::deleteAll(Connection &connection)
{
    const auto columns = leftColumns(connection);
    if (!columns)
        return failure(columns.error());
    if (columns->isEmpty())
        return {};
    Result<Transaction> transaction = Transaction::begin(connection,
                                                         Transaction::Durability::Durable);
    if (!transaction)
        return failure(transaction.error());
    for (const auto &[table, column] : *columns) {
        const Result<void> done = transaction->execute("DELETE FROM " + quoted(table) + " WHERE "
                                                       + quoted(column) + " IN "
                                                       + ownersOf(table, column));
        if (!done)
            return done;
    }
    return transaction->execute(dropTable).and_then([&] { return transaction->commit(); });
}

} // namespace tembra

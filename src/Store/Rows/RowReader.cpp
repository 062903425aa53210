#include "Store/Rows/RowReader.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/Query/SqlText.h"
#include "Store/Rows/KeyChunks.h"
#include "Store/Schema/ObjectModel.h"

namespace tembra {

RowReader::RowReader(const ObjectModel &schema, Connection &connection)
    : m_schema(schema)
    , m_connection(connection)
{
    for (int entity = 0; entity < schema.entityCount(); ++entity)
        m_statements.push_back({quotedList(schema.entity(entity).columns)});
}

RowReader::Row RowReader::readRow(const Statement &statement, int entity, int firstColumn) const
{
    const int count = int(m_schema.entity(entity).columns.size());
    Row row;
    row.reserve(size_t(count));
    for (int column = 0; column < count; ++column)
        row.push_back(statement.value(firstColumn + column));
    return row;
}

Result<std::optional<RowReader::Row>> RowReader::row(ObjectID id)
{
    EntityStatements &statements = m_statements[size_t(id.entity)];
    if (!statements.row) {
        const QByteArray table = quoted(m_schema.entity(id.entity).table);
        const auto prepared = m_connection.prepare("SELECT " + statements.columns + " FROM " + table
                                                   + " WHERE id = ?");
        if (!prepared)
            return failure(prepared.error());
        statements.row = *prepared;
    }
    Statement &statement = *statements.row;
    statement.bindKey(1, id.key);
    const Result<bool> found = statement.step();
    if (!found)
        return failure(found.error());
    if (!*found)
        return std::optional<Row>();
    Row row = readRow(statement, id.entity, 0);
    statement.reset();
    return std::optional<Row>(std::move(row));
}

RowReader::StoredRowVisitor RowReader::decoding(int entity, const RowVisitor &visit) const
{
    return [this, entity, &visit](qint64 key, const Statement &row) {
        visit(key, decode(row, entity));
    };
}

Result<void> RowReader::rows(int entity, std::span<const qint64> keys, const RowVisitor &visit)
{
    return storedRows(entity, keys, decoding(entity, visit));
}

Result<void> RowReader::storedRows(int entity, std::span<const qint64> keys,
                                   const StoredRowVisitor &visit)
{
    return rowsOf(entity, QByteArrayLiteral("id"), keys, visit);
}

Result<void> RowReader::referringRows(const ToOneDescription &column,
                                      std::span<const qint64> destinations, const RowVisitor &visit)
{
    return storedReferrers(column, destinations, decoding(column.entity, visit));
}

Result<void> RowReader::storedReferrers(const ToOneDescription &column,
                                        std::span<const qint64> destinations,
                                        const StoredRowVisitor &visit)
{
    return rowsOf(column.entity,
                  quoted(m_schema.entity(column.entity).columns[size_t(column.property)]),
                  destinations, visit);
}

Result<void> RowReader::rowsOf(int entity, const QByteArray &column, std::span<const qint64> keys,
                               const StoredRowVisitor &visit)
{
    const QByteArray table = quoted(m_schema.entity(entity).table);
    const QByteArray sql = "SELECT id," + m_statements[size_t(entity)].columns + " FROM " + table
                           + " WHERE " + column + " IN ";
    return KeyChunks::forEach(m_connection, sql, keys, {},
                              [&](Statement &statement) -> Result<void> {
                                  Result<bool> found = statement.step();
                                  for (; found && *found; found = statement.step())
                                      visit(statement.key(0), statement);
                                  return found.map([](bool) {});
                              });
}

Result<bool> RowReader::exists(ObjectID id)
{
    EntityStatements &statements = m_statements[size_t(id.entity)];
    if (!statements.exists) {
        const auto prepared = m_connection.prepare(
            "SELECT 1 FROM " + quoted(m_schema.entity(id.entity).table) + " WHERE id = ?");
        if (!prepared)
            return failure(prepared.error());
        statements.exists = *prepared;
    }
    statements.exists->bindKey(1, id.key);
    const Result<bool> found = statements.exists->step();
    statements.exists->reset();
    return found;
}

Result<bool> RowReader::isLinked(const ToManyDescription &link, qint64 owner, qint64 other)
{
    const auto statement = m_connection.prepare("SELECT 1 FROM " + quoted(link.joinTable)
                                                + " WHERE " + quoted(link.ownColumn) + " = ? AND "
                                                + quoted(link.destinationColumn) + " = ?");
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, owner);
    (*statement)->bindKey(2, other);
    const Result<bool> found = (*statement)->step();
    (*statement)->reset();
    return found;
}

Result<void> RowReader::related(const ToManyDescription &link, std::span<const qint64> owners,
                                const PairVisitor &visit)
{
    const EntityDescription &destination = m_schema.entity(link.destination);
    const QByteArray table = quoted(link.joined ? link.joinTable : destination.table);
    const QByteArray owner = quoted(link.joined ? link.ownColumn
                                                : destination.columns[size_t(link.inverse)]);
    const QByteArray other = link.joined ? quoted(link.destinationColumn) : QByteArrayLiteral("id");
    return pairs("SELECT " + owner + ',' + other + " FROM " + table + " WHERE " + owner + " IN ",
                 owners, visit);
}

Result<void> RowReader::referrers(const ToOneDescription &column,
                                  std::span<const qint64> destinations, const PairVisitor &visit)
{
    const EntityDescription &table = m_schema.entity(column.entity);
    const QByteArray name = quoted(table.columns[size_t(column.property)]);
    return pairs("SELECT id," + name + " FROM " + quoted(table.table) + " WHERE " + name + " IN ",
                 destinations, visit);
}

Result<void> RowReader::pairs(const QByteArray &sql, std::span<const qint64> keys,
                              const PairVisitor &visit)
{
    return KeyChunks::forEach(m_connection, sql, keys, {},
                              [&](Statement &statement) -> Result<void> {
                                  Result<bool> found = statement.step();
                                  for (; found && *found; found = statement.step())
                                      visit(statement.key(0), statement.key(1));
                                  return found.map([](bool) {});
                              });
}

} // namespace tembra

#include "Store/Rows/RowWriter.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/File/Transaction.h"
#include "Store/Query/SqlText.h"
#include "Store/Rows/KeyChunks.h"
#include "Store/Schema/ObjectModel.h"

namespace tembra {

RowWriter::RowWriter(const ObjectModel &schema, Connection &connection)
    : m_schema(schema)
    , m_connection(connection)
    , m_inserts(2 * size_t(schema.entityCount()), nullptr)
    , m_updates(size_t(schema.entityCount()))
{
}

QByteArray RowWriter::placeholder(int entity, int property) const
{
    const ToOneDescription *toOne = m_schema.entity(entity).toOne(property);
    if (!toOne)
        return QByteArrayLiteral("?");
    return QByteArray("(SELECT id FROM " + quoted(m_schema.entity(toOne->destination).table)
                      + " WHERE id = ?)");
}

Result<Statement *> RowWriter::insertStatement(int entity, ToOnes toOnes)
{
    const bool isPlain = toOnes == ToOnes::Plain;
    Statement *&statement = m_inserts[size_t(entity + (isPlain ? m_schema.entityCount() : 0))];
    if (statement)
        return statement;
    const EntityDescription &table = m_schema.entity(entity);
    QByteArray placeholders = QByteArrayLiteral("?");
    for (size_t property = 0; property < table.columns.size(); ++property)
        placeholders += ','
                        + (isPlain ? QByteArrayLiteral("?") : placeholder(entity, int(property)));
    const auto prepared = m_connection.prepare("INSERT INTO " + quoted(table.table) + " (id,"
                                               + quotedList(table.columns) + ") VALUES ("
                                               + placeholders + ')');
    if (prepared)
        statement = *prepared;
    return prepared;
}

Result<void> RowWriter::insertRow(Transaction &transaction, ObjectID id,
                                  const std::vector<Value> &values)
{
    const auto statement = insertStatement(id.entity, ToOnes::Checked);
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, id.key);
    for (size_t column = 0; column < values.size(); ++column)
        (*statement)->bind(int(column) + 2, values[column]);
    return transaction.run(**statement);
}

Result<void> RowWriter::restoreRow(Transaction &transaction, ObjectID id,
                                   std::span<const StoredValue> values)
{
    const auto statement = insertStatement(id.entity, ToOnes::Plain);
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, id.key);
    for (size_t column = 0; column < values.size(); ++column)
        (*statement)->bindStored(int(column) + 2, values[column]);
    return transaction.run(**statement);
}

Result<Statement *> RowWriter::updateStatement(int entity, PropertyMask columns)
{
    QHash<PropertyMask, Statement *> &known = m_updates[size_t(entity)];
    if (Statement *statement = known.value(columns))
        return statement;
    const EntityDescription &table = m_schema.entity(entity);
    QByteArray assignments;
    for (size_t column = 0; column < table.columns.size(); ++column) {
        if (!(columns & propertyBit(int(column))))
            continue;
        if (!assignments.isEmpty())
            assignments += ',';
        assignments += quoted(table.columns[column]) + " = " + placeholder(entity, int(column));
    }
    const auto prepared = m_connection.prepare("UPDATE " + quoted(table.table) + " SET "
                                               + assignments + " WHERE id = ?");
    if (prepared)
        known.insert(columns, *prepared);
    return prepared;
}

Result<bool> RowWriter::updateRow(Transaction &transaction, ObjectID id, PropertyMask columns,
                                  const std::vector<Value> &values)
{
    const auto statement = updateStatement(id.entity, columns);
    if (!statement)
        return failure(statement.error());
    int index = 1;
    for (size_t column = 0; column < values.size(); ++column) {
        if (columns & propertyBit(int(column)))
            (*statement)->bind(index++, values[column]);
    }
    (*statement)->bindKey(index, id.key);
    if (const Result<void> done = transaction.run(**statement); !done)
        return failure(done.error());
    return m_connection.changedRows() > 0;
}

Result<void> RowWriter::addLink(Transaction &transaction, const ToManyDescription &link,
                                qint64 owner, qint64 other)
{
    const QByteArray ownTable = quoted(m_schema.entity(link.entity).table);
    const QByteArray otherTable = quoted(m_schema.entity(link.destination).table);
    const auto statement = m_connection.prepare(
        "INSERT OR IGNORE INTO " + quoted(link.joinTable) + " (" + quoted(link.ownColumn) + ','
        + quoted(link.destinationColumn) + ") SELECT o.id, d.id FROM " + ownTable + " o, "
        + otherTable + " d WHERE o.id = ? AND d.id = ?");
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, owner);
    (*statement)->bindKey(2, other);
    return transaction.run(**statement);
}

Result<void> RowWriter::removeLink(Transaction &transaction, const ToManyDescription &link,
                                   qint64 owner, qint64 other)
{
    const auto statement = m_connection.prepare("DELETE FROM " + quoted(link.joinTable) + " WHERE "
                                                + quoted(link.ownColumn) + " = ? AND "
                                                + quoted(link.destinationColumn) + " = ?");
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, owner);
    (*statement)->bindKey(2, other);
    return transaction.run(**statement);
}

Result<void> RowWriter::deleteRows(Transaction &transaction, int entity,
                                   std::span<const qint64> keys)
{
    return runForKeys(transaction,
                      "DELETE FROM " + quoted(m_schema.entity(entity).table) + " WHERE id IN ",
                      keys);
}

Result<void> RowWriter::deleteReferrers(Transaction &transaction, const ToOneDescription &column,
                                        std::span<const qint64> destinations)
{
    const EntityDescription &table = m_schema.entity(column.entity);
    return runForKeys(transaction,
                      "DELETE FROM " + quoted(table.table) + " WHERE "
                          + quoted(table.columns[size_t(column.property)]) + " IN ",
                      destinations);
}

Result<void> RowWriter::removeLinks(Transaction &transaction, const ToManyDescription &link,
                                    std::span<const qint64> owners)
{
    return runForKeys(transaction,
                      "DELETE FROM " + quoted(link.joinTable) + " WHERE " + quoted(link.ownColumn)
                          + " IN ",
                      owners);
}

Result<void> RowWriter::runForKeys(Transaction &transaction, const QByteArray &sql,
                                   std::span<const qint64> keys)
{
    return KeyChunks::forEach(m_connection, sql, keys, {},
                              [&](Statement &statement) { return transaction.run(statement); });
}

} // namespace tembra

#include "Store/Objects/KeyRangeDeleter.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/LongTransactionWriter.h"
#include "Store/Query/SqlText.h"
#include "Store/Schema/ObjectModel.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 batchSize = 5000;

/// Whether a link between the two entities keeps the record at its other end from being deleted:
/// rows are deleted in the opposite order of the entities, so the later one refers to the earlier.
bool belongsToOwner(const ToManyDescription &link)
{
    return link.destination < link.entity;
}

QByteArray isUnreferenced(const ObjectModel &schema, int entity)
{
    QByteArray conditions;
    for (const ToOneDescription &column : schema.entity(entity).references) {
        const EntityDescription &table = schema.entity(column.entity);
        conditions += " AND NOT EXISTS (SELECT 1 FROM " + quoted(table.table) + " r WHERE r."
                      + quoted(table.columns[size_t(column.property)]) + " = o.id)";
    }
    for (const ToManyDescription &link : schema.entity(entity).toManys) {
        if (link.joined && !belongsToOwner(link))
            conditions += " AND NOT EXISTS (SELECT 1 FROM " + quoted(link.joinTable) + " r WHERE r."
                          + quoted(link.ownColumn) + " = o.id)";
    }
    return conditions;
}

} // namespace

KeyRangeDeleter::KeyRangeDeleter(const ObjectModel &schema, Connection &connection,
                                 LongTransactionWriter &writer, ChangeTracker &changes)
    : m_schema(schema)
    , m_connection(connection)
    , m_writer(writer)
    , m_changes(changes)
{
}

Result<void> KeyRangeDeleter::run(const KeyRanges &keys,
                                  const std::function<bool(double)> &shouldContinue)
{
    const std::vector<KeyRange> batches = keys.split(batchSize);
    const size_t steps = batches.size() * size_t(m_schema.entityCount());
    size_t done = 0;
    m_changes.didEdit();
    for (int entity = m_schema.entityCount() - 1; entity >= 0; --entity) {
        for (const KeyRange &batch : batches) {
            if (!shouldContinue(double(done++) / double(steps)))
                return m_writer.rollBack({u"It was cancelled."_s, {}});
            const Result<void> deleted = m_writer.transact([&](Transaction &transaction) {
                return deleteUnreferenced(transaction, entity, batch);
            });
            if (!deleted)
                return deleted;
        }
        m_changes.addBulk(entityBit(entity));
    }
    return {};
}

Result<void> KeyRangeDeleter::deleteUnreferenced(Transaction &transaction, int entity,
                                                 KeyRange keys)
{
    for (const ToManyDescription &link : m_schema.entity(entity).toManys) {
        if (!link.joined || !belongsToOwner(link))
            continue;
        const QByteArray sql = "DELETE FROM " + quoted(link.joinTable) + " WHERE "
                               + quoted(link.ownColumn) + " BETWEEN ? AND ?";
        if (Result<void> unlinked = runFor(transaction, sql, keys); !unlinked)
            return unlinked;
    }
    return runFor(transaction,
                  "DELETE FROM " + quoted(m_schema.entity(entity).table)
                      + " AS o WHERE o.id BETWEEN ? AND ?" + isUnreferenced(m_schema, entity),
                  keys);
}

Result<void> KeyRangeDeleter::runFor(Transaction &transaction, const QByteArray &sql, KeyRange keys)
{
    const Result<Statement *> statement = m_connection.prepare(sql);
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, keys.first);
    (*statement)->bindKey(2, keys.last);
    return transaction.run(**statement);
}

} // namespace tembra

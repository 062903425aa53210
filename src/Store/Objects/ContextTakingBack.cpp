// Taking back what another context has inserted.

#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Query/SqlText.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 keysOfOnePiece = 5000;

/// Whether a link between the two entities keeps the record at its other end from being taken back:
/// rows are deleted in the opposite order of the entities, so the later one refers to the earlier.
bool belongsToOwner(const ToManyDescription &link)
{
    return link.destination < link.entity;
}

QByteArray isReferred(const ObjectModel &schema, int entity)
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

Result<void> runFor(KeyRange keys, const QByteArray &sql, Connection &connection,
                    Transaction &transaction)
{
    const Result<Statement *> statement = connection.prepare(sql);
    if (!statement)
        return failure(statement.error());
    (*statement)->bindKey(1, keys.first);
    (*statement)->bindKey(2, keys.last);
    return transaction.run(**statement);
}

} // namespace

Result<void> ManagedObjectContext::Private::deleteUnreferenced(Transaction &transaction, int entity,
                                                               KeyRange keys)
{
    for (const ToManyDescription &link : schema.entity(entity).toManys) {
        if (!link.joined || !belongsToOwner(link))
            continue;
        const Result<void> unlinked = runFor(keys,
                                             "DELETE FROM " + quoted(link.joinTable) + " WHERE "
                                                 + quoted(link.ownColumn) + " BETWEEN ? AND ?",
                                             connection, transaction);
        if (!unlinked)
            return unlinked;
    }
    return runFor(keys,
                  "DELETE FROM " + quoted(schema.entity(entity).table)
                      + " AS o WHERE o.id BETWEEN ? AND ?" + isReferred(schema, entity),
                  connection, transaction);
}

const KeyRanges &ManagedObjectContext::insertedKeys() const
{
    return d->inserted;
}

Result<void> ManagedObjectContext::deleteInserted(const KeyRanges &keys,
                                                  const std::function<bool(double)> &mayGoOn)
{
    require(d->setup.isBackground, "a background context takes back what was inserted");
    const std::vector<KeyRange> pieces = keys.pieces(keysOfOnePiece);
    const size_t steps = pieces.size() * size_t(d->schema.entityCount());
    size_t done = 0;
    d->didEdit();
    for (int entity = d->schema.entityCount() - 1; entity >= 0; --entity) {
        for (const KeyRange &piece : pieces) {
            if (!mayGoOn(double(done++) / double(steps)))
                return d->lose({u"It was cancelled."_s, {}});
            const Result<void> deleted = d->inTransaction([&](Transaction &transaction) {
                return d->deleteUnreferenced(transaction, entity, piece);
            });
            if (!deleted)
                return deleted;
        }
        d->sinceSave.noteWholesale(entityBit(entity));
    }
    return {};
}

} // namespace tembra

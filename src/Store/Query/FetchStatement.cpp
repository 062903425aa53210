#include "Store/Query/FetchStatement.h"

#include "Store/Query/SqlEmitter.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

Result<QByteArray> orderClause(SqlEmitter &emitter, const QList<SortDescriptor> &descriptors)
{
    QByteArray clause = " ORDER BY ";
    for (const SortDescriptor &descriptor : descriptors) {
        const Result<QByteArray> column = emitter.sortColumn(descriptor.key);
        if (!column)
            return column;
        clause += *column + (descriptor.ascending ? ", " : " DESC, ");
    }
    return QByteArray(clause + emitter.keyOrder(descriptors.isEmpty()));
}

/// Nothing when every record counts.
Result<QByteArray> whereClause(SqlEmitter &emitter, const FetchRequest &request)
{
    const PredicateNode *root = request.predicate.root();
    if (!root)
        return QByteArray();
    return emitter.condition(*root).map(
        [](const QByteArray &condition) { return QByteArray(" WHERE " + condition); });
}

} // namespace

// A record cannot come twice: to-one joins find one row at most, and ANY is a test, not a join.
// So distinct results need nothing of their own.
Result<FetchStatement> compileFetch(const ObjectModel &model, const FetchRequest &request)
{
    const int entity = model.entityIndex(request.entityName);
    if (entity < 0)
        return failure(
            u"There are no records of the kind “%1”."_s.arg(QString::fromUtf8(request.entityName)));
    SqlEmitter emitter(model, entity);
    const Result<QByteArray> where = whereClause(emitter, request);
    if (!where)
        return failure(where.error());
    const Result<QByteArray> order = orderClause(emitter, request.sortDescriptors);
    if (!order)
        return failure(order.error());
    QByteArray clauses = *where + *order;
    FetchStatement statement{{}, emitter.bindings()};
    if (request.fetchLimit > 0) {
        clauses += " LIMIT ?";
        statement.bindings.push_back(qint64(request.fetchLimit));
    }
    statement.sql = "SELECT " + emitter.keyColumn() + " FROM " + emitter.tables() + clauses;
    return statement;
}

} // namespace tembra

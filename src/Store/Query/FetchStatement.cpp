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

QByteArray notAmong(const HiddenRecords &hidden, const SqlEmitter &emitter)
{
    const QByteArray column = emitter.ownColumn(hidden.column);
    return QByteArray('(' + column + " IS NULL OR " + column + " NOT IN " + hidden.keys + ')');
}

/// Nothing when every record counts.
Result<QByteArray> whereClause(SqlEmitter &emitter, const FetchRequest &request,
                               const std::optional<HiddenRecords> &hidden)
{
    QList<QByteArray> conditions;
    if (const PredicateNode *root = request.predicate.root()) {
        const Result<QByteArray> condition = emitter.condition(*root);
        if (!condition)
            return condition;
        conditions.append(*condition);
    }
    if (hidden)
        conditions.append(notAmong(*hidden, emitter));
    return conditions.isEmpty() ? QByteArray() : QByteArray(" WHERE " + conditions.join(" AND "));
}

/// `SELECT <selected> FROM ... [WHERE ...] [ORDER BY ...] [LIMIT ?]`.
Result<FetchStatement> compile(const ObjectModel &model, const FetchRequest &request,
                               const std::optional<HiddenRecords> &hidden, bool counted)
{
    const int entity = model.entityIndex(request.entityName);
    if (entity < 0)
        return failure(
            u"There are no records of the kind “%1”."_s.arg(QString::fromUtf8(request.entityName)));
    SqlEmitter emitter(model, entity);
    const Result<QByteArray> where = whereClause(emitter, request, hidden);
    if (!where)
        return failure(where.error());
    QByteArray clauses = *where;
    const Result<QByteArray> order = orderClause(emitter, request.sortDescriptors);
    if (!order)
        return failure(order.error());
    if (!counted)
        clauses += *order;
    FetchStatement statement{{}, emitter.bindings()};
    if (request.fetchLimit > 0) {
        clauses += " LIMIT ?";
        statement.bindings.push_back(qint64(request.fetchLimit));
    }
    statement.sql = "SELECT " + emitter.keyColumn() + " FROM " + emitter.tables() + clauses;
    if (counted)
        statement.sql = "SELECT count(*) FROM (" + statement.sql + ')';
    return statement;
}

} // namespace

// A record cannot come twice: to-one joins find one row at most, and ANY is a test, not a join.
// So distinct results need nothing of their own.
Result<FetchStatement> compileFetch(const ObjectModel &model, const FetchRequest &request,
                                    const std::optional<HiddenRecords> &hidden)
{
    return compile(model, request, hidden, false);
}

Result<FetchStatement> compileCount(const ObjectModel &model, const FetchRequest &request,
                                    const std::optional<HiddenRecords> &hidden)
{
    return compile(model, request, hidden, true);
}

} // namespace tembra

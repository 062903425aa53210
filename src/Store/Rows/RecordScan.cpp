#include "Store/Rows/RecordScan.h"

#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"

namespace tembra {

Result<RecordScan> RecordScan::of(ManagedObjectContext &context)
{
    return context.writeDrafts()
        .and_then([&] { return ReadTransaction::begin(context.d->connection); })
        .map([&](ReadTransaction &&transaction) {
            return RecordScan(context, std::move(transaction));
        });
}

Result<void> RecordScan::records(const QByteArray &entityName, std::span<const qint64> keys,
                                 const RowVisitor &visit)
{
    ManagedObjectContext::Private &context = *m_context->d;
    return context.reader.rows(context.schema.entityIndex(entityName), keys, visit);
}

Result<void> RecordScan::referring(const QByteArray &entityName, int toOneProperty,
                                   std::span<const qint64> owners, const RowVisitor &visit)
{
    ManagedObjectContext::Private &context = *m_context->d;
    const int entity = context.schema.entityIndex(entityName);
    const ToOneDescription *column = context.schema.entity(entity).toOne(toOneProperty);
    require(column, "records refer through a to-one relationship");
    return context.reader.referringRows(*column, owners, visit);
}

Result<void> RecordScan::related(const QByteArray &entityName, int toManyProperty,
                                 std::span<const qint64> owners, const PairVisitor &visit)
{
    ManagedObjectContext::Private &context = *m_context->d;
    const int entity = context.schema.entityIndex(entityName);
    return context.reader.related(context.schema.entity(entity).toMany(toManyProperty), owners,
                                  visit);
}

} // namespace tembra

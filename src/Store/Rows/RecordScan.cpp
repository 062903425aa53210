#include "Store/Rows/RecordScan.h"

#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectModel.h"

namespace tembra {

Result<RecordScan> RecordScan::of(ManagedObjectContext &context)
{
    return context.writeDrafts()
        .and_then([&] { return ReadTransaction::begin(context.connection()); })
        .map([&](ReadTransaction &&transaction) {
            return RecordScan(context, std::move(transaction));
        });
}

Result<void> RecordScan::records(const QByteArray &entityName, std::span<const qint64> keys,
                                 const RowVisitor &visit)
{
    return m_context->reader().rows(m_context->container().model().entityIndex(entityName), keys,
                                    visit);
}

Result<void> RecordScan::referring(const QByteArray &entityName, int toOneProperty,
                                   std::span<const qint64> owners, const RowVisitor &visit)
{
    const int entity = m_context->container().model().entityIndex(entityName);
    const ToOneDescription *column = m_context->container().model().entity(entity).toOne(
        toOneProperty);
    require(column, "records refer through a to-one relationship");
    return m_context->reader().referringRows(*column, owners, visit);
}

Result<void> RecordScan::related(const QByteArray &entityName, int toManyProperty,
                                 std::span<const qint64> owners, const PairVisitor &visit)
{
    const int entity = m_context->container().model().entityIndex(entityName);
    return m_context->reader().related(m_context->container().model().entity(entity).toMany(
                                           toManyProperty),
                                       owners, visit);
}

} // namespace tembra

#pragma once

#include "Store/Objects/ManagedObjectContext.h"

#include <QByteArray>
#include <QCache>
#include <QList>
#include <QPointer>

#include <memory>
#include <span>

namespace tembra {

/// Loads the objects of a long list in batches, as rows are shown, and caches those that were used
/// last, so that scrolling needs the same memory however long the list is.
class BatchFaultingCache
{
public:
    BatchFaultingCache(ManagedObjectContext &context, int entity,
                       QList<QByteArray> prefetchedToManys);
    ~BatchFaultingCache();
    Q_DISABLE_COPY_MOVE(BatchFaultingCache)

    /// The object of @p row among @p rows, read together with its neighbours. Null when the record
    /// is not in the store any more, or the context is gone.
    std::shared_ptr<ManagedObject> object(std::span<const qint64> rows, int row);

    void forget(qint64 key);

private:
    void load(std::span<const qint64> keys);

    QPointer<ManagedObjectContext> m_context;
    int m_entity;
    QList<QByteArray> m_prefetchedToManys;
    QCache<qint64, std::shared_ptr<ManagedObject>> m_objects;
};

} // namespace tembra

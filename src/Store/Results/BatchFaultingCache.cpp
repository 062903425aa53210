#include "Store/Results/BatchFaultingCache.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"

#include <algorithm>

namespace tembra {

namespace {

constexpr int batchSize = 50;
/// A tall window may show two batches and a bit; another one makes turning back smooth.
constexpr int heldObjects = 4 * batchSize;

} // namespace

BatchFaultingCache::BatchFaultingCache(ManagedObjectContext &context, int entity,
                                       QList<QByteArray> prefetchedToManys)
    : m_context(&context)
    , m_entity(entity)
    , m_prefetchedToManys(std::move(prefetchedToManys))
    , m_objects(heldObjects)
{
}

BatchFaultingCache::~BatchFaultingCache() = default;

std::shared_ptr<ManagedObject> BatchFaultingCache::object(std::span<const qint64> rows, int row)
{
    require(row >= 0 && size_t(row) < rows.size(), "a row of the list");
    const qint64 key = rows[size_t(row)];
    const auto *held = m_objects.object(key);
    if (held && !(*held)->isDeleted())
        return *held;
    const size_t first = size_t(row - row % batchSize);
    load(rows.subspan(first, std::min(size_t(batchSize), rows.size() - first)));
    held = m_objects.object(key);
    return held ? *held : nullptr;
}

void BatchFaultingCache::forget(qint64 key)
{
    m_objects.remove(key);
}

void BatchFaultingCache::load(std::span<const qint64> keys)
{
    if (!m_context)
        return;
    const auto objects = m_context->objects(m_entity, keys);
    if (!objects) {
        qCWarning(storeLog, "Rows of a list could not be read: %s",
                  qUtf8Printable(objects.error().description()));
        return;
    }
    if (const Result<void> done = m_context->prefetch(*objects, m_prefetchedToManys); !done)
        qCWarning(storeLog, "Rows of a list are read one by one: %s",
                  qUtf8Printable(done.error().description()));
    for (const auto &object : *objects)
        m_objects.insert(object->objectID().key, new std::shared_ptr<ManagedObject>(object));
}

} // namespace tembra

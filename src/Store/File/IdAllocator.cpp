#include "Store/File/IdAllocator.h"

namespace tembra {

IdAllocator::IdAllocator(qint64 highWaterMark) : m_last(highWaterMark) {}

qint64 IdAllocator::next()
{
    return m_last.fetch_add(1, std::memory_order_relaxed) + 1;
}

qint64 IdAllocator::highWaterMark() const
{
    return m_last.load(std::memory_order_relaxed);
}

} // namespace tembra

#pragma once

#include <QtGlobal>

#include <atomic>

namespace tembra {

/// Gives every record of a store its key, from one sequence for all entities. The highest key
/// given is committed together with the rows, so no key is ever given twice, whatever was deleted
/// and however often the program was started. Shared by all contexts of a container; thread-safe.
class IdAllocator
{
public:
    /// Goes on after @p highWaterMark, the highest key given so far.
    explicit IdAllocator(qint64 highWaterMark = 0);

    qint64 next();
    qint64 highWaterMark() const;

private:
    std::atomic<qint64> m_last;
};

} // namespace tembra

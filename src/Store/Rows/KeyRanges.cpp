#include "Store/Rows/KeyRanges.h"

#include "Foundation/Precondition.h"

#include <algorithm>

namespace tembra {

void KeyRanges::add(qint64 key)
{
    require(m_ranges.empty() || key > m_ranges.back().last, "keys are added in their order");
    if (!m_ranges.empty() && m_ranges.back().last == key - 1)
        m_ranges.back().last = key;
    else
        m_ranges.push_back({key, key});
}

std::vector<KeyRange> KeyRanges::split(qint64 length) const
{
    std::vector<KeyRange> parts;
    for (const KeyRange &range : m_ranges) {
        for (qint64 first = range.first; first <= range.last; first += length)
            parts.push_back({first, std::min(first + length - 1, range.last)});
    }
    return parts;
}

} // namespace tembra

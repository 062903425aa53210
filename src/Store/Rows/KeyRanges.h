#pragma once

#include <QtGlobal>

#include <vector>

namespace tembra {

/// Keys from @p first to @p last, both included.
struct KeyRange
{
    qint64 first;
    qint64 last;

    friend bool operator==(const KeyRange &, const KeyRange &) = default;
};

/// A set of keys that were given one after the other, in little room however many there are.
class KeyRanges
{
public:
    /// Adds a key higher than all before it.
    void add(qint64 key);

    bool isEmpty() const { return m_ranges.empty(); }
    const std::vector<KeyRange> &ranges() const { return m_ranges; }
    /// The same keys in ranges of at most @p length keys.
    std::vector<KeyRange> split(qint64 length) const;

private:
    std::vector<KeyRange> m_ranges;
};

} // namespace tembra

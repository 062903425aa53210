#include "Foundation/Text/AsciiSearch.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tembra {

namespace {

// Loops over blocks of this fixed size compile to vector instructions.
constexpr size_t blockSize = 16;

bool isAsciiBlock(const char *bytes)
{
    constexpr uint64_t highBits = 0x8080808080808080u;
    uint64_t halves[2];
    static_assert(sizeof halves == blockSize);
    std::memcpy(halves, bytes, blockSize);
    return ((halves[0] | halves[1]) & highBits) == 0;
}

constexpr bool isAsciiByte(char byte)
{
    return (byte & 0x80) == 0;
}

constexpr char asciiRaised(char letter)
{
    return letter >= 'a' && letter <= 'z' ? char(letter - ('a' - 'A')) : letter;
}

/// Finds where a needle may stand: by its first and its last letter.
class NeedleEnds
{
public:
    explicit NeedleEnds(std::string_view needle)
        : m_firstLow(needle.front())
        , m_firstHigh(asciiRaised(needle.front()))
        , m_lastLow(needle.back())
        , m_lastHigh(asciiRaised(needle.back()))
        , m_distance(needle.size() - 1)
    {
    }

    /// Whether both are in place for one of the positions of the block.
    bool fitBlock(const char *text) const
    {
        const char *ends = text + m_distance;
        char fitting = 0;
        for (size_t i = 0; i < blockSize; ++i) {
            const bool first = (text[i] == m_firstLow) | (text[i] == m_firstHigh);
            const bool last = (ends[i] == m_lastLow) | (ends[i] == m_lastHigh);
            fitting |= char(first & last);
        }
        return fitting != 0;
    }

private:
    char m_firstLow;
    char m_firstHigh;
    char m_lastLow;
    char m_lastHigh;
    size_t m_distance;
};

bool standsAtOneOf(const char *text, size_t positions, std::string_view needle)
{
    for (size_t i = 0; i < positions; ++i) {
        const bool stands = std::equal(needle.begin(), needle.end(), text + i,
                                       [](char low, char letter) {
                                           return low == asciiLowered(letter);
                                       });
        if (stands)
            return true;
    }
    return false;
}

} // namespace

bool isAscii(std::string_view text)
{
    for (; text.size() >= blockSize; text.remove_prefix(blockSize)) {
        if (!isAsciiBlock(text.data()))
            return false;
    }
    return std::all_of(text.begin(), text.end(), isAsciiByte);
}

size_t lowerLeadingAscii(std::string_view text, char *lowered)
{
    size_t done = 0;
    for (; text.size() - done >= blockSize && isAsciiBlock(text.data() + done); done += blockSize) {
        for (size_t i = done; i < done + blockSize; ++i)
            lowered[i] = asciiLowered(text[i]);
    }
    for (; done < text.size() && isAsciiByte(text[done]); ++done)
        lowered[done] = asciiLowered(text[done]);
    return done;
}

bool containsIgnoringAsciiCase(std::string_view text, std::string_view needle)
{
    if (text.size() < needle.size())
        return false;
    const size_t positions = text.size() - needle.size() + 1;
    const NeedleEnds ends(needle);
    size_t position = 0;
    for (; positions - position >= blockSize; position += blockSize) {
        const char *block = text.data() + position;
        if (ends.fitBlock(block) && standsAtOneOf(block, blockSize, needle))
            return true;
    }
    return standsAtOneOf(text.data() + position, positions - position, needle);
}

} // namespace tembra

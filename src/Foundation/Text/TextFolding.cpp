#include "Foundation/Text/TextFolding.h"

#include "Foundation/Text/AsciiSearch.h"
#include "Foundation/Text/FoldingTable.h"
#include "Foundation/Text/UnicodeFolding.h"

#include <unicode/utf8.h>

#include <cstring>

namespace tembra {

namespace {

// A longer needle is left to an algorithm whose time does not grow with the needle.
constexpr size_t longestForAsciiSearch = 64;

/// What many texts are folded into, one after the other; grows to the longest of them.
class FoldingBuffer
{
public:
    /// Valid until the next text.
    std::string_view fold(std::string_view utf8)
    {
        // One byte becomes at most three, a character at most the six that are always copied.
        const size_t needed = 3 * utf8.size() + FoldedCharacter::longest;
        if (m_bytes.size() < needed)
            m_bytes.resize(needed);
        char *end = m_bytes.data();
        if (!appendFolded(utf8, end))
            return m_bytes = foldByNormalizing(utf8);
        return {m_bytes.data(), size_t(end - m_bytes.data())};
    }

private:
    /// Folds character by character: many times faster than ICU. False where that will not do.
    bool appendFolded(std::string_view utf8, char *&to)
    {
        static FoldingTable table;
        while (true) {
            const size_t ascii = lowerLeadingAscii(utf8, to);
            utf8.remove_prefix(ascii);
            to += ascii;
            if (utf8.empty())
                return true;
            do {
                size_t length = 0;
                UChar32 character = 0;
                U8_NEXT_OR_FFFD(utf8.data(), length, utf8.size(), character);
                utf8.remove_prefix(length);
                const FoldedCharacter &folded = table[char32_t(character)];
                if (folded.kind != FoldedCharacter::Kind::Fixed && !standsAlone(folded, to))
                    return false;
                std::memcpy(to, folded.bytes.data(), FoldedCharacter::longest);
                to += folded.length;
            } while (!utf8.empty() && (utf8.front() & 0x80));
        }
    }

    bool standsAlone(const FoldedCharacter &folded, const char *end) const
    {
        return folded.kind == FoldedCharacter::Kind::Mark
               && !joins({m_bytes.data(), size_t(end - m_bytes.data())}, folded.text());
    }

    std::string m_bytes;
};

/// Valid until this thread folds another text.
std::string_view foldInBuffer(std::string_view utf8)
{
    thread_local FoldingBuffer buffer;
    return buffer.fold(utf8);
}

} // namespace

std::string foldForSearch(std::string_view utf8)
{
    return std::string(foldInBuffer(utf8));
}

FoldedNeedle::FoldedNeedle(std::string_view utf8)
    : m_folded(foldForSearch(utf8))
    , m_isAscii(isAscii(m_folded))
{
}

bool FoldedNeedle::isContainedIn(std::string_view utf8) const
{
    if (m_folded.empty())
        return true;
    if (m_folded.size() <= longestForAsciiSearch && isAscii(utf8))
        return m_isAscii && containsIgnoringAsciiCase(utf8, m_folded);
    const std::string_view folded = foldInBuffer(utf8);
    return memmem(folded.data(), folded.size(), m_folded.data(), m_folded.size()) != nullptr;
}

} // namespace tembra

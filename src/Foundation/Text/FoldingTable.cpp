#include "Foundation/Text/FoldingTable.h"

#include "Foundation/Text/UnicodeFolding.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <memory>
#include <string>

namespace tembra {

namespace {

FoldedCharacter foldedAlone(char32_t character)
{
    std::array<char, U8_MAX_LENGTH> encoded{};
    int32_t encodedLength = 0;
    U8_APPEND_UNSAFE(encoded.data(), encodedLength, character);
    const std::string folded = foldByNormalizing({encoded.data(), size_t(encodedLength)});

    FoldedCharacter result;
    if (folded.size() > FoldedCharacter::longest)
        return result;
    if (!canJoinBackward(folded))
        result.kind = FoldedCharacter::Kind::Fixed;
    else if (U8_COUNT_TRAIL_BYTES_UNSAFE(folded.front()) + 1 == int(folded.size()))
        result.kind = FoldedCharacter::Kind::Mark;
    else
        return result;
    std::copy(folded.begin(), folded.end(), result.bytes.begin());
    result.length = uint8_t(folded.size());
    return result;
}

} // namespace

FoldingTable::~FoldingTable()
{
    for (const auto &page : m_pages)
        delete page.load();
}

const FoldingTable::Page &FoldingTable::loadedPage(size_t index)
{
    auto loaded = std::make_unique<Page>();
    for (size_t i = 0; i < pageSize; ++i)
        (*loaded)[i] = foldedAlone(char32_t(index * pageSize + i));
    // Another thread may have been quicker with the same page.
    const Page *present = nullptr;
    if (m_pages[index].compare_exchange_strong(present, loaded.get(), std::memory_order_acq_rel))
        present = loaded.release();
    return *present;
}

} // namespace tembra

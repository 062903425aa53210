#include "Foundation/Text/UnicodeFolding.h"

#include "Foundation/Precondition.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>
#include <unicode/utf8.h>

namespace tembra {

namespace {

using Getter = const icu::Normalizer2 *(*)(UErrorCode &);

const icu::Normalizer2 &normalizer(Getter getter)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = getter(status);
    require(U_SUCCESS(status), "ICU brings its normalization data");
    return *normalizer;
}

const icu::Normalizer2 &composition()
{
    static const icu::Normalizer2 &nfc = normalizer(icu::Normalizer2::getNFCInstance);
    return nfc;
}

/// Marks whose absence leaves the same word. Those of other scripts make other letters.
bool isDroppedMark(UChar32 character)
{
    if (u_charType(character) != U_NON_SPACING_MARK)
        return false;
    const bool isCommonAccent = character >= 0x0300 && character <= 0x036F;
    return isCommonAccent || uscript_hasScript(character, USCRIPT_HEBREW)
           || uscript_hasScript(character, USCRIPT_ARABIC);
}

icu::UnicodeString withoutDroppedMarks(const icu::UnicodeString &text)
{
    icu::UnicodeString kept;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        if (!isDroppedMark(character))
            kept.append(character);
    }
    return kept;
}

UChar32 firstCharacter(std::string_view utf8)
{
    UChar32 character = 0;
    U8_GET_UNSAFE(utf8.data(), 0, character);
    return character;
}

} // namespace

std::string foldByNormalizing(std::string_view utf8)
{
    static const icu::Normalizer2 &caseFolding = normalizer(
        icu::Normalizer2::getNFKCCasefoldInstance);
    static const icu::Normalizer2 &decomposition = normalizer(icu::Normalizer2::getNFDInstance);
    UErrorCode status = U_ZERO_ERROR;
    const auto text = icu::UnicodeString::fromUTF8({utf8.data(), int32_t(utf8.size())});
    const auto decomposed = decomposition.normalize(caseFolding.normalize(text, status), status);
    std::string folded;
    composition().normalize(withoutDroppedMarks(decomposed), status).toUTF8String(folded);
    require(U_SUCCESS(status), "every text can be normalized");
    return folded;
}

bool canJoinBackward(std::string_view folded)
{
    return !folded.empty() && !composition().hasBoundaryBefore(firstCharacter(folded));
}

bool joins(std::string_view folded, std::string_view mark)
{
    const UChar32 character = firstCharacter(mark);
    const uint8_t order = u_getCombiningClass(character);
    auto end = int32_t(folded.size());
    while (end > 0) {
        UChar32 previous = 0;
        U8_PREV_UNSAFE(folded.data(), end, previous);
        const uint8_t previousOrder = u_getCombiningClass(previous);
        if (previousOrder == 0)
            return composition().composePair(previous, character) >= 0;
        if (order != 0 && order < previousOrder)
            return true;
    }
    return false;
}

} // namespace tembra

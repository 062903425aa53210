#include "Foundation/Text/EmojiSegmentation.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/IcuBridge.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>

namespace tembra {

namespace {

constexpr char16_t firstPictograph = u'\u00A9';
constexpr char16_t enclosingKeycap = u'\u20E3';
constexpr char16_t emojiPresentation = u'\uFE0F';

bool startsEmoji(UChar32 codePoint)
{
    return codePoint >= firstPictograph
           && (u_hasBinaryProperty(codePoint, UCHAR_EXTENDED_PICTOGRAPHIC)
               || u_hasBinaryProperty(codePoint, UCHAR_REGIONAL_INDICATOR));
}

/// Without one of these there is no emoji, and no need for the costly search for boundaries.
bool mayHoldEmoji(const icu::UnicodeString &text)
{
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        if (text.charAt(i) < firstPictograph)
            continue;
        const UChar32 codePoint = text.char32At(i);
        if (codePoint == enclosingKeycap || startsEmoji(codePoint))
            return true;
    }
    return false;
}

std::unique_ptr<icu::BreakIterator> graphemeClusters(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> clusters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    require(U_SUCCESS(status), "ICU brings its boundary rules");
    clusters->setText(text);
    return clusters;
}

} // namespace

QList<EmojiRun> emojiRuns(const QString &text)
{
    if (text.isEmpty())
        return {};
    const icu::UnicodeString view = icuView(text);
    if (!mayHoldEmoji(view))
        return {{0, text.size(), false}};
    QList<EmojiRun> runs;
    const auto clusters = graphemeClusters(view);
    int32_t start = clusters->first();
    for (int32_t end = clusters->next(); end != icu::BreakIterator::DONE; end = clusters->next()) {
        const bool isEmoji = startsEmoji(view.char32At(start))
                             || view.charAt(end - 1) == enclosingKeycap;
        if (runs.isEmpty() || runs.last().isEmoji != isEmoji)
            runs.append({start, 0, isEmoji});
        runs.last().length += end - start;
        start = end;
    }
    return runs;
}

QString withoutVariationSelectors(const QString &text)
{
    return text.contains(emojiPresentation) ? QString(text).remove(emojiPresentation) : text;
}

} // namespace tembra

#include "Foundation/Text/TrailingEmoji.h"

#include "Foundation/Text/IcuBridge.h"

#include <QList>

#include <unicode/brkiter.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>

namespace tembra {

QString lastGraphemeCluster(const QString &text)
{
    // A cluster may be as long as somebody likes; of a pasted book the end is enough to look at.
    constexpr qsizetype longestLook = 256;
    const QString end = text.right(longestLook);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status))
        return end.right(1);
    const icu::UnicodeString view = icuView(end);
    iterator->setText(view);
    const int32_t start = iterator->preceding(view.length());
    return start == icu::BreakIterator::DONE ? end : end.mid(start);
}

bool passesForEmoji(const QString &cluster)
{
    const QList<uint> scalars = cluster.toUcs4();
    if (scalars.isEmpty())
        return false;
    const auto has = [](uint scalar, UProperty property) {
        return bool(u_hasBinaryProperty(UChar32(scalar), property));
    };
    if (has(scalars.first(), UCHAR_EMOJI_PRESENTATION))
        return true;
    if (scalars.size() == 1)
        return u_charType(UChar32(scalars.first())) == U_OTHER_SYMBOL;
    return std::any_of(scalars.begin(), scalars.end(), [&](uint scalar) {
        return has(scalar, UCHAR_JOIN_CONTROL) || has(scalar, UCHAR_VARIATION_SELECTOR);
    });
}

} // namespace tembra

#include "Foundation/Text/Abbreviation.h"

#include "Foundation/Text/IcuBridge.h"

#include <unicode/brkiter.h>

#include <algorithm>
#include <memory>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// A visible character longer than this, such as a letter with a thousand accents, is cut itself.
constexpr qsizetype longestCluster = 100;

/// The last place, at most @p longest units from the start, where a visible character ends.
qsizetype cutBefore(const QString &text, qsizetype longest)
{
    const qsizetype inCodePoint = text.at(longest - 1).isHighSurrogate() ? longest - 1 : longest;
    // Whether a character ends there is decided by what follows.
    const QString looked = text.left(longest + longestCluster);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status))
        return inCodePoint;
    const icu::UnicodeString view = icuView(looked);
    iterator->setText(view);
    const qsizetype cut = iterator->preceding(int32_t(longest) + 1);
    return cut > longest - longestCluster ? cut : inCodePoint;
}

bool isBreak(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= u'\t' && unit <= u'\r') || unit == 0x85 || unit == QChar::LineSeparator
           || unit == QChar::ParagraphSeparator;
}

} // namespace

QString abbreviated(const QString &text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    return text.left(cutBefore(text, longest)) + u'…';
}

QString singleLine(const QString &text)
{
    QString line = abbreviated(text);
    if (std::none_of(line.cbegin(), line.cend(), isBreak))
        return line;
    line.replace("\r\n"_L1, " "_L1);
    std::replace_if(line.begin(), line.end(), isBreak, u' ');
    return line;
}

} // namespace tembra

#include "Preferences/InputControls/RawText.h"

#include <algorithm>

namespace tembra {

namespace {

enum StandIn : char16_t {
    CarriageReturnLineFeed = 0xDC00,
    CarriageReturn,
    ParagraphSeparator,
    FrameBeginning,
    FrameEnd,
    SoftBreak,
};

/// Where there is no blank for so long, a paragraph is broken between any two characters.
constexpr qsizetype longestParagraph = RawText::longParagraph + 1'000;

constexpr char16_t frameBeginning = 0xFDD0;
constexpr char16_t frameEnd = 0xFDD1;

bool isStandIn(QChar unit)
{
    return unit.unicode() >= CarriageReturnLineFeed && unit.unicode() <= SoftBreak;
}

bool needsEncoding(QChar unit)
{
    return unit == u'\r' || unit == QChar::ParagraphSeparator || unit == QChar(frameBeginning)
           || unit == QChar(frameEnd) || unit.isSurrogate();
}

/// Encodes the character at @p i; returns how many units of @p text it has.
qsizetype encodeOne(const QString &text, qsizetype i, QString &raw)
{
    const QChar unit = text.at(i);
    const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
    const auto lineEnd = [&raw](StandIn standIn) { raw.append(QChar(standIn)).append(u'\n'); };
    if (unit.isHighSurrogate() && next.isLowSurrogate()) {
        raw.append(unit).append(next);
        return 2;
    }
    if (unit == u'\r' && next == u'\n') {
        lineEnd(CarriageReturnLineFeed);
        return 2;
    }
    if (unit.isSurrogate())
        raw.append(QChar::ReplacementCharacter);
    else if (unit == u'\r')
        lineEnd(CarriageReturn);
    else if (unit == QChar::ParagraphSeparator)
        lineEnd(ParagraphSeparator);
    else if (unit == QChar(frameBeginning))
        raw.append(QChar(FrameBeginning));
    else if (unit == QChar(frameEnd))
        raw.append(QChar(FrameEnd));
    else
        raw.append(unit);
    return 1;
}

bool hasLongParagraph(const QString &text)
{
    qsizetype start = 0;
    while (text.size() - start > RawText::longParagraph) {
        const qsizetype end = text.indexOf(u'\n', start);
        if (end < 0 || end - start > RawText::longParagraph)
            return true;
        start = end + 1;
    }
    return false;
}

/// Whether to break a paragraph of @p length before the character at @p i: after a blank, in need
/// between any two characters that do not belong together.
bool mayBreak(const QString &text, qsizetype i, qsizetype length)
{
    if (length < RawText::longParagraph)
        return false;
    const QChar before = text.at(i - 1), after = text.at(i);
    if (after == u'\n' || after == u'\r' || after == QChar::ParagraphSeparator)
        return false;
    if (before == u' ')
        return true;
    const bool joined = after.isMark() || after.isLowSurrogate()
                        || after.category() == QChar::Other_Format
                        || before.category() == QChar::Other_Format;
    return length >= longestParagraph && !joined;
}

/// The first stand-in from @p i on, or the end; the lower half of a pair is none.
qsizetype nextStandIn(const QString &raw, qsizetype i)
{
    const char16_t *units = reinterpret_cast<const char16_t *>(raw.utf16());
    const qsizetype size = raw.size();
    for (; i < size; ++i) {
        const bool mayBe = units[i] >= CarriageReturnLineFeed && units[i] <= SoftBreak;
        if (mayBe && (i == 0 || !QChar::isHighSurrogate(units[i - 1])))
            break;
    }
    return i;
}

/// Decodes the stand-in at @p i; returns how many units of @p raw it covers.
qsizetype decodeOne(const QString &raw, qsizetype i, QString &text)
{
    const char16_t standIn = raw.at(i).unicode();
    if (standIn == FrameBeginning || standIn == FrameEnd) {
        text.append(QChar(standIn == FrameBeginning ? frameBeginning : frameEnd));
        return 1;
    }
    if (i + 1 >= raw.size() || raw.at(i + 1) != u'\n')
        return 1;
    if (standIn == SoftBreak)
        return 2;
    if (standIn == CarriageReturnLineFeed)
        text.append(u"\r\n");
    else
        text.append(standIn == CarriageReturn ? QChar(u'\r') : QChar(QChar::ParagraphSeparator));
    return 2;
}

} // namespace

QString RawText::encoded(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), needsEncoding) && !hasLongParagraph(text))
        return text;
    QString raw;
    raw.reserve(text.size());
    qsizetype paragraphStart = 0;
    for (qsizetype i = 0; i < text.size();) {
        if (mayBreak(text, i, raw.size() - paragraphStart))
            raw.append(QChar(SoftBreak)).append(u'\n');
        else
            i += encodeOne(text, i, raw);
        if (raw.back() == u'\n')
            paragraphStart = raw.size();
    }
    return raw;
}

QString RawText::decoded(const QString &raw)
{
    QString text;
    text.reserve(raw.size());
    qsizetype done = 0;
    for (qsizetype i = nextStandIn(raw, 0); i < raw.size(); i = nextStandIn(raw, done)) {
        text.append(QStringView(raw).mid(done, i - done));
        done = i + decodeOne(raw, i, text);
    }
    return text.append(QStringView(raw).mid(done));
}

bool RawText::replace(qsizetype position, qsizetype removed, const QString &added)
{
    if (QStringView(m_raw).mid(position, removed) == added)
        return false;
    m_raw.replace(position, removed, added);
    m_decoded.clear();
    m_mayHoldStandIns = m_mayHoldStandIns || std::any_of(added.begin(), added.end(), isStandIn);
    if (m_raw.isEmpty())
        m_mayHoldStandIns = false;
    return true;
}

QString RawText::text() const
{
    if (m_raw.isEmpty())
        return {};
    if (!m_mayHoldStandIns)
        return m_raw;
    if (m_decoded.isNull())
        m_decoded = decoded(m_raw);
    return m_decoded;
}

} // namespace tembra

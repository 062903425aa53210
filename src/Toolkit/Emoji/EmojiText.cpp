#include "Toolkit/Emoji/EmojiText.h"

#include "Foundation/Text/Abbreviation.h"
#include "Foundation/Text/EmojiSegmentation.h"

#include <QCache>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <QPixmapCache>
#include <QRawFont>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr auto emojiFamily = "Noto Color Emoji"_L1;
constexpr QChar ellipsis(u'…');
constexpr double emojiScale = 1.2;
constexpr int cachedSizes = 1000;
constexpr double narrowest = 2; ///< Of a UTF-16 unit, in pixels.
constexpr qsizetype fewestUnits = 20;

/// As much of the text as one line shows, without variation selectors.
QString shownLine(const QString &text)
{
    return displayText(singleLine(text));
}

QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font)
{
    QTextCharFormat format;
    format.setFont(emojiFont(font), QTextCharFormat::FontPropertiesAll);
    QList<QTextLayout::FormatRange> formats;
    for (const EmojiRun &run : emojiRuns(text)) {
        if (run.isEmoji)
            formats.append({int(run.start), int(run.length), format});
    }
    return formats;
}

/// One line of a text, laid out with its emoji in the emoji font.
class EmojiLine
{
public:
    /// Broken after @p width where one is given.
    EmojiLine(const QString &text, const QFont &font, double width = -1) : m_layout(text, font)
    {
        m_layout.setFormats(emojiFormats(text, font));
        // Placed by the caller: right-to-left text too starts at the left end of its own extent.
        QTextOption option(Qt::AlignLeft);
        option.setTextDirection(Qt::LayoutDirectionAuto);
        option.setWrapMode(width < 0 ? QTextOption::ManualWrap : QTextOption::WrapAnywhere);
        m_layout.setTextOption(option);
        m_layout.beginLayout();
        m_line = m_layout.createLine();
        if (m_line.isValid())
            m_line.setLineWidth(width < 0 ? double(1 << 24) : width);
        m_layout.endLayout();
    }

    double width() const { return m_line.isValid() ? m_line.naturalTextWidth() : 0; }
    double height() const { return m_line.isValid() ? m_line.height() : 0; }
    double ascent() const { return m_line.isValid() ? m_line.ascent() : 0; }
    qsizetype length() const { return m_line.isValid() ? m_line.textLength() : 0; }
    void draw(QPainter *painter, const QPointF &topLeft) const { m_layout.draw(painter, topLeft); }

private:
    QTextLayout m_layout;
    QTextLine m_line;
};

/// As much of @p text as fits into @p width, with an ellipsis if that is not all of it.
QString elided(const QString &wholeText, const QFont &font, double width)
{
    // No more is laid out than could fit: an emoji takes a millisecond.
    const QString text = abbreviated(wholeText,
                                     std::max(fewestUnits, qsizetype(width / narrowest)));
    if (EmojiLine(text, font).width() <= width)
        return text;
    const double room = width - QFontMetricsF(font).horizontalAdvance(ellipsis);
    if (room <= 0)
        return ellipsis;
    return text.left(EmojiLine(text, font, room).length()) + ellipsis;
}

/// How far the baseline of a line with emoji lies below its top.
double emojiAscent(const QFont &font)
{
    return std::ceil(
        std::max(QFontMetricsF(font).ascent(), QFontMetricsF(emojiFont(font)).ascent()));
}

QPixmap rendered(const QString &text, const QFont &font, const QColor &color, double ratio)
{
    const EmojiLine line(text, font);
    const double top = emojiAscent(font) - line.ascent();
    const QSizeF size(std::ceil(line.width()), std::ceil(top + line.height()));
    QPixmap pixmap((size * ratio).toSize().expandedTo({1, 1}));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(color);
    line.draw(&painter, {0, top});
    return pixmap;
}

/// The line as a picture, kept: laying emoji out takes about a millisecond.
QPixmap cachedLine(const QString &text, const QFont &font, const QColor &color, double ratio,
                   double width)
{
    const QString key = u"emoji line|%1|%2|%3|%4|%5"_s.arg(font.key(),
                                                           QString::number(color.rgba()),
                                                           QString::number(ratio),
                                                           QString::number(width), text);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = rendered(width < 0 ? text : elided(text, font, width), font, color, ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

/// Where a line of @p size stands in @p rect; its baseline is that of the font alone.
QPointF placed(const QRectF &rect, double width, const QFontMetricsF &metrics,
               Qt::Alignment alignment)
{
    double x = rect.left();
    if (alignment & Qt::AlignRight)
        x = rect.right() - width;
    else if (alignment & Qt::AlignHCenter)
        x = rect.left() + (rect.width() - width) / 2;
    double y = rect.top();
    if (alignment & Qt::AlignBottom)
        y = rect.bottom() - metrics.height();
    else if (alignment & Qt::AlignVCenter)
        y = rect.top() + (rect.height() - metrics.height()) / 2;
    return {x, y + metrics.ascent()};
}

bool hasEmojiGlyphs(const QString &family)
{
    const QRawFont font = QRawFont::fromFont(QFont(family));
    return std::ranges::any_of(std::initializer_list<uint>{0x26A1, 0x2764, 0x2705},
                               [&font](uint character) {
                                   return font.supportsCharacter(character);
                               });
}

QString familyWithoutEmoji(const QString &family)
{
    static QHash<QString, QString> known;
    const auto found = known.constFind(family);
    if (found != known.constEnd())
        return *found;
    QString result = family;
    if (hasEmojiGlyphs(family)) {
        for (const QString &other : {u"Noto Sans"_s, u"Cantarell"_s, u"Liberation Sans"_s}) {
            if (QFontDatabase::hasFamily(other) && !hasEmojiGlyphs(other)) {
                result = other;
                break;
            }
        }
    }
    known.insert(family, result);
    return result;
}

} // namespace

QString displayText(const QString &text)
{
    return withoutVariationSelectors(text);
}

QFont emojiSafeFont(const QFont &font)
{
    QFont safe = font;
    safe.setFamilies({familyWithoutEmoji(QFontInfo(font).family()), emojiFamily});
    return safe;
}

QFont emojiFont(const QFont &font)
{
    QFont emoji = font;
    emoji.setFamilies({emojiFamily});
    emoji.setWeight(QFont::Normal);
    emoji.setItalic(false);
    if (font.pixelSize() > 0)
        emoji.setPixelSize(int(std::lround(font.pixelSize() * emojiScale)));
    else
        emoji.setPointSizeF(font.pointSizeF() * emojiScale);
    return emoji;
}

QTextCharFormat emojiFormat()
{
    QTextCharFormat format;
    format.setFontFamilies({emojiFamily});
    format.setFontWeight(QFont::Normal);
    format.setFontItalic(false);
    return format;
}

bool mayHoldEmoji(const QString &text)
{
    // Few emoji stand below U+2000.
    return std::ranges::any_of(text, [](QChar character) {
        return character.unicode() >= 0x2000 || character == u'©' || character == u'®';
    });
}

bool hasEmoji(const QString &text)
{
    return mayHoldEmoji(text) && std::ranges::any_of(emojiRuns(text), &EmojiRun::isEmoji);
}

QSizeF emojiTextSize(const QString &text, const QFont &font)
{
    static QCache<QString, QSizeF> sizes(cachedSizes);
    const QString shown = shownLine(text);
    const QString key = QString(font.key() + u'|' + shown);
    if (const QSizeF *size = sizes.object(key))
        return *size;
    const QFontMetricsF metrics(font);
    const EmojiLine line(shown, font);
    const QSizeF size(line.width(), std::max(line.height(), metrics.height()));
    sizes.insert(key, new QSizeF(size));
    return size;
}

void drawEmojiText(QPainter *painter, const QRectF &rect, const QString &text, const QFont &font,
                   const QColor &color, Qt::Alignment alignment, bool elide)
{
    const QString line = shownLine(text);
    const Qt::Alignment placing = QStyle::visualAlignment(painter->layoutDirection(), alignment);
    const QFontMetricsF metrics(font);
    painter->save();
    painter->setFont(font);
    painter->setPen(color);
    if (!hasEmoji(line)) {
        const QString visible = elide ? metrics.elidedText(line, Qt::ElideRight, rect.width())
                                      : line;
        painter->drawText(placed(rect, metrics.horizontalAdvance(visible), metrics, placing),
                          visible);
    } else {
        const double ratio = painter->device()->devicePixelRatioF();
        const QPixmap pixmap = cachedLine(line, font, color, ratio,
                                          elide ? std::floor(rect.width()) : -1);
        const QSizeF size = pixmap.deviceIndependentSize();
        const QPointF baseline = placed(rect, size.width(), metrics, placing);
        painter->drawPixmap(QPointF(std::round(baseline.x()),
                                    std::round(baseline.y() - emojiAscent(font))),
                            pixmap);
    }
    painter->restore();
}

} // namespace tembra

#include "Toolkit/Token/TokenRenderer.h"

#include "Foundation/Text/Abbreviation.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"
#include "Toolkit/Token/TokenText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace tembra {

namespace {

constexpr double pillPadding = 8; ///< Before and behind the title.
constexpr double verticalPadding = 2;
constexpr double gapBesides = 3; ///< Half of the room between two pills.
constexpr double gapBetweenRows = 4;
constexpr qsizetype shownCharacters = 300; ///< More do not fit into the widest pill.

struct PillColors
{
    QColor fill, border, text;
};

PillColors colorsOf(const TokenRenderer::State &state, const QPalette &palette)
{
    const auto color = [&](QPalette::ColorRole role) {
        return palette.color(state.isEnabled ? QPalette::Active : QPalette::Disabled, role);
    };
    const QColor base = color(QPalette::Base), text = color(QPalette::Text);
    if (!state.isEnabled)
        return {theme::mixed(base, text, 0.12), theme::mixed(base, text, 0.25), text};
    const QColor highlight = color(QPalette::Highlight);
    if (state.isSelected && state.hasFocus)
        return {highlight, highlight, color(QPalette::HighlightedText)};
    if (state.isSelected)
        return {theme::mixed(base, text, 0.2), theme::mixed(base, text, 0.45), text};
    const double part = state.isHovered ? 0.28 : 0.14;
    return {theme::mixed(base, highlight, part), theme::mixed(base, highlight, part + 0.22), text};
}

QRectF pillIn(const QRectF &cell)
{
    return cell.adjusted(gapBesides, 0, -gapBesides, 0);
}

QRectF titleIn(const QRectF &cell)
{
    return pillIn(cell).adjusted(pillPadding, 0, -pillPadding, 0);
}

QString shownTitle(const QString &title)
{
    return abbreviated(title, shownCharacters);
}

} // namespace

TokenMetrics::TokenMetrics(const QFont &font)
    : ascent(std::ceil(QFontMetricsF(font).ascent()))
    , textHeight(ascent + std::ceil(QFontMetricsF(font).descent()))
    , pillHeight(textHeight + 2 * verticalPadding)
    , lineHeight(pillHeight + gapBetweenRows)
    , textTop(gapBetweenRows / 2 + verticalPadding)
{
}

TokenRenderer::TokenRenderer(TokenText *text, QObject *parent)
    : QObject(parent)
    , m_text(text)
    , m_metrics(m_font)
{
}

void TokenRenderer::setFont(const QFont &font)
{
    m_font = font;
    m_metrics = TokenMetrics(font);
}

bool TokenRenderer::setMaximumWidth(double width)
{
    const bool changed = width != m_maximumWidth;
    m_maximumWidth = width;
    return changed;
}

double TokenRenderer::titleWidth(const QString &title) const
{
    const QString shown = shownTitle(title);
    const double width = hasEmoji(shown) ? emojiTextSize(shown, m_font).width()
                                         : QFontMetricsF(m_font).horizontalAdvance(shown);
    return std::ceil(width);
}

QSizeF TokenRenderer::intrinsicSize(QTextDocument *, int, const QTextFormat &format)
{
    return {width(m_text->token(format)), m_metrics.textHeight};
}

double TokenRenderer::width(TokenText::Token *token) const
{
    if (!token)
        return 0;
    if (token->width < 0)
        token->width = titleWidth(token->title);
    // Even one without a title can be seen and clicked.
    const double width = std::max(token->width + 2 * (pillPadding + gapBesides),
                                  m_metrics.pillHeight + 2 * gapBesides);
    return std::min(width, m_maximumWidth);
}

void TokenRenderer::drawObject(QPainter *, const QRectF &, QTextDocument *, int,
                               const QTextFormat &)
{
}

void TokenRenderer::draw(QPainter *painter, const QRectF &cell, const QString &title,
                         const State &state, const QPalette &palette) const
{
    const PillColors colors = colorsOf(state, palette);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(colors.border, 1));
    painter->setBrush(colors.fill);
    painter->drawRoundedRect(pillIn(cell).adjusted(0.5, 0.5, -0.5, -0.5), theme::cornerRadius,
                             theme::cornerRadius);
    // In its own direction, whatever that of the field: so an ellipsis stands at its end.
    painter->setLayoutDirection(title.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    drawEmojiText(painter, titleIn(cell), shownTitle(title), m_font, colors.text,
                  Qt::AlignHCenter | Qt::AlignVCenter);
    painter->restore();
}

bool TokenRenderer::isElided(const QRectF &cell, const QString &title) const
{
    return title.size() > shownCharacters || titleWidth(title) > titleIn(cell).width();
}

} // namespace tembra

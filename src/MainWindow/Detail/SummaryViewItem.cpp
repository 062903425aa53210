#include "MainWindow/Detail/SummaryViewItem.h"

#include "Foundation/Time/DateFormatting.h"
#include "Model/Session.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace tembra {

namespace {

constexpr double emojiScale = 1.2;
constexpr double tagRowHeight = 24;
constexpr double sideMargin = 3;

/// Beyond this, small emoji are no longer told apart.
constexpr double smallestTagScale = 0.7;

QFont scaled(QFont font, double factor)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(qRound(font.pixelSize() * factor));
    else
        font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

} // namespace

SummaryViewItem::SummaryViewItem(const DateFormatting &dates) : m_dates(dates) {}

void SummaryViewItem::setAppearance(const QFont &font, const QPalette &palette)
{
    m_palette = palette;
    dateLabelColor = palette.color(QPalette::Text);
    dateLabel.font = font;
    emojiLabel.font = scaled(font, emojiScale);
    tagLabel.font = font;
    emojiLabel.color = tagLabel.color = theme::secondaryText(palette);
    setSelected(view.selected);
}

void SummaryViewItem::setSession(std::shared_ptr<Session> session)
{
    m_session = std::move(session);
    const OptionalDate date = m_session ? m_session->date() : OptionalDate();
    emojiLabel.text = m_session ? m_session->emojiSummary() : QString();
    dateLabel.text = date ? m_dates.dayAndMonth(*date) : QString();
    tagLabel.text = m_session ? m_session->tagEmojiSummary() : QString();
}

void SummaryViewItem::setSelected(bool selected)
{
    view.selected = selected;
    dateLabel.font.setBold(selected);
    dateLabel.color = selected ? m_palette.color(QPalette::HighlightedText) : dateLabelColor;
}

void SummaryViewItem::draw(QPainter *painter, const QRectF &rect) const
{
    view.draw(painter, rect, m_palette);
    const QRectF band = TimelineViewItem::dateBand(rect);
    const QRectF tags(rect.left(), rect.bottom() - tagRowHeight - sideMargin, rect.width(),
                      tagRowHeight);
    drawDate(painter, band);
    drawEmoji(painter, {rect.left(), band.bottom(), rect.width(), tags.top() - band.bottom()});
    drawTags(painter, tags.adjusted(sideMargin, 0, -sideMargin, 0));
}

void SummaryViewItem::drawTags(QPainter *painter, const QRectF &row) const
{
    const double width = emojiTextSize(tagLabel.text, tagLabel.font).width();
    const double factor = std::clamp(row.width() / std::max(width, 1.0), smallestTagScale, 1.0);
    drawEmojiText(painter, row, tagLabel.text, scaled(tagLabel.font, factor), tagLabel.color,
                  Qt::AlignCenter);
}

void SummaryViewItem::drawDate(QPainter *painter, const QRectF &band) const
{
    // Some languages write a longer date than fits: a smaller date says more than half a date.
    const double width = QFontMetricsF(dateLabel.font).horizontalAdvance(dateLabel.text);
    const double room = band.width() - 2 * sideMargin;
    painter->save();
    painter->setFont(width > room ? scaled(dateLabel.font, room / width) : dateLabel.font);
    painter->setPen(dateLabel.color);
    painter->drawText(band, Qt::AlignCenter | Qt::TextSingleLine, dateLabel.text);
    painter->restore();
}

void SummaryViewItem::drawEmoji(QPainter *painter, const QRectF &area) const
{
    const QStringList parts = emojiLabel.text.split(u' ');
    const double partHeight = area.height() / double(parts.size());
    QRectF row(area.left() + sideMargin, area.top(), area.width() - 2 * sideMargin, partHeight);
    for (const QString &part : parts) {
        drawEmojiText(painter, row, part, emojiLabel.font, emojiLabel.color, Qt::AlignCenter);
        row.translate(0, partHeight);
    }
}

} // namespace tembra

#include "MainWindow/Detail/TimelineViewItem.h"

#include "Toolkit/Theme.h"

#include <QPainter>
#include <QPainterPath>

namespace tembra {

namespace {

constexpr double bandHeight = 26;
constexpr double selectedFrameWidth = 2;
constexpr double selectedTint = 0.12;

QRectF insideLine(const QRectF &rect, double lineWidth)
{
    const double half = lineWidth / 2;
    return rect.adjusted(half, half, -half, -half);
}

} // namespace

QRectF TimelineViewItem::dateBand(const QRectF &rect)
{
    return {rect.left(), rect.top(), rect.width(), bandHeight};
}

void TimelineViewItem::draw(QPainter *painter, const QRectF &rect, const QPalette &palette) const
{
    const QColor base = palette.color(QPalette::Base);
    const QColor highlight = palette.color(QPalette::Highlight);
    const double lineWidth = selected ? selectedFrameWidth : 1;
    QColor fill = hovered ? theme::hoverFill(palette) : base;
    if (selected)
        fill = theme::mixed(base, highlight, selectedTint);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QPainterPath card;
    card.addRoundedRect(insideLine(rect, lineWidth), theme::cornerRadius, theme::cornerRadius);
    painter->fillPath(card, fill);
    if (selected) {
        QPainterPath band;
        band.addRect(dateBand(rect));
        painter->fillPath(card.intersected(band), highlight);
    }
    painter->strokePath(card, QPen(selected ? highlight : theme::hairline(palette), lineWidth));
    if (focused) {
        // Inside the frame, so that it shows on a selected tile too.
        QPainterPath ring;
        ring.addRoundedRect(insideLine(rect, 1).adjusted(3, 3, -3, -3), theme::cornerRadius - 3,
                            theme::cornerRadius - 3);
        painter->strokePath(ring, QPen(palette.color(QPalette::Text), 1, Qt::DotLine));
    }
    painter->restore();
}

} // namespace tembra

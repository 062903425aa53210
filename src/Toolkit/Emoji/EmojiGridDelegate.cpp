#include "Toolkit/Emoji/EmojiGridDelegate.h"

#include "Toolkit/Emoji/EmojiGridModel.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QPainterPath>

namespace tembra {

namespace {

/// Emoji in the grid against those within text.
constexpr double gridScale = 1.7;
constexpr int skinToneMarkSize = 4;

QFont gridFont(QFont font)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(int(font.pixelSize() * gridScale));
    else
        font.setPointSizeF(font.pointSizeF() * gridScale);
    return font;
}

void drawHeading(QPainter *painter, const QStyleOptionViewItem &option, const QString &title)
{
    const QRect rect = option.rect.adjusted(theme::gridUnit, 0, 0, -theme::gridUnit);
    painter->setFont(theme::semiboldFont(theme::secondaryFont(option.font)));
    // A heading cannot be chosen, but is not dead either.
    QPalette palette = option.palette;
    palette.setCurrentColorGroup(QPalette::Active);
    painter->setPen(theme::secondaryText(palette, QPalette::Window));
    const QString text = painter->fontMetrics().elidedText(title, Qt::ElideRight, rect.width());
    painter->drawText(rect,
                      int(QStyle::visualAlignment(option.direction,
                                                  Qt::AlignLeft | Qt::AlignBottom)),
                      text);
}

/// The cell that Return would insert stands out, more so while the keyboard is in the grid.
void drawState(QPainter *painter, const QStyleOptionViewItem &option, bool isCurrent)
{
    const bool isUnderPointer = option.state & QStyle::State_MouseOver;
    if (!isCurrent && !isUnderPointer)
        return;
    const QRectF cell = QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5);
    painter->setBrush(theme::hoverFill(option.palette, QPalette::Window));
    const bool hasKeyboard = isCurrent && (option.state & QStyle::State_HasFocus);
    const QColor ring = hasKeyboard ? option.palette.color(QPalette::Highlight)
                                    : theme::hairline(option.palette);
    painter->setPen(isCurrent ? QPen(ring, hasKeyboard ? 2 : 1) : QPen(Qt::NoPen));
    painter->drawRoundedRect(cell, theme::cornerRadius, theme::cornerRadius);
}

/// A corner tells that there is more behind an emoji.
void drawSkinToneMark(QPainter *painter, const QStyleOptionViewItem &option)
{
    const bool rightToLeft = option.direction == Qt::RightToLeft;
    const QRectF cell = QRectF(option.rect).adjusted(4, 4, -4, -4);
    const QPointF corner = rightToLeft ? cell.bottomLeft() : cell.bottomRight();
    const double inward = rightToLeft ? skinToneMarkSize : -skinToneMarkSize;
    QPainterPath path(corner);
    path.lineTo(corner + QPointF(inward, 0));
    path.lineTo(corner - QPointF(0, skinToneMarkSize));
    path.closeSubpath();
    painter->fillPath(path, theme::secondaryText(option.palette, QPalette::Window));
}

} // namespace

int EmojiGridDelegate::cellSize(const QFont &font)
{
    return int(QFontMetricsF(emojiFont(gridFont(font))).height()) + 2 * theme::gridUnit;
}

int EmojiGridDelegate::headingHeight(const QFont &font)
{
    return QFontMetrics(theme::secondaryFont(font)).height() + 3 * theme::gridUnit;
}

void EmojiGridDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    const QString text = index.data().toString();
    if (text.isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (!(index.flags() & Qt::ItemIsEnabled)) {
        drawHeading(painter, option, text);
    } else {
        const auto *view = qobject_cast<const QAbstractItemView *>(option.widget);
        drawState(painter, option, view && view->currentIndex() == index);
        drawEmojiText(painter, option.rect, text, gridFont(option.font),
                      option.palette.color(QPalette::WindowText), Qt::AlignCenter, false);
        if (index.data(EmojiGridModel::HasSkinTonesRole).toBool())
            drawSkinToneMark(painter, option);
    }
    painter->restore();
}

} // namespace tembra

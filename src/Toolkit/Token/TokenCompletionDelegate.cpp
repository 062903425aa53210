#include "Toolkit/Token/TokenCompletionDelegate.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAbstractItemView>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tembra {

namespace {

constexpr int completionRowPadding = 6;

QRect textRect(const QStyleOptionViewItem &option)
{
    return option.rect.adjusted(TokenCompletionDelegate::rowInset, 0,
                                -TokenCompletionDelegate::rowInset, 0);
}

} // namespace

int TokenCompletionDelegate::rowHeight(const QFont &font)
{
    const double text = std::max(QFontMetricsF(font).height(),
                                 QFontMetricsF(emojiFont(font)).height());
    return int(std::ceil(text)) + completionRowPadding;
}

QSize TokenCompletionDelegate::sizeHint(const QStyleOptionViewItem &option,
                                        const QModelIndex &) const
{
    return {1, rowHeight(option.font)};
}

void TokenCompletionDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                    const QModelIndex &index) const
{
    const bool isHighlighted = option.state & QStyle::State_Selected;
    const QPalette &palette = option.palette;
    const QString text = index.data().toString();
    painter->save();
    if (isHighlighted || (option.state & QStyle::State_MouseOver)) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(isHighlighted ? palette.color(QPalette::Active, QPalette::Highlight)
                                        : theme::hoverFill(palette));
        painter->drawRoundedRect(option.rect, theme::gridUnit, theme::gridUnit);
    }
    // At the side of the list's direction, but each text in its own.
    painter->setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    const Qt::Alignment side = option.direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    drawEmojiText(painter, textRect(option), text, option.font,
                  palette.color(QPalette::Active,
                                isHighlighted ? QPalette::HighlightedText : QPalette::Text),
                  side | Qt::AlignAbsolute | Qt::AlignVCenter);
    painter->restore();
}

bool TokenCompletionDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                        const QStyleOptionViewItem &option,
                                        const QModelIndex &index)
{
    const QString text = index.data().toString();
    if (emojiTextSize(text, option.font).width() <= textRect(option).width())
        return false;
    showPlainToolTip(event->globalPos(), text, view);
    return true;
}

} // namespace tembra

#include "Tags/BrowserRowDelegate.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QColor cellColor(const QStyleOptionViewItem &option, bool dimmed)
{
    if (option.state & QStyle::State_Selected)
        return dimmed ? theme::secondaryHighlightedText(option.palette)
                      : option.palette.color(QPalette::HighlightedText);
    return dimmed ? theme::secondaryText(option.palette) : option.palette.color(QPalette::Text);
}

} // namespace

QRect BrowserRowDelegate::textRect(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const int leading = index.column() == 0 ? theme::wideMargin : theme::relatedSpacing;
    const QRect text = option.rect.adjusted(leading, 0, -theme::relatedSpacing, 0);
    return QStyle::visualRect(option.direction, option.rect, text);
}

QString BrowserRowDelegate::cellText(const QModelIndex &index) const
{
    return index.data(Qt::DisplayRole).toString();
}

bool BrowserRowDelegate::isDimmed(const QModelIndex &) const
{
    return false;
}

Qt::Alignment BrowserRowDelegate::cellAlignment(const QModelIndex &) const
{
    return Qt::AlignLeading | Qt::AlignVCenter;
}

QString BrowserRowDelegate::toolTipFor(const QModelIndex &) const
{
    return {};
}

void BrowserRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    painter->setLayoutDirection(option.direction);
    drawEmojiText(painter, textRect(option, index), cellText(index), option.font,
                  cellColor(option, isDimmed(index)), cellAlignment(index));
}

QSize BrowserRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const double emoji = QFontMetricsF(emojiFont(option.font)).height();
    return {0, int(std::ceil(emoji)) + 2 * theme::gridUnit};
}

bool BrowserRowDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                   const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = cellText(index);
    QString tip = toolTipFor(index);
    if (emojiTextSize(text, option.font).width() > textRect(option, index).width())
        tip = text;
    showPlainToolTip(event->globalPos(), tip, view->viewport(), option.rect);
    return true;
}

} // namespace tembra

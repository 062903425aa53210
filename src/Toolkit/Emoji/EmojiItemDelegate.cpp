#include "Toolkit/Emoji/EmojiItemDelegate.h"

#include "Toolkit/Emoji/EmojiText.h"

#include <QApplication>
#include <QPainter>

namespace tembra {

namespace {

constexpr int rowPadding = 6;

QColor textColor(const QStyleOptionViewItem &option)
{
    const QPalette::ColorGroup group = !(option.state & QStyle::State_Enabled)  ? QPalette::Disabled
                                       : !(option.state & QStyle::State_Active) ? QPalette::Inactive
                                                                                : QPalette::Active;
    const bool selected = option.state & QStyle::State_Selected;
    return option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
}

} // namespace

void EmojiItemDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    if (!hasEmoji(item.text)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QString text = item.text;
    const QStyle *style = item.widget ? item.widget->style() : QApplication::style();
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget);
    item.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &item, item.widget) + 1;
    drawEmojiText(painter, textRect.adjusted(margin, 0, -margin, 0), text, item.font,
                  textColor(item), item.displayAlignment);
}

QSize EmojiItemDelegate::sizeHint(const QStyleOptionViewItem &option,
                                  const QModelIndex &index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    // Rows with and without emoji are equally high.
    size = size.expandedTo({0, int(QFontMetricsF(emojiFont(item.font)).height()) + rowPadding});
    if (!hasEmoji(item.text))
        return size;
    const QSizeF text = emojiTextSize(item.text, item.font);
    const double plainWidth = QFontMetricsF(item.font).horizontalAdvance(item.text);
    size.rwidth() += int(text.width() - plainWidth) + 1;
    return size;
}

} // namespace tembra

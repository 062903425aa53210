#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws the text of an item with emoji in colour; everything else as the style does.
class EmojiItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace tembra

#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws the cells of an `EmojiGrid`: emoji and headings.
class EmojiGridDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static int cellSize(const QFont &font);
    static int headingHeight(const QFont &font);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};

} // namespace tembra

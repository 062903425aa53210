#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws a recent tag: its title, and its shortcut at the other end.
class RecentTagDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace tembra

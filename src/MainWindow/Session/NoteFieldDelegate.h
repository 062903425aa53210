#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// A row of the field list: the field's title, and a dot where it holds text.
class NoteFieldDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// What a row needs in width besides its title.
    static const int roomBesideTitle;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace tembra

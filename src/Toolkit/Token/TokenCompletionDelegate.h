#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws the rows of a completion list. All are equally high, so that none needs to be measured.
class TokenCompletionDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int rowInset = 8; ///< Between the end of a row and its text.
    static int rowHeight(const QFont &font);

    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    /// The whole text as a tooltip where it does not fit.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
};

} // namespace tembra

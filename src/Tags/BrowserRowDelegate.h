#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws the cells of a `BrowserRowsView`: one line of text each, emoji in colour, cut with an
/// ellipsis where it does not fit and then whole in a tooltip. The view draws the background.
class BrowserRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    /// The text of the cell.
    virtual QString cellText(const QModelIndex &index) const;
    virtual bool isDimmed(const QModelIndex &index) const;
    virtual Qt::Alignment cellAlignment(const QModelIndex &index) const;
    /// The tooltip of a cell whose text is not elided.
    virtual QString toolTipFor(const QModelIndex &index) const;
    /// The rectangle of a cell's text; the first column aligns with the titles above.
    static QRect textRect(const QStyleOptionViewItem &option, const QModelIndex &index);
};

} // namespace tembra

#pragma once

#include <QStyledItemDelegate>

namespace tembra {

/// Draws the cells of a `BrowserRowsView`: one line of text each, emoji in colour, cut with an
/// ellipsis where it does not fit and then whole in a tooltip. The row draws what is behind.
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
    /// What the cell shows.
    virtual QString cellText(const QModelIndex &index) const;
    virtual bool isDimmed(const QModelIndex &index) const;
    virtual Qt::Alignment cellAlignment(const QModelIndex &index) const;
    /// Without a text that is cut short.
    virtual QString toolTipFor(const QModelIndex &index) const;
    /// Where the text of a cell stands; that of the first column in line with titles above it.
    static QRect textRect(const QStyleOptionViewItem &option, const QModelIndex &index);
};

} // namespace tembra

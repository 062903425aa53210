#include "Tags/BrowserRowsView.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

namespace tembra {

namespace {

bool isStep(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Up || event.key() == Qt::Key_Down)
           && !(event.modifiers() & ~Qt::KeypadModifier);
}

/// Draws the titles of the columns dimmed, above a hairline and aligned with the cells.
class ColumnTitles final : public QHeaderView
{
public:
    using QHeaderView::QHeaderView;

    QSize sizeHint() const override
    {
        return {QHeaderView::sizeHint().width(),
                fontMetrics().height() + 2 * theme::gridUnit + theme::gridUnit / 2};
    }

protected:
    void paintSection(QPainter *painter, const QRect &rect, int column) const override
    {
        const int leading = column == 0 ? theme::wideMargin : theme::relatedSpacing;
        const QRect text = QStyle::visualRect(layoutDirection(), rect,
                                              rect.adjusted(leading, 0, -theme::relatedSpacing, 0));
        painter->save();
        painter->fillRect(rect, palette().color(QPalette::Base));
        painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1),
                          theme::hairline(palette()));
        painter->setLayoutDirection(layoutDirection());
        drawEmojiText(painter, text, model()->headerData(column, orientation()).toString(),
                      theme::secondaryFont(font()), theme::secondaryText(palette()));
        painter->restore();
    }
};

} // namespace

BrowserRowsView::BrowserRowsView(QWidget *parent) : QTreeView(parent)
{
    setHeader(new ColumnTitles(Qt::Horizontal, this));
    setFrameShape(QFrame::NoFrame);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    // The frame of the current row spans all columns, and is to be painted over in all of them.
    setAllColumnsShowFocus(true);
    header()->setSectionsMovable(false);
    header()->setHighlightSections(false);
    viewport()->setAttribute(Qt::WA_Hover);
}

void BrowserRowsView::drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    const bool selected = selectionModel()->isSelected(index);
    const bool hovered = viewport()->underMouse()
                         && indexAt(viewport()->mapFromGlobal(QCursor::pos())).row() == index.row();
    const bool focused = hasFocus() && index.row() == currentRow();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    if (selected)
        painter->setBrush(option.palette.color(QPalette::Highlight));
    else if (hovered)
        painter->setBrush(theme::hoverFill(option.palette));
    const QRectF fill = QRectF(option.rect).adjusted(theme::gridUnit, 1, -theme::gridUnit, -1);
    painter->drawRoundedRect(fill, theme::cornerRadius, theme::cornerRadius);
    if (focused) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(
            QPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight),
                 2));
        painter->drawRoundedRect(fill.adjusted(2, 2, -2, -2), theme::cornerRadius - 2,
                                 theme::cornerRadius - 2);
    }
    painter->restore();
    QTreeView::drawRow(painter, option, index);
}

void BrowserRowsView::keyPressEvent(QKeyEvent *event)
{
    // Without a selection an arrow selects the current row, which would be skipped otherwise.
    if (isStep(*event) && currentIndex().isValid() && !selectionModel()->hasSelection())
        selectionModel()->setCurrentIndex(currentIndex(), QItemSelectionModel::ClearAndSelect
                                                              | QItemSelectionModel::Rows);
    else
        QTreeView::keyPressEvent(event);
}

} // namespace tembra

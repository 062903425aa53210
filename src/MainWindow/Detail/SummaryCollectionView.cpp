#include "MainWindow/Detail/SummaryCollectionView.h"

#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryViewItem.h"
#include "Model/Session.h"

#include <QAction>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// The margin that a list view leaves on every side of an item.
constexpr int itemMargin = SummaryCollectionView::itemSpacing / 2;

/// Paints every tile with one SummaryViewItem.
class TileDelegate final : public QStyledItemDelegate
{
public:
    TileDelegate(const DateFormatting &dates, QObject *parent)
        : QStyledItemDelegate(parent)
        , m_item(dates)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return SummaryCollectionView::itemSize;
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const QVariant session = index.data(SessionTimelineModel::SessionRole);
        m_item.setAppearance(option.font, option.palette);
        m_item.setSession(session.value<std::shared_ptr<Session>>());
        m_item.setSelected(option.state & QStyle::State_Selected);
        m_item.view.hovered = option.state & QStyle::State_MouseOver;
        m_item.view.focused = option.state & QStyle::State_HasFocus;
        // Without a scroll bar the view makes its items higher.
        m_item.draw(painter, QRect(option.rect.topLeft(), SummaryCollectionView::itemSize));
        m_item.setSession({}); // The tile must not keep a meeting in memory.
    }

private:
    mutable SummaryViewItem m_item;
};

} // namespace

SummaryCollectionView::SummaryCollectionView(const DateFormatting &dates, QWidget *parent)
    : QListView(parent)
{
    setFlow(LeftToRight);
    setWrapping(false);
    setUniformItemSizes(true);
    setSpacing(itemMargin);
    setViewportMargins(sectionInset - itemMargin, 0, sectionInset - itemMargin, 0);
    setItemDelegate(new TileDelegate(dates, this));
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setFrameShape(NoFrame);
    setBackgroundRole(QPalette::Base); // Of the insets too.
    setAutoFillBackground(true);
    setFixedHeight(itemSize.height() + 2 * itemMargin + horizontalScrollBar()->sizeHint().height());
    addDeleteAction();
}

SummaryCollectionView::~SummaryCollectionView() = default;

void SummaryCollectionView::addDeleteAction()
{
    auto *action = new QAction(tr("Delete Meeting…", "Menu of a meeting's tile"), this);
    action->setObjectName(u"deleteSessionAction"_s);
    connect(action, &QAction::triggered, this, &SummaryCollectionView::deleteRequested);
    addAction(action);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void SummaryCollectionView::setTimeline(SessionTimelineModel *timeline)
{
    setModel(timeline);
}

int SummaryCollectionView::selectedRow() const
{
    const QModelIndexList rows = selectedIndexes();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void SummaryCollectionView::selectAndShow(int row)
{
    const QScopedValueRollback selecting(m_isSelecting, true);
    const QModelIndex tile = model()->index(row, 0);
    selectionModel()->setCurrentIndex(tile, QItemSelectionModel::ClearAndSelect);
    executeDelayedItemsLayout(); // The tile has its position only after the layout.
    scrollTo(tile);
}

void SummaryCollectionView::scrollTo(const QModelIndex &index, ScrollHint)
{
    // The base class leaves the last column of pixels and the tile's margin outside.
    const QRect tile = visualRect(index).adjusted(-itemMargin, 0, itemMargin, 0);
    const int beyondLeft = std::min(tile.left(), 0);
    const int beyondRight = std::max(tile.right() - viewport()->width() + 1, 0);
    const int towardsRight = beyondLeft != 0 ? beyondLeft : beyondRight;
    QScrollBar *bar = horizontalScrollBar();
    bar->setValue(bar->value() + (isRightToLeft() ? -towardsRight : towardsRight));
}

void SummaryCollectionView::deselectAll()
{
    const QScopedValueRollback selecting(m_isSelecting, true);
    clearSelection();
}

void SummaryCollectionView::selectionChanged(const QItemSelection &selected,
                                             const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    if (!m_isSelecting)
        Q_EMIT selectedRowChanged(selectedRow());
}

int SummaryCollectionView::tilesPerPage() const
{
    return std::max(1, viewport()->width() / (itemSize.width() + itemSpacing) - 1);
}

QModelIndex SummaryCollectionView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = model()->rowCount() - 1;
    const int row = currentIndex().row();
    if (last < 0 || row < 0)
        return model()->index(0, 0);
    const int towardsRight = isRightToLeft() ? -1 : 1;
    int target = row;
    switch (action) {
    case MoveLeft:
        target = row - towardsRight;
        break;
    case MoveRight:
        target = row + towardsRight;
        break;
    case MovePrevious:
        target = row - 1;
        break;
    case MoveNext:
        target = row + 1;
        break;
    case MovePageUp:
        target = row - tilesPerPage();
        break;
    case MovePageDown:
        target = row + tilesPerPage();
        break;
    case MoveHome:
        target = 0;
        break;
    case MoveEnd:
        target = last;
        break;
    case MoveUp:
    case MoveDown:
        break;
    }
    return model()->index(std::clamp(target, 0, last), 0);
}

void SummaryCollectionView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        // The meeting in the editor is not to be deleted from here unless its tile is selected.
        if (selectedRow() >= 0)
            Q_EMIT deleteRequested();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT editRequested();
        break;
    default:
        QListView::keyPressEvent(event);
    }
}

} // namespace tembra

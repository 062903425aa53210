#include "MainWindow/Counterparts/CounterpartListView.h"

#include <QKeyEvent>

namespace tembra {

namespace {

bool isStep(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
}

bool isMovement(const QKeyEvent &event)
{
    static const QList<int> keys{Qt::Key_Up,  Qt::Key_Down,   Qt::Key_Home,
                                 Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};
    return !(event.modifiers() & ~Qt::KeypadModifier) && keys.contains(event.key());
}

} // namespace

CounterpartListView::CounterpartListView(QWidget *parent) : QListView(parent)
{
    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    viewport()->setAttribute(Qt::WA_Hover);
}

void CounterpartListView::keyPressEvent(QKeyEvent *event)
{
    const bool picksRow = isMovement(*event) && !selectionModel()->hasSelection();
    // Without a selection an arrow selects the current row, which would be skipped otherwise.
    const bool picksRowAtHand = picksRow && isStep(*event) && currentIndex().isValid();
    if (!picksRowAtHand)
        QListView::keyPressEvent(event);
    if (picksRow && currentIndex().isValid())
        selectionModel()->setCurrentIndex(currentIndex(), QItemSelectionModel::ClearAndSelect);
}

void CounterpartListView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                      const QList<int> &roles)
{
    QListView::dataChanged(topLeft, bottomRight, roles);
    // A row shows every column of the model, the view knows of the first one only.
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row)
        update(topLeft.siblingAtColumn(modelColumn()).siblingAtRow(row));
}

} // namespace tembra

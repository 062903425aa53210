#include "Preferences/InputControls/AutoEditArrayController.h"

#include <QAbstractItemView>
#include <QTimer>

#include <chrono>

namespace tembra {

using namespace std::chrono_literals;

void AutoEditArrayController::setTableView(QAbstractItemView *tableView)
{
    m_tableView = tableView;
}

QAbstractItemView *AutoEditArrayController::tableView() const
{
    return m_tableView;
}

void AutoEditArrayController::add()
{
    ArrayController::add();
    QTimer::singleShot(100ms, this, &AutoEditArrayController::editSelectedRow);
}

void AutoEditArrayController::editSelectedRow()
{
    const int row = selectionIndex();
    if (!m_tableView || !m_tableView->model() || row < 0 || row >= m_tableView->model()->rowCount())
        return;
    const QModelIndex index = m_tableView->model()->index(row, 0);
    // A second addition within the delay asks again for the row that is being edited by now.
    if (m_tableView->isPersistentEditorOpen(index))
        return;
    m_tableView->scrollTo(index);
    // Takes the keyboard from another editor, which so commits. The new one opens with its text selected.
    m_tableView->setFocus();
    m_tableView->edit(index);
}

} // namespace tembra

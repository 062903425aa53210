#include "Preferences/InputControls/AutoEditArrayController.h"

#include "Preferences/InputControls/RowNameEditor.h"

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
    if (m_tableView && m_tableView->model() && row >= 0)
        editInPlace(*m_tableView, m_tableView->model()->index(row, 0));
}

} // namespace tembra

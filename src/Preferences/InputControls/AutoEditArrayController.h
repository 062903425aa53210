#pragma once

#include "Toolkit/List/ArrayController.h"

class QAbstractItemView;

namespace tembra {

/// Starts editing the row it has added, so that its name can be typed at once.
class AutoEditArrayController : public ArrayController
{
    Q_OBJECT

public:
    using ArrayController::ArrayController;

    void setTableView(QAbstractItemView *tableView);
    QAbstractItemView *tableView() const;

    /// Adds an object; 0.1 seconds later column 0 of the selected row is edited, its text selected.
    void add() override;

private:
    void editSelectedRow();

    QPointer<QAbstractItemView> m_tableView;
};

} // namespace tembra

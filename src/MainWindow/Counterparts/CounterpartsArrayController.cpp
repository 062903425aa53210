#include "MainWindow/Counterparts/CounterpartsArrayController.h"

#include "MainWindow/Counterparts/CounterpartRowViewModel.h"
#include "Model/Counterpart.h"

namespace tembra {

CounterpartsArrayController::CounterpartsArrayController(QObject *parent)
    : AutoEditArrayController(parent)
{
    setColumns({"name", "recentSessionSummary", "recentSessionTagSummary"});
    setColumnEditable(0, true);
    // Most neglected first; who has not been met at all comes last.
    setSortDescriptors({{"daysSinceLastSession", false}});
    setTieKey([](const QObject &object) {
        return static_cast<const Counterpart &>(object).objectID().key;
    });
}

QVariant CounterpartsArrayController::data(const QModelIndex &index, int role) const
{
    if (role != Qt::AccessibleTextRole || !index.isValid())
        return AutoEditArrayController::data(index, role);
    return CounterpartRowViewModel(static_cast<const Counterpart &>(*objectAt(index.row())))
        .accessibleText();
}

} // namespace tembra

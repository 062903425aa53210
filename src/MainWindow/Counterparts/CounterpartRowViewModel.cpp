#include "MainWindow/Counterparts/CounterpartRowViewModel.h"

#include "Model/Counterpart.h"

namespace tembra {

using namespace Qt::StringLiterals;

CounterpartRowViewModel::CounterpartRowViewModel(const Counterpart &counterpart)
    : title(counterpart.name())
    , isUnnamed(title.isEmpty())
    , meetingLine(counterpart.recentSessionSummary())
    , tagEmoji(counterpart.recentSessionTagSummary())
    , isOverdue(counterpart.isOverdue())
{
    if (isUnnamed)
        title = unnamedTitle();
}

QString CounterpartRowViewModel::unnamedTitle()
{
    return tr("New teammate", "Stands where the name of a teammate without a name would");
}

QString CounterpartRowViewModel::accessibleText() const
{
    return title + u", "_s + meetingLine;
}

} // namespace tembra

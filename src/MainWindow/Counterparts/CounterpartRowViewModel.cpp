#include "MainWindow/Counterparts/CounterpartRowViewModel.h"

#include "Foundation/Text/Abbreviation.h"
#include "Model/Counterpart.h"

namespace tembra {

using namespace Qt::StringLiterals;

CounterpartRowViewModel::CounterpartRowViewModel(const Counterpart &counterpart)
    : title(singleLine(counterpart.name()))
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

QString CounterpartRowViewModel::toolTip() const
{
    QStringList lines{title, meetingLine};
    if (!tagEmoji.isEmpty())
        lines.append(abbreviated(tagEmoji));
    return lines.join(u'\n');
}

} // namespace tembra

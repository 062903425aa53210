#include "MainWindow/ViewCoordinator.h"

#include "Foundation/Logging.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "Toolkit/List/ArrayController.h"

namespace tembra {

void ViewCoordinator::awakeFromNib()
{
    qCInfo(windowLog, "awake from nib");
}

} // namespace tembra

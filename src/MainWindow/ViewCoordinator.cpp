#include "MainWindow/ViewCoordinator.h"

#include "Foundation/Logging.h"
#include "MainWindow/CounterpartsPaneViewController.h"
#include "MainWindow/DetailPaneViewController.h"
#include "Toolkit/ArrayController.h"

namespace tembra {

void ViewCoordinator::awakeFromNib()
{
    qCInfo(windowLog, "awake from nib");
}

} // namespace tembra

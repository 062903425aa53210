#include "Toolkit/WindowActivation.h"

#include <QWidget>

namespace tembra {

void bringToFront(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace tembra

#include "Preferences/InputControls/PopoverSourceButton.h"

#include <QMouseEvent>

namespace tembra {

void PopoverSourceButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !hitButton(event->position().toPoint())) {
        event->ignore();
        return;
    }
    event->accept();
    // The button is up again when the mouse is let go, so that this does nothing more.
    click();
}

} // namespace tembra

#include "Toolkit/FieldEvents.h"

#include <QKeyEvent>

namespace tembra {

bool isUndoOrRedo(const QKeyEvent &event)
{
    // Ctrl+Y is Redo everywhere here, also where the platform knows another key only.
    const bool isControlY = event.key() == Qt::Key_Y && event.modifiers() == Qt::ControlModifier;
    return event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo) || isControlY;
}

bool isTemporaryFocusChange(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason
           || reason == Qt::MenuBarFocusReason;
}

} // namespace tembra

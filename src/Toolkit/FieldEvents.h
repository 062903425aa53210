#pragma once

#include <QtGlobal>

#include <Qt>

class QKeyEvent;

namespace tembra {

/// Whether a key is Undo or Redo. A field without an undo of its own leaves these to the window.
bool isUndoOrRedo(const QKeyEvent &event);

/// Whether the keyboard only leaves or comes back for a while: with another window, a menu or a
/// popup. The editing in a field goes on then.
bool isTemporaryFocusChange(Qt::FocusReason reason);

} // namespace tembra

#pragma once

class QWidget;

namespace tembra {

/// Shows a window in front of all others and gives it the keyboard, also when it was minimised.
void bringToFront(QWidget &window);

} // namespace tembra

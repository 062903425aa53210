#pragma once

#include <QPushButton>

namespace tembra {

/// A button that acts as the left mouse button goes down, so that a popover anchored to it opens at
/// once. The keyboard presses it as any other button.
class PopoverSourceButton final : public QPushButton
{
    Q_OBJECT

public:
    using QPushButton::QPushButton;

protected:
    void mousePressEvent(QMouseEvent *event) override;
};

} // namespace tembra

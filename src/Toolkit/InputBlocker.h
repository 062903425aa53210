#pragma once

#include <QObject>

class QWidget;

namespace tembra {

/// Discards all input to the application (keys, shortcuts, mouse, wheel, touch, drags, context menus,
/// input methods), except input to one window, for as long as it lives. Windows are still painted and
/// can be moved, resized, minimised and closed.
///
/// Unlike a modal window it lets the window manager's request to close a window through, and files
/// dropped on a window itself, not on a control in it.
class InputBlocker final : public QObject
{
    Q_OBJECT

public:
    /// @p exempt goes on getting input. While it is visible, it is activated in place of any other
    /// window. It must outlive this object.
    explicit InputBlocker(QWidget &exempt);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isExempt(const QObject *object) const;
    void activateExempt();

    QWidget &m_exempt;
};

} // namespace tembra

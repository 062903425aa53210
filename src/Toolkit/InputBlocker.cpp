#include "Toolkit/InputBlocker.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace tembra {

namespace {

bool isDrag(QEvent::Type type)
{
    switch (type) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::NativeGesture:
        return true;
    default:
        return isDrag(type);
    }
}

bool isWindow(const QObject *object)
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    return object->isWindowType() || (widget && widget->isWindow());
}

} // namespace

InputBlocker::InputBlocker(QWidget &exempt) : m_exempt(exempt)
{
    while (QWidget *popup = QApplication::activePopupWidget()) {
        if (!popup->close())
            break;
    }
    qApp->installEventFilter(this);
}

bool InputBlocker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate && !isExempt(watched)) {
        // Later: the window manager is in the middle of activating the other one.
        QMetaObject::invokeMethod(this, &InputBlocker::activateExempt, Qt::QueuedConnection);
        return false;
    }
    if (!isInput(event->type()) || isExempt(watched))
        return false;
    if (isDrag(event->type()) && isWindow(watched))
        return false;
    // What is refused on the way to a control is not offered to those around it.
    event->setAccepted(!isDrag(event->type()));
    return true;
}

bool InputBlocker::isExempt(const QObject *object) const
{
    for (; object; object = object->parent()) {
        if (object == &m_exempt || object == m_exempt.windowHandle())
            return true;
    }
    return false;
}

void InputBlocker::activateExempt()
{
    if (!m_exempt.isVisible() || m_exempt.isActiveWindow())
        return;
    m_exempt.raise();
    m_exempt.activateWindow();
}

} // namespace tembra

#include "Toolkit/FieldPopover.h"

#include <QApplication>
#include <QEvent>

namespace tembra {

FieldPopover::FieldPopover(QWidget *field) : Popover(field->window(), Qt::Widget)
{
    setFocusPolicy(Qt::NoFocus);
    // It lies in the window, where its children may come and go before the field does.
    connect(field, &QObject::destroyed, this, &QObject::deleteLater);
}

void FieldPopover::showEvent(QShowEvent *event)
{
    Popover::showEvent(event);
    raise();
    qApp->installEventFilter(this);
}

void FieldPopover::hideEvent(QHideEvent *event)
{
    qApp->removeEventFilter(this);
    Popover::hideEvent(event);
}

bool FieldPopover::eventFilter(QObject *watched, QEvent *event)
{
    const bool isOfTheWindow = watched == parentWidget();
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (widget && isOutside(*widget))
            hide();
        break;
    }
    case QEvent::WindowDeactivate:
        if (isOfTheWindow)
            hide();
        break;
    case QEvent::Resize:
        if (isOfTheWindow || watched == anchor())
            place();
        break;
    case QEvent::Move:
        if (watched == anchor())
            place();
        break;
    default:
        break;
    }
    return Popover::eventFilter(watched, event);
}

bool FieldPopover::isOutside(const QWidget &widget) const
{
    const bool isOfTheField = anchor() && (&widget == anchor() || anchor()->isAncestorOf(&widget));
    return &widget != this && !isAncestorOf(&widget) && !isOfTheField;
}

} // namespace tembra

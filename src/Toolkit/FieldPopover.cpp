#include "Toolkit/FieldPopover.h"

#include <QApplication>
#include <QMouseEvent>

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

/// A click beside its controls goes no further, or it would be one in the window.
void FieldPopover::mousePressEvent(QMouseEvent *event)
{
    event->accept();
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
    case QEvent::Move:
        if (holdsTheField(watched))
            place();
        break;
    default:
        break;
    }
    return Popover::eventFilter(watched, event);
}

/// The field, or a part of the window that it moves with.
bool FieldPopover::holdsTheField(const QObject *object) const
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    return widget && anchor() && (widget == anchor() || widget->isAncestorOf(anchor()));
}

bool FieldPopover::isOutside(const QWidget &widget) const
{
    const bool isOfTheField = anchor() && (&widget == anchor() || anchor()->isAncestorOf(&widget));
    return &widget != this && !isAncestorOf(&widget) && !isOfTheField;
}

} // namespace tembra

#include "Toolkit/PlaceholderColor.h"

#include "Toolkit/Theme.h"

#include <QApplication>
#include <QEvent>

namespace tembra {

PlaceholderColor::PlaceholderColor(QObject *parent) : QObject(parent)
{
    apply();
    qApp->installEventFilter(this);
}

bool PlaceholderColor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        apply();
    return QObject::eventFilter(watched, event);
}

/// Sets one role and leaves all others to the desktop.
void PlaceholderColor::apply()
{
    QPalette palette = QApplication::palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setCurrentColorGroup(group);
        palette.setColor(group, QPalette::PlaceholderText,
                         theme::secondaryText(palette, QPalette::Base));
    }
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText,
                     palette.color(QPalette::Disabled, QPalette::Text));
    palette.setCurrentColorGroup(QPalette::Active);
    if (palette != QApplication::palette())
        QApplication::setPalette(palette);
}

} // namespace tembra

#include "Toolkit/Icons.h"

#include "Toolkit/RecolouredIconEngine.h"

#include <QString>

static void initializeToolkitResources()
{
    // A static library's resources are linked in only where something asks for them.
    Q_INIT_RESOURCE(toolkit);
}

namespace tembra::icons {

using namespace Qt::StringLiterals;

namespace {

QString themeName(Name name)
{
    switch (name) {
    case Name::Add:
        return u"list-add"_s;
    case Name::Remove:
        return u"list-remove"_s;
    case Name::Previous:
        return u"go-previous"_s;
    case Name::Next:
        return u"go-next"_s;
    case Name::Help:
        return u"help-contextual"_s;
    case Name::Search:
        return u"edit-find"_s;
    case Name::Save:
        return u"document-save"_s;
    case Name::Undo:
        return u"edit-undo"_s;
    case Name::Redo:
        return u"edit-redo"_s;
    case Name::Calendar:
        return u"x-office-calendar"_s;
    case Name::Close:
        break;
    }
    return u"window-close"_s;
}

QString themeName(AlertIcon kind)
{
    switch (kind) {
    case AlertIcon::Information:
        return u"dialog-information"_s;
    case AlertIcon::Error:
        return u"dialog-error"_s;
    case AlertIcon::Warning:
        break;
    }
    return u"dialog-warning"_s;
}

QString fileOf(const QString &name)
{
    return u":/toolkit/icons/%1.svg"_s.arg(name);
}

QIcon colored(const QString &name)
{
    initializeToolkitResources();
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : QIcon(fileOf(name));
}

} // namespace

QIcon icon(Name name)
{
    initializeToolkitResources();
    const QString theme = themeName(name);
    return QIcon(new RecolouredIconEngine(theme, fileOf(theme)));
}

QIcon alert(AlertIcon kind)
{
    return colored(themeName(kind));
}

QIcon package()
{
    return colored(u"package-x-generic"_s);
}

QIcon application()
{
    initializeToolkitResources();
    return QIcon(fileOf(u"tembra"_s));
}

} // namespace tembra::icons

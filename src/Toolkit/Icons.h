#pragma once

#include <QIcon>

/// The icons of the program: the desktop theme's own where it has one, else those that come with
/// the program. One-coloured icons follow the text colour, live, also when disabled or selected.
namespace tembra::icons {

enum class Name { Add, Remove, Previous, Next, Help, Search, Save, Undo, Redo, Calendar, Close };

QIcon icon(Name name);

enum class AlertIcon { Information, Warning, Error };

/// The coloured icon at the side of an alert.
QIcon alert(AlertIcon kind);

/// The coloured icon of a package: a folder that is shown as one file.
QIcon package();

/// The icon of the program and of its windows.
QIcon application();

} // namespace tembra::icons

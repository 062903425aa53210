#pragma once

#include <QKeySequence>
#include <QString>

#include <functional>

class QAction;
class QMainWindow;
class QMenu;

namespace tembra {

class CoreDataInterface;

/// Appends a command to a menu of a window, which owns it.
QAction *addCommand(QMenu &menu, const QString &title, const QString &objectName,
                    const QKeySequence &shortcut, std::function<void()> perform);

/// The commands that the File menu of every window has.
QAction *addSaveCommand(QMenu &menu, CoreDataInterface &coreData);
QAction *addQuitCommand(QMenu &menu, std::function<void()> quitRequested);

/// Gives a window beside the main one its menus: File with Save, Close and Quit, and Edit.
/// @p commitEditing is called before an undo changes the journal.
void addJournalMenus(QMainWindow &window, CoreDataInterface &coreData,
                     std::function<bool()> commitEditing, std::function<void()> quitRequested);

} // namespace tembra

#pragma once

#include <functional>

class QMainWindow;

namespace tembra {

class CoreDataInterface;

/// The menus that every window beside the main one has: File with Save, Close and Quit, and Edit.
/// @p commitEditing is asked before the journal is changed by an undo.
void addJournalMenus(QMainWindow &window, CoreDataInterface &coreData,
                     std::function<bool()> commitEditing, std::function<void()> quitRequested);

} // namespace tembra

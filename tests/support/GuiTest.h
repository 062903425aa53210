#pragma once

#include "Toolkit/Alert.h"

#include <QApplication>
#include <QKeySequence>
#include <QString>
#include <QTest>

/// What tests do with widgets as a user would. Waiting ends with the condition, never by the clock.
namespace tembra::gui {

/// Whether @p window gets the keyboard. A sheet has it a moment later than it says so.
bool waitUntilActive(const QWidget &window);
/// The alert that stands on @p window as a sheet, once it has the keyboard; null if there is none.
Alert *sheetOf(const QWidget &window);
void pressAlertButton(const Alert &alert, int index);

/// The popup (menu, popover, list) that has the keyboard, once it is shown; null if none comes.
template<typename Widget = QWidget>
Widget *waitForPopup()
{
    [[maybe_unused]] const bool isShown = QTest::qWaitFor(
        [] { return qobject_cast<Widget *>(QApplication::activePopupWidget()) != nullptr; });
    return qobject_cast<Widget *>(QApplication::activePopupWidget());
}

/// Types each character, of whatever script, with a key of its own.
void typeText(QWidget &widget, const QString &text);
/// Commits a text as an input method or an emoji keyboard does.
void commitText(QWidget &widget, const QString &text);
/// Puts a text on the clipboard and presses Ctrl+V.
void pasteText(QWidget &widget, const QString &text);

/// Adds a row for each of the keys for undo and redo, in a column "keys".
void addUndoKeys();
/// Presses @p keys in a field; true if a shortcut of its window got them.
bool reachesTheWindow(QWidget &field, const QKeySequence &keys);
/// The object names of the commands in the context menu of a field, which is opened and closed.
QStringList contextMenuOf(QWidget &field);

/// What the tooltip that is shown says, character by character; empty while none is shown.
QString shownToolTip();

/// Handles events until none is pending, so that what a change has posted has happened.
void handlePendingEvents();

} // namespace tembra::gui

#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QLineEdit;
class QMenu;

namespace tembra {

class UndoManager;

/// Undo, Redo, Cut, Copy, Paste and Select All of a window.
///
/// Undo and Redo work on the journal; a one-line field, whose text is not in the journal yet, undoes
/// its typing first. The other commands work on the view that has the keyboard.
class EditCommands final : public QObject
{
    Q_OBJECT

public:
    /// @p commitEditing is called before the journal is undone, so that the text being typed is the
    /// first to be undone.
    EditCommands(UndoManager &undoManager, std::function<bool()> commitEditing, QWidget *window);

    void addUndoTo(QMenu &menu);
    void addClipboardTo(QMenu &menu);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct ClipboardCommand
    {
        QAction *action;
        const char *slot; ///< The slot of text fields and lists that performs it.
    };

    void followFocus(QWidget *focused);
    void undo();
    void redo();
    /// Undoes or redoes a step of the journal; a failure is told on a sheet.
    void reverse(void (UndoManager::*step)(), const QString &failureText);
    void updateUndo();
    void enablePossible();
    void enableAll();
    void perform(const ClipboardCommand &command);
    QLineEdit *lineEdit() const;
    bool canUndoTyping() const;
    bool canRedoTyping() const;

    UndoManager &m_undoManager;
    std::function<bool()> m_commitEditing;
    QWidget *m_window;
    QPointer<QWidget> m_focused; ///< The view with the keyboard, also while a menu has it.
    QAction *m_undo;
    QAction *m_redo;
    QList<ClipboardCommand> m_clipboard;
};

} // namespace tembra

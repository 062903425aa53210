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
/// Undo and Redo work on the journal; only in a one-line field, whose text is not in the journal
/// yet, they take back the typing first. The others work on the view that has the keyboard.
class EditCommands final : public QObject
{
    Q_OBJECT

public:
    /// @p commitEditing is asked before the journal is changed, so that what is being typed is the
    /// first thing to be taken back.
    EditCommands(UndoManager &undoManager, std::function<bool()> commitEditing, QWidget *window);

    void addUndoTo(QMenu &menu);
    void addClipboardTo(QMenu &menu);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct ClipboardCommand
    {
        QAction *action;
        const char *slot; ///< By this name text fields, and some lists, offer it.
    };

    void followFocus(QWidget *focused);
    void undo();
    void redo();
    void updateUndo();
    void prepareMenu();
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

#include "MainWindow/EditCommands.h"

#include "Foundation/Logging.h"
#include "Store/Undo/UndoManager.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Icons.h"
#include "Toolkit/WaitCursor.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>

#include <optional>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QAction *command(QObject *parent, const QString &title, QKeySequence::StandardKey shortcut,
                 const QString &objectName)
{
    auto *action = new QAction(title, parent);
    action->setShortcuts(shortcut);
    action->setObjectName(objectName);
    return action;
}

bool offers(const QWidget *widget, const char *slot)
{
    return widget && widget->metaObject()->indexOfMethod(slot) >= 0;
}

bool isWritable(const QWidget *widget)
{
    return widget && !widget->property("readOnly").toBool();
}

bool hasSelectedText(const QWidget *widget)
{
    return widget && !widget->inputMethodQuery(Qt::ImCurrentSelection).toString().isEmpty();
}

} // namespace

EditCommands::EditCommands(UndoManager &undoManager, std::function<bool()> commitEditing,
                           QWidget *window)
    : QObject(window)
    , m_undoManager(undoManager)
    , m_commitEditing(std::move(commitEditing))
    , m_window(window)
    , m_undo(command(this, tr("&Undo", "Edit menu"), QKeySequence::Undo, u"undoAction"_s))
    , m_redo(command(this, tr("&Redo", "Edit menu"), QKeySequence::Redo, u"redoAction"_s))
    , m_clipboard{{command(this, tr("Cu&t", "Edit menu"), QKeySequence::Cut, u"cutAction"_s),
                   "cut()"},
                  {command(this, tr("&Copy", "Edit menu"), QKeySequence::Copy, u"copyAction"_s),
                   "copy()"},
                  {command(this, tr("&Paste", "Edit menu"), QKeySequence::Paste, u"pasteAction"_s),
                   "paste()"},
                  {command(this, tr("Select &All", "Edit menu"), QKeySequence::SelectAll,
                           u"selectAllAction"_s),
                   "selectAll()"}}
{
    m_undo->setIcon(icons::icon(icons::Name::Undo));
    m_redo->setIcon(icons::icon(icons::Name::Redo));
    connect(m_undo, &QAction::triggered, this, &EditCommands::undo);
    connect(m_redo, &QAction::triggered, this, &EditCommands::redo);
    connect(&m_undoManager, &UndoManager::changed, this, &EditCommands::updateUndo);
    for (const ClipboardCommand &clipboard : std::as_const(m_clipboard))
        connect(clipboard.action, &QAction::triggered, this,
                [this, clipboard] { perform(clipboard); });
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { followFocus(now); });
    updateUndo();
}

void EditCommands::addUndoTo(QMenu &menu)
{
    menu.addActions({m_undo, m_redo});
    connect(&menu, &QMenu::aboutToShow, this, &EditCommands::updateUndo);
}

void EditCommands::addClipboardTo(QMenu &menu)
{
    for (const ClipboardCommand &clipboard : std::as_const(m_clipboard))
        menu.addAction(clipboard.action);
    connect(&menu, &QMenu::aboutToShow, this, &EditCommands::enablePossible);
    connect(&menu, &QMenu::aboutToHide, this, &EditCommands::enableAll);
}

QLineEdit *EditCommands::lineEdit() const
{
    return qobject_cast<QLineEdit *>(m_focused.data());
}

bool EditCommands::canUndoTyping() const
{
    return lineEdit() && lineEdit()->isUndoAvailable();
}

bool EditCommands::canRedoTyping() const
{
    return lineEdit() && lineEdit()->isRedoAvailable();
}

void EditCommands::followFocus(QWidget *focused)
{
    // A menu bar opened by a key takes the keyboard, but its commands mean the view before it.
    if (!focused || focused->window() != m_window || qobject_cast<QMenuBar *>(focused))
        return;
    if (QLineEdit *field = lineEdit()) {
        field->removeEventFilter(this);
        disconnect(field, nullptr, this, nullptr);
    }
    m_focused = focused;
    if (QLineEdit *field = lineEdit()) {
        field->installEventFilter(this);
        connect(field, &QLineEdit::textChanged, this, &EditCommands::updateUndo);
    }
    updateUndo();
}

bool EditCommands::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && object == m_focused) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool undoesNothing = key->matches(QKeySequence::Undo) && !canUndoTyping();
        const bool redoesNothing = key->matches(QKeySequence::Redo) && !canRedoTyping();
        if (undoesNothing || redoesNothing) {
            // A one-line field claims these keys even when it has nothing to take back.
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(object, event);
}

void EditCommands::undo()
{
    if (canUndoTyping())
        lineEdit()->undo();
    else
        reverse(&UndoManager::undo, tr("This could not be undone.", "Alert after Undo"));
}

void EditCommands::redo()
{
    if (canRedoTyping())
        lineEdit()->redo();
    else
        reverse(&UndoManager::redo, tr("This could not be redone.", "Alert after Redo"));
}

void EditCommands::reverse(void (UndoManager::*step)(), const QString &failureText)
{
    if (!m_commitEditing())
        return;
    std::optional<Error> error;
    {
        const WaitCursor waiting;
        const auto connection = connect(&m_undoManager, &UndoManager::failed, this,
                                        [&error](const Error &reason) { error = reason; });
        (m_undoManager.*step)();
        disconnect(connection);
    }
    if (!error)
        return;
    qCWarning(windowLog, "A step could not be undone or redone: %s",
              qUtf8Printable(error->description()));
    Alert::beginSheet({.messageText = failureText,
                       .informativeText = error->description(),
                       .buttons = {tr("OK", "Button that closes an alert")}},
                      m_window, [](int) {});
}

void EditCommands::updateUndo()
{
    m_undo->setEnabled(m_undoManager.canUndo() || canUndoTyping());
    m_redo->setEnabled(m_undoManager.canRedo() || canRedoTyping());
}

void EditCommands::enablePossible()
{
    for (const ClipboardCommand &clipboard : std::as_const(m_clipboard)) {
        bool possible = offers(m_focused, clipboard.slot);
        const QByteArrayView slot(clipboard.slot);
        if (slot == "cut()")
            possible = possible && isWritable(m_focused) && hasSelectedText(m_focused);
        else if (slot == "copy()")
            possible = possible && hasSelectedText(m_focused);
        else if (slot == "paste()")
            possible = possible && isWritable(m_focused)
                       && QApplication::clipboard()->mimeData()->hasText();
        clipboard.action->setEnabled(possible);
    }
}

void EditCommands::enableAll()
{
    // A shortcut works only while its action is enabled. Queued, for the menu hides before it triggers
    // the action that was picked.
    QMetaObject::invokeMethod(
        this,
        [this] {
            for (const ClipboardCommand &clipboard : std::as_const(m_clipboard))
                clipboard.action->setEnabled(true);
        },
        Qt::QueuedConnection);
}

void EditCommands::perform(const ClipboardCommand &command)
{
    if (!offers(m_focused, command.slot))
        return;
    const QByteArray slot(command.slot);
    QMetaObject::invokeMethod(m_focused, slot.chopped(2).constData());
}

} // namespace tembra

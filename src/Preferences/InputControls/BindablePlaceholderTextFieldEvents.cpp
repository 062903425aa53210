#include "Preferences/InputControls/BindablePlaceholderTextField.h"

#include "Preferences/InputControls/RawText.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>

#include <memory>

// What keys, focus, input methods and the clipboard do to the field.

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isUndoOrRedo(const QKeyEvent *event)
{
    const bool isControlY = event->key() == Qt::Key_Y && event->modifiers() == Qt::ControlModifier;
    return event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo) || isControlY;
}

/// Coming back from another window or from a menu is not getting the keyboard anew.
bool isReturning(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason
           || reason == Qt::MenuBarFocusReason;
}

} // namespace

bool BindablePlaceholderTextField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && isUndoOrRedo(static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return false;
    }
    return QPlainTextEdit::event(event);
}

void BindablePlaceholderTextField::focusInEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusInEvent(event);
    if (!isReturning(event->reason()))
        becomeFirstResponder(event->reason());
}

void BindablePlaceholderTextField::becomeFirstResponder(Qt::FocusReason reason)
{
    if (m_tableView && m_tableView->model())
        m_tableView->scrollTo(m_tableView->model()->index(m_rowIndex, 0));
    // A click decides itself where the insertion point goes; scrolling to the end would mislead it.
    if (reason != Qt::MouseFocusReason)
        moveCursor(QTextCursor::End);
}

bool BindablePlaceholderTextField::focusNextPrevChild(bool next)
{
    QWidget *neighbour = next ? nextKeyView() : previousKeyView();
    if (!neighbour)
        return QPlainTextEdit::focusNextPrevChild(next);
    neighbour->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void BindablePlaceholderTextField::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & ~Qt::KeypadModifier) == Qt::ShiftModifier) {
        // By default this would be a line separator (U+2028); a line break is one character here.
        QKeyEvent plain(event->type(), event->key(), Qt::NoModifier, event->text(),
                        event->isAutoRepeat());
        QPlainTextEdit::keyPressEvent(&plain);
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void BindablePlaceholderTextField::inputMethodEvent(QInputMethodEvent *event)
{
    const bool endsComposition = event->preeditString().isEmpty()
                                 || !event->commitString().isEmpty();
    if (m_changedWhileComposing && endsComposition) {
        // First what came from elsewhere, then what was composed, at the same place.
        QInputMethodEvent nothing;
        QPlainTextEdit::inputMethodEvent(&nothing);
        m_changedWhileComposing = false;
        loadFromObject();
    }
    QPlainTextEdit::inputMethodEvent(event);
}

void BindablePlaceholderTextField::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = createStandardContextMenu(event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Undo and Redo are the window's; the field's own would never do anything.
    for (QAction *action : menu->actions()) {
        if (action->objectName() == "edit-undo"_L1 || action->objectName() == "edit-redo"_L1)
            menu->removeAction(action);
    }
    if (!menu->isEmpty() && menu->actions().constFirst()->isSeparator())
        menu->removeAction(menu->actions().constFirst());
    menu->popup(event->globalPos());
}

void BindablePlaceholderTextField::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyTheme();
}

QMimeData *BindablePlaceholderTextField::createMimeDataFromSelection() const
{
    QString raw = textCursor().selectedText();
    raw.replace(QChar::ParagraphSeparator, u'\n');
    auto *mimeData = new QMimeData;
    mimeData->setText(RawText::decoded(raw));
    return mimeData;
}

void BindablePlaceholderTextField::insertFromMimeData(const QMimeData *source)
{
    if (isReadOnly() || !source->hasText())
        return;
    // Line ends of other systems are line ends; all else comes in as it is.
    QString text = source->text();
    text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
    textCursor().insertText(RawText::encoded(text));
    ensureCursorVisible();
}

} // namespace tembra

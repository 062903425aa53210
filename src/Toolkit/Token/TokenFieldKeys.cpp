#include "Toolkit/Token/TokenField.h"

#include "Toolkit/Token/TokenCompletionList.h"
#include "Toolkit/Token/TokenFieldChange.h"

#include <QInputMethodEvent>
#include <QKeyEvent>

#include <algorithm>

// What keys, input methods and the focus do to the field.

namespace tembra {

namespace {

bool isUndoOrRedo(const QKeyEvent *event)
{
    const bool isControlY = event->key() == Qt::Key_Y && event->modifiers() == Qt::ControlModifier;
    return event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo) || isControlY;
}

bool isTyped(const QKeyEvent *event)
{
    if (event->text().isEmpty() || event->modifiers() == Qt::ControlModifier
        || event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    const QChar first = event->text().front();
    return first.isPrint() || first.isHighSurrogate() || first.category() == QChar::Other_Format
           || first.category() == QChar::Other_PrivateUse;
}

bool isReturnKey(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

/// The field loses the keyboard for a while only: to another window or to a menu.
bool isForAWhile(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason
           || reason == Qt::MenuBarFocusReason;
}

} // namespace

bool TokenField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (isUndoOrRedo(key)) {
            event->ignore();
            return false;
        }
        // Escape closes the list, or gives up editing a token, before it is anyone's shortcut.
        if (key->key() == Qt::Key_Escape && (isCompletionListShown() || m_edited)) {
            event->accept();
            return true;
        }
    }
    return TokenView::event(event);
}

void TokenField::keyPressEvent(QKeyEvent *event)
{
    if (handleListKey(event) || (!isReadOnly() && handleEditingKey(event)) || handleSideKey(event))
        return;
    TokenView::keyPressEvent(event);
}

bool TokenField::handleListKey(QKeyEvent *event)
{
    if (!isCompletionListShown())
        return false;
    if (event->key() == Qt::Key_Escape) {
        hideCompletions();
        return true;
    }
    if (isReturnKey(event) && m_completions->hasHighlight()) {
        m_completions->takeHighlighted();
        return true;
    }
    return m_completions->handleKey(event);
}

bool TokenField::handleEditingKey(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        if (!restoreEditedToken())
            event->ignore();
        return true;
    }
    if (isReturnKey(event)) {
        if (!handleReturn(event))
            event->ignore();
        return true;
    }
    if (event->key() == Qt::Key_F2 && selectedToken() >= 0) {
        editToken(selectedToken());
        return true;
    }
    if (handleDeletion(event))
        return true;
    if (!isTyped(event))
        return false;
    typeText(event->text());
    return true;
}

/// False where there is nothing to end: then the key is the window's.
bool TokenField::handleReturn(const QKeyEvent *event)
{
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    hideCompletions();
    const bool hasText = std::ranges::any_of(m_known, [](const TokenText::Piece &piece) {
        return !piece.object;
    });
    if (hasText) {
        tokenizeAll();
        return true;
    }
    if (!m_isEditing)
        return false;
    endEditing();
    return true;
}

/// Deleting towards a token selects it first; the next time it goes with the selection.
bool TokenField::handleDeletion(const QKeyEvent *event)
{
    const bool isBackward = event->key() == Qt::Key_Backspace;
    if ((!isBackward && event->key() != Qt::Key_Delete) || textCursor().hasSelection()
        || isComposing())
        return false;
    const int position = textCursor().position();
    const int token = isBackward ? position - 1 : position;
    if (!tokens()->objectAt(token))
        return false;
    select(isBackward ? token + 1 : token, isBackward ? token : token + 1);
    return true;
}

/// An arrow without Shift goes to that end of the selection.
bool TokenField::handleSideKey(const QKeyEvent *event)
{
    const bool isSideKey = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (!isSideKey || !textCursor().hasSelection()
        || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const bool isForward = (event->key() == Qt::Key_Right) != isRightToLeft();
    QTextCursor cursor = textCursor();
    cursor.setPosition(isForward ? cursor.selectionEnd() : cursor.selectionStart());
    setTextCursor(cursor);
    return true;
}

/// What is composed is no text yet; what comes of it is typed.
void TokenField::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) {
        event->ignore();
        return;
    }
    const QString text = event->commitString();
    if (!event->preeditString().isEmpty())
        hideCompletions();
    if (text.isEmpty() && event->replacementLength() == 0) {
        TokenView::inputMethodEvent(event);
        return;
    }
    const Change change(*this);
    // The composition ends, what it replaces goes, the text comes; a next one may begin.
    QInputMethodEvent ending;
    TokenView::inputMethodEvent(&ending);
    if (event->replacementLength() > 0) {
        const int start = textCursor().position() + event->replacementStart();
        select(start, start + event->replacementLength());
    }
    typeText(text);
    if (!event->preeditString().isEmpty()) {
        QInputMethodEvent next(event->preeditString(), event->attributes());
        TokenView::inputMethodEvent(&next);
    }
}

bool TokenField::focusNextPrevChild(bool next)
{
    if (next && m_completions->hasHighlight()) {
        m_completions->takeHighlighted();
        return true;
    }
    return TokenView::focusNextPrevChild(next);
}

void TokenField::focusInEvent(QFocusEvent *event)
{
    TokenView::focusInEvent(event);
    update();
    if (!isForAWhile(event->reason()) && !isReadOnly())
        beginEditing();
}

void TokenField::focusOutEvent(QFocusEvent *event)
{
    TokenView::focusOutEvent(event);
    update();
    hideCompletions();
    if (!isForAWhile(event->reason()))
        endEditing();
}

void TokenField::hideEvent(QHideEvent *event)
{
    TokenView::hideEvent(event);
    hideCompletions();
    if (!event->spontaneous())
        endEditing();
}

void TokenField::resizeEvent(QResizeEvent *event)
{
    TokenView::resizeEvent(event);
    placeCompletions();
}

void TokenField::scrollContentsBy(int dx, int dy)
{
    TokenView::scrollContentsBy(dx, dy);
    placeCompletions();
}

} // namespace tembra

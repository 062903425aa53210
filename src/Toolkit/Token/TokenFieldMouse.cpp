#include "Toolkit/Token/TokenField.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Token/TokenFieldChange.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>

#include <algorithm>

// Clicks, menus, the clipboard and dragging.

namespace tembra {

using namespace Qt::StringLiterals;

void TokenField::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    const bool isPlain = event->button() == Qt::LeftButton
                         && !(event->modifiers() & Qt::ShiftModifier);
    const int token = tokenAt(point);
    hideCompletions();
    if (isPlain && isInSelection(point)) {
        m_pressed = point;
        return;
    }
    if (token >= 0 && event->button() == Qt::LeftButton) {
        pressToken(token, !isPlain);
        m_pressed = point;
        return;
    }
    TokenView::mousePressEvent(event);
}

void TokenField::pressToken(int position, bool extends)
{
    const int anchor = textCursor().anchor();
    if (!extends)
        select(position, position + 1);
    else if (position >= anchor)
        select(anchor, position + 1);
    else
        // What was selected to the right of the anchor's token stays selected.
        select(std::max(anchor, textCursor().selectionEnd() == anchor + 1 ? anchor + 1 : anchor),
               position);
}

void TokenField::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    if (event->buttons() == Qt::NoButton) {
        setHoveredToken(tokenAt(point));
    } else if (m_pressed) {
        if ((point - *m_pressed).manhattanLength() >= QApplication::startDragDistance())
            dragSelection();
        return;
    }
    TokenView::mouseMoveEvent(event);
}

void TokenField::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed || event->button() != Qt::LeftButton) {
        TokenView::mouseReleaseEvent(event);
        return;
    }
    // A click after all: of what was selected, only what is below the pointer stays so.
    const QPoint point = *m_pressed;
    m_pressed.reset();
    if (event->modifiers() & Qt::ShiftModifier)
        return;
    if (const int token = tokenAt(point); token >= 0)
        select(token, token + 1);
    else
        setTextCursor(cursorForPosition(point));
}

void TokenField::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int token = tokenAt(event->position().toPoint());
    if (token < 0 || event->button() != Qt::LeftButton) {
        TokenView::mouseDoubleClickEvent(event);
        return;
    }
    m_pressed.reset();
    if (!isReadOnly())
        editToken(token);
}

/// A token with a menu of its own shows that; everything else the usual commands for text.
void TokenField::contextMenuEvent(QContextMenuEvent *event)
{
    hideCompletions();
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const int token = isByKey ? selectedToken() : tokenAt(event->pos());
    const Object object = tokens()->objectAt(token);
    if (object && !isByKey && !isInSelection(event->pos()))
        select(token, token + 1);
    if (object && hasMenuForRepresentedObject(object)) {
        if (QMenu *menu = menuForRepresentedObject(object)) {
            const QRect rect = tokenRect(tokens()->tokensBefore(token));
            menu->popup(isByKey ? viewport()->mapToGlobal(rect.bottomLeft()) : event->globalPos());
            return;
        }
    }
    auto *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Undo and Redo are the window's; the field's own would never do anything.
    for (QAction *action : menu->actions()) {
        if (action->objectName() == "edit-undo"_L1 || action->objectName() == "edit-redo"_L1)
            menu->removeAction(action);
    }
    if (!menu->isEmpty() && menu->actions().constFirst()->isSeparator())
        menu->removeAction(menu->actions().constFirst());
    const QPoint caret = viewport()->mapToGlobal(cursorRect().bottomLeft());
    menu->popup(isByKey ? caret : event->globalPos());
}

QMimeData *TokenField::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    QList<Object> objects;
    QStringList texts;
    for (const TokenText::Piece &piece :
         tokens()->pieces(cursor.selectionStart(), cursor.selectionEnd())) {
        if (piece.object)
            objects.append(piece.object);
        texts.append(piece.object ? editingStringForRepresentedObject(piece.object) : piece.text);
    }
    auto *mimeData = new QMimeData;
    mimeData->setText(texts.join(u", "_s));
    if (!objects.isEmpty())
        writeRepresentedObjects(objects, *mimeData);
    return mimeData;
}

/// Files and pictures are no tokens, though they may bring their names along.
bool TokenField::canInsertFromMimeData(const QMimeData *source) const
{
    return canReadFromPasteboard(*source)
           || (source->hasText() && !source->hasUrls() && !source->hasImage());
}

void TokenField::insertFromMimeData(const QMimeData *source)
{
    if (!isReadOnly())
        pasteData(*source);
}

void TokenField::dragSelection()
{
    const QPoint point = *m_pressed;
    m_pressed.reset();
    m_dragged = textCursor();
    // Not the field's own: it may be gone before the pointer lets go.
    auto *drag = new QDrag(QCoreApplication::instance());
    drag->setMimeData(createMimeDataFromSelection());
    if (const int token = tokenAt(point); token >= 0) {
        const QRect rect = tokenRect(tokens()->tokensBefore(token));
        drag->setPixmap(viewport()->grab(rect));
        drag->setHotSpot(point - rect.topLeft());
    }
    const QPointer<TokenField> self(this);
    const Qt::DropActions actions = isReadOnly() ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = drag->exec(actions, Qt::CopyAction);
    if (!self)
        return;
    // Within the field the drop has moved it already.
    if (done == Qt::MoveAction && m_dragged.hasSelection()) {
        const Change change(*this);
        m_dragged.removeSelectedText();
    }
    m_dragged = QTextCursor();
}

void TokenField::dropEvent(QDropEvent *event)
{
    const int position = cursorForPosition(event->position().toPoint()).position();
    // Ends what the text edit shows while something is dragged over it.
    QDragLeaveEvent leave;
    TokenView::dragLeaveEvent(&leave);
    bool isDropped = false;
    if (isReadOnly()) {
        // Nothing can be dropped.
    } else if (!m_dragged.isNull()) {
        isDropped = m_dragged.hasSelection();
        if (isDropped)
            moveDragged(position);
        event->setDropAction(Qt::MoveAction);
    } else {
        QTextCursor cursor = textCursor();
        cursor.setPosition(position);
        setTextCursor(cursor);
        isDropped = pasteData(*event->mimeData());
    }
    event->setAccepted(isDropped);
    if (!isDropped)
        event->setDropAction(Qt::IgnoreAction);
    if (!hasFocus())
        endEditing();
}

/// Moves what is dragged to another place of the field.
void TokenField::moveDragged(int position)
{
    const int from = m_dragged.selectionStart(), to = m_dragged.selectionEnd();
    QTextCursor dragged = m_dragged;
    m_dragged = QTextCursor();
    if (position >= from && position <= to)
        return;
    const Change change(*this);
    const QList<TokenText::Piece> pieces = tokens()->pieces(from, to);
    QTextCursor target(document());
    target.setPosition(position);
    dragged.removeSelectedText();
    insertPieces(target, pieces);
}

} // namespace tembra

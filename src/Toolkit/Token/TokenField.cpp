#include "Toolkit/Token/TokenField.h"

#include "Toolkit/FieldEvents.h"
#include "Toolkit/Token/TokenCompletion.h"
#include "Toolkit/Token/TokenCompletionList.h"
#include "Toolkit/Token/TokenFieldAccessible.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QMenu>
#include <QMimeData>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isTyped(const QKeyEvent &event)
{
    if (event.text().isEmpty() || event.modifiers() == Qt::ControlModifier
        || event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    const QChar first = event.text().front();
    return first.isPrint() || first.isHighSurrogate() || first.category() == QChar::Other_Format
           || first.category() == QChar::Other_PrivateUse;
}

bool isReturnKey(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

TokenField::TokenField(TokenFieldDelegate &delegate, QWidget *parent)
    : TokenView(
        [&delegate](const Object &object) {
            return delegate.displayStringForRepresentedObject(object);
        },
        parent)
    , m_delegate(delegate)
    , m_editor(std::make_unique<TokenEditor>(tokenText(), delegate))
    , m_completion(std::make_unique<TokenCompletion>())
    , m_completionList(new TokenCompletionList(*m_completion, this))
    , m_dragAndDrop(*this, *m_editor)
{
    TokenFieldAccessible::install();
    connectEditor();
    connectCompletion();
}

TokenField::~TokenField()
{
    delete m_completionList;
}

void TokenField::connectEditor()
{
    connect(m_editor.get(), &TokenEditor::contentChanged, this, &TokenField::contentChanged);
    connect(m_editor.get(), &TokenEditor::cursorChanged, this, [this] {
        if (!m_editor->cursor().isCopyOf(textCursor()))
            setTextCursor(m_editor->cursor());
    });
    connect(this, &QTextEdit::cursorPositionChanged, this, &TokenField::followTextCursor);
    connect(this, &QTextEdit::selectionChanged, this, &TokenField::followTextCursor);
}

void TokenField::connectCompletion()
{
    connect(m_completion.get(), &TokenCompletion::taken, this, &TokenField::takeCompletion);
    connect(m_completion.get(), &TokenCompletion::openChanged, this,
            &TokenField::completionListShown);
}

// The content

QList<TokenField::Object> TokenField::objectValue() const
{
    return m_editor->text().objects();
}

void TokenField::setObjectValue(const QList<Object> &objects)
{
    if (isComposing())
        QGuiApplication::inputMethod()->reset();
    m_completion->close();
    m_editor->setObjects(objects);
    refreshTokens();
}

void TokenField::appendObject(const Object &object)
{
    if (!object)
        return;
    const TokenEditor::EditBlock block(*m_editor, TokenEditor::Author::Program);
    if (hasFocus())
        beginEditing();
    m_editor->appendObject(object);
    restorePreedit();
}

void TokenField::removeObject(const Object &object)
{
    const TokenEditor::EditBlock block(*m_editor, TokenEditor::Author::Program);
    m_editor->removeObject(object);
    restorePreedit();
}

/// What an input method is composing stays at the caret when a token comes before it.
void TokenField::restorePreedit()
{
    QTextLayout *layout = document()->firstBlock().layout();
    if (layout->preeditAreaText().isEmpty()
        || layout->preeditAreaPosition() == textCursor().position())
        return;
    layout->setPreeditArea(textCursor().position(), layout->preeditAreaText());
    layOutTokens();
}

void TokenField::refreshTokens()
{
    if (!m_editor->refreshTitles())
        return;
    const TokenEditor::EditBlock block(*m_editor, TokenEditor::Author::Program);
    layOutTokens();
    announceTokens();
}

void TokenField::contentChanged(TokenEditor::Author author, bool hasOtherTokens)
{
    const bool isByUser = author == TokenEditor::Author::User;
    setHoveredToken(-1);
    fitSize();
    if (isByUser) {
        ensureCursorVisible();
        beginEditing();
    }
    if (hasOtherTokens) {
        announceTokens();
        Q_EMIT tokensChanged();
    }
    if (isByUser)
        Q_EMIT textDidChange();
    if (isByUser || m_completion->isOpen())
        complete();
}

/// The text edit moves its cursor by itself for most keys, and for the mouse.
void TokenField::followTextCursor()
{
    if (!m_editor->cursor().isCopyOf(textCursor()))
        m_editor->setCursor(textCursor());
    closeStaleCompletion();
}

void TokenField::announceTokens()
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent value(this, TokenFieldAccessible::textOf(*this));
    QAccessible::updateAccessibility(&value);
    QAccessibleEvent description(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&description);
}

// Editing

void TokenField::beginEditing()
{
    if (m_isEditing)
        return;
    m_isEditing = true;
    Q_EMIT didBeginEditing();
}

void TokenField::endEditing()
{
    if (isComposing() && hasFocus())
        QGuiApplication::inputMethod()->commit();
    takeWholeName();
    m_completion->close();
    m_editor->tokenizeAll();
    if (!m_isEditing)
        return;
    m_isEditing = false;
    Q_EMIT didEndEditing();
}

void TokenField::focusInEvent(QFocusEvent *event)
{
    TokenView::focusInEvent(event);
    update();
    if (!isTemporaryFocusChange(event->reason()) && !isReadOnly())
        beginEditing();
}

void TokenField::focusOutEvent(QFocusEvent *event)
{
    TokenView::focusOutEvent(event);
    update();
    if (isTemporaryFocusChange(event->reason()))
        m_completion->close();
    else
        endEditing();
}

bool TokenField::focusNextPrevChild(bool next)
{
    return (next && m_completion->takeHighlighted()) || TokenView::focusNextPrevChild(next);
}

void TokenField::hideEvent(QHideEvent *event)
{
    TokenView::hideEvent(event);
    if (event->spontaneous())
        m_completion->close();
    else
        endEditing();
}

// Completion

bool TokenField::isCompletionListShown() const
{
    return m_completion->isOpen();
}

void TokenField::setHighlightsFirstCompletion(bool highlightsFirst)
{
    m_completion->setHighlightsFirst(highlightsFirst);
}

/// Takes the highlighted completion if the half-typed text is its whole name; false if it is not.
bool TokenField::takeWholeName()
{
    const int row = m_completion->highlightedRow();
    return row >= 0 && m_delegate.isWholeName(halfTypedName(), m_completion->entry(row))
           && m_completion->takeHighlighted();
}

/// The half-typed text around the caret, without the blanks before it.
QString TokenField::halfTypedName() const
{
    const QString text = m_editor->halfTypedText().text;
    const auto first = std::ranges::find_if_not(text, [](QChar c) { return c.isSpace(); });
    return text.sliced(first - text.begin());
}

/// Offers what completes the text around the caret, after a change of the content.
void TokenField::complete()
{
    const QString substring = halfTypedName();
    const int start = m_editor->halfTypedText().start;
    const bool isOffering = !substring.isEmpty() && hasFocus() && !isReadOnly() && !isComposing()
                            && !textCursor().hasSelection();
    QStringList entries;
    if (isOffering)
        entries = m_delegate.completionsForSubstring(substring,
                                                     m_editor->text().tokensBefore(start));
    m_completion->offer(entries, start);
    placeCompletionList();
}

void TokenField::placeCompletionList()
{
    if (!m_completion->isOpen())
        return;
    QTextCursor start(document());
    start.setPosition(m_completion->textStart());
    QRect anchor = cursorRect(start);
    // A text that begins out of sight is completed at the edge.
    anchor.moveLeft(std::clamp(anchor.left(), 0, viewport()->width()));
    const QRect caret = cursorRect();
    anchor.setTop(caret.top());
    anchor.setBottom(caret.bottom());
    m_completionList->showBeside({viewport()->mapToGlobal(anchor.topLeft()), anchor.size()});
}

/// Closes the list when the caret leaves the text it is for.
void TokenField::closeStaleCompletion()
{
    if (!m_completion->isOpen() || m_editor->isInEditBlock())
        return;
    const TokenText::Fragment text = m_editor->halfTypedText();
    if (text.length == 0 || text.start != m_completion->textStart() || textCursor().hasSelection())
        m_completion->close();
}

void TokenField::takeCompletion(const QString &entry, int textStart)
{
    m_editor->replaceText(textStart, entry);
}

void TokenField::resizeEvent(QResizeEvent *event)
{
    TokenView::resizeEvent(event);
    placeCompletionList();
}

void TokenField::scrollContentsBy(int dx, int dy)
{
    TokenView::scrollContentsBy(dx, dy);
    placeCompletionList();
}

// Keys and input methods

bool TokenField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto &key = *static_cast<QKeyEvent *>(event);
        if (isUndoOrRedo(key)) {
            event->ignore();
            return false;
        }
        // Escape closes the list, or ends the editing of a token, before it is anyone's shortcut.
        if (key.key() == Qt::Key_Escape && (m_completion->isOpen() || m_editor->isEditingToken())) {
            event->accept();
            return true;
        }
    }
    return TokenView::event(event);
}

void TokenField::keyPressEvent(QKeyEvent *event)
{
    if (handleCompletionKey(*event) || (!isReadOnly() && handleEditingKey(*event))
        || handleSideKey(*event))
        return;
    TokenView::keyPressEvent(event);
}

bool TokenField::handleCompletionKey(const QKeyEvent &event)
{
    if (!m_completion->isOpen())
        return false;
    if (event.key() == Qt::Key_Escape) {
        m_completion->close();
        return true;
    }
    return (isReturnKey(event) && m_completion->takeHighlighted())
           || m_completion->moveHighlight(event, m_completionList->rowsPerPage());
}

bool TokenField::handleEditingKey(QKeyEvent &event)
{
    if (event.key() == Qt::Key_Escape) {
        event.setAccepted(m_editor->cancelTokenEditing());
        return true;
    }
    if (isReturnKey(event)) {
        event.setAccepted(handleReturn(event));
        return true;
    }
    if (event.key() == Qt::Key_F2 && m_editor->selectedToken() >= 0) {
        m_editor->editToken(m_editor->selectedToken());
        return true;
    }
    if (handleDeletion(event))
        return true;
    if (!isTyped(event))
        return false;
    typeText(event.text());
    return true;
}

/// A comma behind the whole name of the highlighted completion takes that.
void TokenField::typeText(const QString &text)
{
    const bool isAtEnd = textCursor().position() == m_editor->halfTypedText().end();
    if (text != ","_L1 || !isAtEnd || !takeWholeName())
        m_editor->typeText(text);
}

/// False where there is nothing to end: then the key is the window's.
bool TokenField::handleReturn(const QKeyEvent &event)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    m_completion->close();
    if (m_editor->hasHalfTypedText()) {
        m_editor->tokenizeAll();
        return true;
    }
    if (!m_isEditing)
        return false;
    endEditing();
    return true;
}

/// Deleting towards a token selects it first; the next time it is deleted with the selection.
bool TokenField::handleDeletion(const QKeyEvent &event)
{
    const bool isBackward = event.key() == Qt::Key_Backspace;
    if ((!isBackward && event.key() != Qt::Key_Delete) || isComposing())
        return false;
    return m_editor->selectAdjacentToken(isBackward ? TokenEditor::Direction::Backward
                                                    : TokenEditor::Direction::Forward);
}

/// An arrow without Shift goes to that end of the selection.
bool TokenField::handleSideKey(const QKeyEvent &event)
{
    const bool isSideKey = event.key() == Qt::Key_Left || event.key() == Qt::Key_Right;
    const QTextCursor cursor = textCursor();
    if (!isSideKey || !cursor.hasSelection()
        || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const bool isForward = (event.key() == Qt::Key_Right) != isRightToLeft();
    const int end = isForward ? cursor.selectionEnd() : cursor.selectionStart();
    m_editor->select(end, end);
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
        m_completion->close();
    if (text.isEmpty() && event->replacementLength() == 0) {
        TokenView::inputMethodEvent(event);
        return;
    }
    const TokenEditor::EditBlock block(*m_editor);
    // The composition ends, what it replaces goes, the text comes; a next one may begin.
    QInputMethodEvent ending;
    TokenView::inputMethodEvent(&ending);
    if (event->replacementLength() > 0) {
        const int start = textCursor().position() + event->replacementStart();
        m_editor->select(start, start + event->replacementLength());
    }
    typeText(text);
    if (!event->preeditString().isEmpty()) {
        QInputMethodEvent next(event->preeditString(), event->attributes());
        TokenView::inputMethodEvent(&next);
    }
}

// Mouse, menus and the clipboard

void TokenField::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    const bool isPlain = event->button() == Qt::LeftButton
                         && !(event->modifiers() & Qt::ShiftModifier);
    const int token = tokenAt(point);
    m_completion->close();
    if (isPlain && isInSelection(point)) {
        m_dragAndDrop.press(point);
    } else if (token >= 0 && event->button() == Qt::LeftButton) {
        pressToken(token, !isPlain);
        m_dragAndDrop.press(point);
    } else {
        TokenView::mousePressEvent(event);
    }
}

void TokenField::pressToken(int position, bool extends)
{
    const int anchor = textCursor().anchor();
    if (!extends)
        m_editor->select(position, position + 1);
    else if (position >= anchor)
        m_editor->select(anchor, position + 1);
    else // What was selected to the right of the anchor's token stays selected.
        m_editor->select(textCursor().selectionEnd() == anchor + 1 ? anchor + 1 : anchor, position);
}

void TokenField::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    if (event->buttons() == Qt::NoButton) {
        setHoveredToken(tokenAt(point));
    } else if (m_dragAndDrop.isPressed()) {
        m_dragAndDrop.move(point);
        return;
    }
    TokenView::mouseMoveEvent(event);
}

void TokenField::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_dragAndDrop.isPressed() || event->button() != Qt::LeftButton) {
        TokenView::mouseReleaseEvent(event);
        return;
    }
    // A click after all: of what was selected, only what is below the pointer stays so.
    const QPoint point = *m_dragAndDrop.release();
    if (event->modifiers() & Qt::ShiftModifier)
        return;
    if (const int token = tokenAt(point); token >= 0)
        m_editor->select(token, token + 1);
    else
        m_editor->setCursor(cursorForPosition(point));
}

void TokenField::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int token = tokenAt(event->position().toPoint());
    if (token < 0 || event->button() != Qt::LeftButton) {
        TokenView::mouseDoubleClickEvent(event);
        return;
    }
    m_dragAndDrop.cancelPress();
    if (!isReadOnly())
        m_editor->editToken(token);
}

void TokenField::contextMenuEvent(QContextMenuEvent *event)
{
    m_completion->close();
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const int token = isByKey ? m_editor->selectedToken() : tokenAt(event->pos());
    if (token >= 0 && !isByKey && !isInSelection(event->pos()))
        m_editor->select(token, token + 1);
    QMenu *menu = menuOfToken(token);
    const QRect place = menu ? tokenRect(m_editor->text().tokensBefore(token)) : cursorRect();
    if (!menu)
        menu = standardMenu();
    menu->popup(isByKey ? viewport()->mapToGlobal(place.bottomLeft()) : event->globalPos());
}

/// The menu that the delegate has for the token there; null if it has none.
QMenu *TokenField::menuOfToken(int position)
{
    const Object object = m_editor->text().objectAt(position);
    const bool hasMenu = object && m_delegate.hasMenuForRepresentedObject(object);
    return hasMenu ? m_delegate.menuForRepresentedObject(object) : nullptr;
}

/// The usual commands for text but Undo and Redo, which are the window's.
QMenu *TokenField::standardMenu()
{
    auto *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction *action : menu->actions()) {
        if (action->objectName() == "edit-undo"_L1 || action->objectName() == "edit-redo"_L1)
            menu->removeAction(action);
    }
    if (!menu->isEmpty() && menu->actions().constFirst()->isSeparator())
        menu->removeAction(menu->actions().constFirst());
    return menu;
}

QMimeData *TokenField::createMimeDataFromSelection() const
{
    return m_editor->selectionData().release();
}

bool TokenField::canInsertFromMimeData(const QMimeData *source) const
{
    return m_editor->canPaste(*source);
}

void TokenField::insertFromMimeData(const QMimeData *source)
{
    if (!isReadOnly())
        m_editor->paste(*source);
}

void TokenField::dropEvent(QDropEvent *event)
{
    // Ends what the text edit shows while something is dragged over it.
    QDragLeaveEvent leave;
    TokenView::dragLeaveEvent(&leave);
    m_dragAndDrop.drop(*event);
    if (!hasFocus())
        endEditing();
}

} // namespace tembra

#include "Toolkit/Token/TokenFieldAccessible.h"

#include "Toolkit/Token/TokenField.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr auto titleSeparator = ", "_L1;

QAccessibleInterface *accessibleTokenField(const QString &className, QObject *object)
{
    auto *field = className == "tembra::TokenField"_L1 ? qobject_cast<TokenField *>(object)
                                                       : nullptr;
    return field ? new TokenFieldAccessible(field) : nullptr;
}

} // namespace

TokenFieldAccessible::TokenFieldAccessible(TokenField *field)
    : QAccessibleWidget(field, QAccessible::EditableText)
{
}

void TokenFieldAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(accessibleTokenField);
        return true;
    }();
    Q_UNUSED(installed)
}

TokenField *TokenFieldAccessible::field() const
{
    return static_cast<TokenField *>(widget());
}

/// The accessible text of a fragment.
QString TokenFieldAccessible::textOf(const TokenField &field, const TokenText::Fragment &fragment)
{
    return fragment.object
               ? field.editor().delegate().displayStringForRepresentedObject(fragment.object)
               : fragment.text;
}

QString TokenFieldAccessible::textOf(const TokenField &field)
{
    QStringList texts;
    for (const TokenText::Fragment &fragment : field.editor().text().fragments())
        texts.append(textOf(field, fragment));
    return texts.join(titleSeparator);
}

/// Maps a position in the document to an offset in the accessible text. Between two fragments that
/// is the end of the one, or the start of the other.
int TokenFieldAccessible::offsetOf(int position, Side side) const
{
    qsizetype offset = 0;
    for (const TokenText::Fragment &fragment : field()->editor().text().fragments()) {
        const qsizetype length = textOf(*field(), fragment).size();
        const bool isEnd = position == fragment.end() && side == Side::End;
        if (position < fragment.end() || isEnd) {
            const qsizetype inside = fragment.object ? (isEnd ? length : 0)
                                                     : position - fragment.start;
            return int(offset + inside);
        }
        offset += length + titleSeparator.size();
    }
    return characterCount();
}

int TokenFieldAccessible::positionOf(int offset) const
{
    qsizetype start = 0;
    for (const TokenText::Fragment &fragment : field()->editor().text().fragments()) {
        const qsizetype length = textOf(*field(), fragment).size();
        if (offset <= start + length) {
            if (fragment.object)
                return offset <= start ? fragment.start : fragment.end();
            return fragment.start + std::max(0, int(offset - start));
        }
        start += length + titleSeparator.size();
    }
    return field()->document()->characterCount() - 1;
}

QAccessible::State TokenFieldAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.editable = !field()->isReadOnly();
    state.readOnly = field()->isReadOnly();
    state.selectableText = true;
    state.supportsAutoCompletion = true;
    return state;
}

QString TokenFieldAccessible::text(QAccessible::Text part) const
{
    const QString own = QAccessibleWidget::text(part);
    const bool isContent = part == QAccessible::Value
                           || (part == QAccessible::Description && own.isEmpty());
    return isContent ? textOf(*field()) : own;
}

void TokenFieldAccessible::setText(QAccessible::Text part, const QString &text)
{
    if (part == QAccessible::Value)
        replaceText(0, characterCount(), text);
    else
        QAccessibleWidget::setText(part, text);
}

void *TokenFieldAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    if (type == QAccessible::EditableTextInterface)
        return static_cast<QAccessibleEditableTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

void TokenFieldAccessible::selection(int index, int *start, int *end) const
{
    const QTextCursor cursor = field()->textCursor();
    const bool exists = index == 0 && cursor.hasSelection();
    *start = exists ? offsetOf(cursor.selectionStart(), Side::Start) : 0;
    *end = exists ? offsetOf(cursor.selectionEnd(), Side::End) : 0;
}

int TokenFieldAccessible::selectionCount() const
{
    return field()->textCursor().hasSelection() ? 1 : 0;
}

void TokenFieldAccessible::addSelection(int start, int end)
{
    setSelection(0, start, end);
}

void TokenFieldAccessible::removeSelection(int index)
{
    if (index == 0)
        setCursorPosition(cursorPosition());
}

void TokenFieldAccessible::setSelection(int index, int start, int end)
{
    if (index == 0)
        field()->editor().select(positionOf(start), positionOf(end));
}

int TokenFieldAccessible::cursorPosition() const
{
    return offsetOf(field()->textCursor().position(), Side::End);
}

void TokenFieldAccessible::setCursorPosition(int offset)
{
    field()->editor().select(positionOf(offset), positionOf(offset));
}

QString TokenFieldAccessible::text(int start, int end) const
{
    const QString all = textOf(*field());
    return all.mid(start, end < 0 ? -1 : end - start);
}

int TokenFieldAccessible::characterCount() const
{
    return int(textOf(*field()).size());
}

QRect TokenFieldAccessible::characterRect(int offset) const
{
    const int position = positionOf(offset);
    const bool isToken = field()->editor().text().objectAt(position) != nullptr;
    QTextCursor cursor(field()->document());
    cursor.setPosition(position);
    const QRect rect = isToken ? field()->tokenRect(field()->editor().text().tokensBefore(position))
                               : field()->cursorRect(cursor);
    return {field()->viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

int TokenFieldAccessible::offsetAtPoint(const QPoint &point) const
{
    const QPoint inViewport = field()->viewport()->mapFromGlobal(point);
    const int token = field()->tokenAt(inViewport);
    return token >= 0 ? offsetOf(token, Side::Start)
                      : offsetOf(field()->cursorForPosition(inViewport).position(), Side::End);
}

void TokenFieldAccessible::scrollToSubstring(int start, int)
{
    setCursorPosition(start);
    field()->ensureCursorVisible();
}

QString TokenFieldAccessible::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

void TokenFieldAccessible::deleteText(int start, int end)
{
    replaceText(start, end, {});
}

void TokenFieldAccessible::insertText(int offset, const QString &text)
{
    replaceText(offset, offset, text);
}

/// As if it were selected and typed over.
void TokenFieldAccessible::replaceText(int start, int end, const QString &text)
{
    if (field()->isReadOnly())
        return;
    setSelection(0, start, end);
    field()->editor().typeText(text);
}

} // namespace tembra

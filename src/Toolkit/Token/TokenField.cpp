#include "Toolkit/Token/TokenField.h"

#include "Toolkit/Token/TokenCompletionList.h"
#include "Toolkit/Token/TokenFieldAccessible.h"
#include "Toolkit/Token/TokenFieldChange.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QInputMethod>
#include <QMenu>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace tembra {

TokenField::TokenField(QWidget *parent)
    : TokenView(parent)
    , m_completions(new TokenCompletionList(this))
{
    TokenFieldAccessible::install();
    // What the text edit does by itself (cutting, deleting) is a change too.
    connect(document(), &QTextDocument::contentsChanged, this, [this] {
        if (m_changeDepth == 0)
            tellChanges(Author::User);
    });
    connect(this, &QTextEdit::cursorPositionChanged, this, &TokenField::hideStaleCompletions);
    connect(this, &QTextEdit::selectionChanged, this, &TokenField::hideStaleCompletions);
    connect(m_completions, &TokenCompletionList::taken, this, &TokenField::takeCompletion);
    connect(m_completions, &TokenCompletionList::shown, this, [this](bool shown) {
        if (!shown)
            m_completedFrom = -1;
        Q_EMIT completionListShown(shown);
    });
}

TokenField::~TokenField()
{
    // From here on nothing is told.
    ++m_changeDepth;
    disconnect(m_completions, nullptr, this, nullptr);
}

QList<TokenField::Object> TokenField::objectValue() const
{
    return tokens()->objects();
}

void TokenField::setObjectValue(const QList<Object> &objects)
{
    QList<Object> wanted = objects;
    wanted.removeAll(nullptr);
    m_edited.reset();
    if (isComposing())
        QGuiApplication::inputMethod()->reset();
    const QList<TokenText::Piece> pieces = tokens()->pieces();
    const bool isSame = pieces.size() == wanted.size()
                        && std::ranges::equal(pieces, wanted, {}, &TokenText::Piece::object);
    if (isSame) {
        refreshTokens();
        return;
    }
    const Change change(*this, Author::Program);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    tokens()->insert(cursor, wanted);
    setTextCursor(cursor);
    hideCompletions();
}

void TokenField::appendObject(const Object &object)
{
    if (!object)
        return;
    const Change change(*this, Author::Program);
    if (hasFocus())
        beginEditing();
    const QTextCursor before = textCursor();
    QTextCursor cursor(document());
    cursor.setPosition(tokens()->endOfLastToken());
    const int place = cursor.position();
    tokens()->insert(cursor, QList<Object>{object});
    // A selection that ends here does not grow.
    if (before.hasSelection() && before.selectionEnd() == place + 1 && place > 0) {
        const bool isForward = before.position() > before.anchor();
        select(isForward ? before.anchor() : place, isForward ? place : before.position());
    }
    restorePreedit();
}

void TokenField::removeObject(const Object &object)
{
    const Change change(*this, Author::Program);
    const QList<TokenText::Piece> pieces = tokens()->pieces();
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
        if (!object || piece->object != object)
            continue;
        QTextCursor place(document());
        place.setPosition(piece->start);
        place.setPosition(piece->end(), QTextCursor::KeepAnchor);
        place.removeSelectedText();
    }
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
    if (!tokens()->refreshTitles())
        return;
    const Change change(*this, Author::Program);
    layOutTokens();
    announceTokens();
}

QString TokenField::editedSubstring() const
{
    return tokens()->textAround(textCursor().position()).text;
}

bool TokenField::isCompletionListShown() const
{
    return m_completions->isVisible();
}

void TokenField::setHighlightsFirstCompletion(bool highlightsFirst)
{
    m_completions->setHighlightsFirst(highlightsFirst);
}

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
    hideCompletions();
    tokenizeAll();
    if (!m_isEditing)
        return;
    m_isEditing = false;
    Q_EMIT didEndEditing();
}

/// Compares with what was told last; the document itself tells changes that are none.
void TokenField::tellChanges(Author author)
{
    const QList<TokenText::Piece> before = m_known;
    m_known = tokens()->pieces();
    if (m_known == before)
        return;
    tokens()->forgetRemoved();
    setHoveredToken(-1);
    fitSize();
    const auto objectsOf = [](const QList<TokenText::Piece> &pieces) {
        QList<Object> objects;
        for (const TokenText::Piece &piece : pieces) {
            if (piece.object)
                objects.append(piece.object);
        }
        return objects;
    };
    const bool hasOtherTokens = objectsOf(before) != objectsOf(m_known);
    if (author == Author::User)
        beginEditing();
    if (hasOtherTokens) {
        announceTokens();
        Q_EMIT tokensChanged();
    }
    if (author == Author::User)
        Q_EMIT textDidChange();
    if (author == Author::User || m_completedFrom >= 0)
        complete();
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

void TokenField::select(int anchor, int position)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

// What a subclass leaves out: a field of tokens that nobody knows.

QStringList TokenField::completionsForSubstring(const QString &, int)
{
    return {};
}

TokenField::Object TokenField::representedObjectForEditingString(const QString &)
{
    return nullptr;
}

QString TokenField::editingStringForRepresentedObject(const Object &object) const
{
    return displayStringForRepresentedObject(object);
}

QList<TokenField::Object> TokenField::shouldAddObjects(const QList<Proposal> &proposed, int)
{
    QList<Object> objects;
    for (const Proposal &proposal : proposed) {
        if (const Object *object = std::get_if<Object>(&proposal))
            objects.append(*object);
    }
    return objects;
}

bool TokenField::hasMenuForRepresentedObject(const Object &) const
{
    return false;
}

QMenu *TokenField::menuForRepresentedObject(const Object &)
{
    return nullptr;
}

bool TokenField::writeRepresentedObjects(const QList<Object> &, QMimeData &) const
{
    return false;
}

bool TokenField::canReadFromPasteboard(const QMimeData &) const
{
    return false;
}

QList<TokenField::Object> TokenField::readFromPasteboard(const QMimeData &)
{
    return {};
}

} // namespace tembra

#include "Toolkit/Token/TokenField.h"

#include "Toolkit/Token/TokenCompletionList.h"
#include "Toolkit/Token/TokenFieldChange.h"

#include <QMimeData>

#include <algorithm>

// How typed and pasted text becomes tokens, and tokens text.

namespace tembra {

namespace {

bool isSeparator(QChar character)
{
    return character == u',' || character == u'\n' || character == u'\r' || character == u'\t'
           || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

QStringList splitAtSeparators(const QString &text)
{
    QStringList pieces;
    auto start = text.begin();
    while (true) {
        const auto end = std::find_if(start, text.end(), isSeparator);
        pieces.append(QString(start, end - start));
        if (end == text.end())
            return pieces;
        start = end + 1;
    }
}

/// Blanks after a separator are nobody's; those at the end may be part of what is named.
QString withoutLeadingBlanks(const QString &text)
{
    const auto first = std::find_if_not(text.begin(), text.end(),
                                        [](QChar character) { return character.isSpace(); });
    return text.sliced(first - text.begin());
}

} // namespace

/// Inserts what was typed in place of the selection; a separator ends the text before it.
void TokenField::typeText(const QString &text)
{
    const Change change(*this);
    const QStringList pieces = splitAtSeparators(text);
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        QTextCursor cursor = textCursor();
        if (i > 0)
            tokenize(tokens()->textAround(cursor.position()).start, cursor.position());
        cursor = textCursor();
        tokens()->insert(cursor, pieces.at(i));
        setTextCursor(cursor);
    }
    ensureCursorVisible();
}

TokenField::Proposal TokenField::proposalFor(const QString &text)
{
    if (Object object = representedObjectForEditingString(text))
        return object;
    return text;
}

/// Puts tokens in place of a text; returns the position behind them. The overridden functions may
/// change the document themselves, so the place is kept by a cursor.
int TokenField::tokenize(int from, int to)
{
    const Change change(*this);
    QTextCursor place(document());
    place.setPosition(from);
    place.setPosition(to, QTextCursor::KeepAnchor);
    const QString text = tokens()->text(from, to);
    QList<Object> objects;
    if (m_edited && m_edited->place.position() == from && m_edited->text == text)
        objects = {m_edited->object};
    else if (const QString name = withoutLeadingBlanks(text); !name.isEmpty())
        objects = shouldAddObjects({proposalFor(name)}, tokens()->tokensBefore(from));
    if (m_edited && m_edited->place.position() >= from && m_edited->place.position() <= to)
        m_edited.reset();
    tokens()->insert(place, objects);
    return place.position();
}

void TokenField::tokenizeAll()
{
    const Change change(*this);
    int position = 0;
    while (true) {
        const QList<TokenText::Piece> pieces = tokens()->pieces();
        const auto text = std::ranges::find_if(pieces, [position](const TokenText::Piece &piece) {
            return !piece.object && piece.start >= position;
        });
        if (text == pieces.end())
            break;
        position = tokenize(text->start, text->end());
    }
    ensureCursorVisible();
}

/// Each piece between separators becomes a token, together with the half-typed text beside it; a
/// text without separators just joins that text.
bool TokenField::pasteText(const QString &text)
{
    const QString joined = text.startsWith(QChar::ByteOrderMark) ? text.sliced(1) : text;
    QTextCursor cursor = textCursor();
    const Change change(*this);
    cursor.removeSelectedText();
    const TokenText::Piece around = tokens()->textAround(cursor.position());
    QStringList pieces = splitAtSeparators(joined);
    if (pieces.size() == 1 && around.length > 0) {
        typeText(joined);
        return true;
    }
    pieces.first().prepend(tokens()->text(around.start, cursor.position()));
    pieces.last().append(tokens()->text(cursor.position(), around.end()));
    QTextCursor place(document());
    place.setPosition(around.start);
    place.setPosition(around.end(), QTextCursor::KeepAnchor);
    QList<Proposal> proposed;
    for (const QString &piece : pieces) {
        if (const QString name = piece.trimmed(); !name.isEmpty())
            proposed.append(proposalFor(name));
    }
    QList<Object> objects;
    if (!proposed.isEmpty())
        objects = shouldAddObjects(proposed, tokens()->tokensBefore(around.start));
    tokens()->insert(place, objects);
    setTextCursor(place);
    return !objects.isEmpty();
}

/// In place of the selection. Its objects may be among those to be read, so it goes first, and
/// comes back if nothing could be read.
bool TokenField::pasteObjects(const QMimeData &mimeData)
{
    const Change change(*this);
    QTextCursor cursor = textCursor();
    const QList<TokenText::Piece> selected = tokens()->pieces(cursor.selectionStart(),
                                                              cursor.selectionEnd());
    cursor.removeSelectedText();
    const int start = cursor.position();
    QList<Object> objects;
    QList<Proposal> proposed;
    for (Object &object : readFromPasteboard(mimeData)) {
        if (object)
            proposed.append(std::move(object));
    }
    if (!proposed.isEmpty())
        objects = shouldAddObjects(proposed, tokens()->tokensBefore(start));
    if (!objects.isEmpty()) {
        tokens()->insert(cursor, objects);
        setTextCursor(cursor);
        return true;
    }
    insertPieces(cursor, selected);
    return false;
}

/// Text and tokens as they were elsewhere, selected then.
void TokenField::insertPieces(QTextCursor &cursor, const QList<TokenText::Piece> &pieces)
{
    const int start = cursor.position();
    for (const TokenText::Piece &piece : pieces) {
        if (piece.object)
            tokens()->insert(cursor, QList<Object>{piece.object});
        else
            tokens()->insert(cursor, piece.text);
    }
    select(start, cursor.position());
}

bool TokenField::pasteData(const QMimeData &mimeData)
{
    if (!canInsertFromMimeData(&mimeData))
        return false;
    const bool isPasted = canReadFromPasteboard(mimeData) ? pasteObjects(mimeData)
                                                          : pasteText(mimeData.text());
    ensureCursorVisible();
    return isPasted;
}

/// Turns the token there back into its text, all of it selected.
void TokenField::editToken(int position)
{
    QTextCursor place(document());
    place.setPosition(position);
    const Change change(*this);
    // Other half-typed text would run into it.
    tokenizeAll();
    const int start = place.position();
    const Object object = tokens()->objectAt(start);
    if (!object)
        return;
    place.setPosition(start + 1, QTextCursor::KeepAnchor);
    const QString text = editingStringForRepresentedObject(object);
    tokens()->insert(place, text);
    const int end = place.position();
    place.setPosition(start);
    place.setKeepPositionOnInsert(true);
    m_edited = EditedToken{object, tokens()->text(start, end), place};
    select(start, end);
}

/// Gives up editing a token; false if none is being edited.
bool TokenField::restoreEditedToken()
{
    if (!m_edited)
        return false;
    const EditedToken edited = *m_edited;
    m_edited.reset();
    const Change change(*this);
    const TokenText::Piece text = tokens()->textAround(edited.place.position());
    QTextCursor cursor(document());
    cursor.setPosition(text.start);
    cursor.setPosition(text.end(), QTextCursor::KeepAnchor);
    tokens()->insert(cursor, QList<Object>{edited.object});
    setTextCursor(cursor);
    return true;
}

} // namespace tembra

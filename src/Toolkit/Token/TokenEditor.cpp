#include "Toolkit/Token/TokenEditor.h"

#include <QMimeData>
#include <QTextDocument>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isSeparator(QChar character)
{
    return character == u',' || character == u'\n' || character == u'\r' || character == u'\t'
           || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

QStringList splitAtSeparators(const QString &text)
{
    QStringList parts;
    auto start = text.begin();
    while (true) {
        const auto end = std::find_if(start, text.end(), isSeparator);
        parts.append(QString(start, end - start));
        if (end == text.end())
            return parts;
        start = end + 1;
    }
}

/// Blanks behind a separator are nobody's; those at the end may be part of a title.
QString withoutLeadingBlanks(const QString &text)
{
    const auto first = std::find_if_not(text.begin(), text.end(),
                                        [](QChar character) { return character.isSpace(); });
    return text.sliced(first - text.begin());
}

QList<TokenEditor::Object> objectsOf(const QList<TokenText::Fragment> &fragments)
{
    QList<TokenEditor::Object> objects;
    for (const TokenText::Fragment &fragment : fragments) {
        if (fragment.object)
            objects.append(fragment.object);
    }
    return objects;
}

bool isText(const TokenText::Fragment &fragment)
{
    return !fragment.object;
}

} // namespace

TokenEditor::TokenEditor(TokenText &text, TokenFieldDelegate &delegate, QObject *parent)
    : QObject(parent)
    , m_text(text)
    , m_delegate(delegate)
    , m_cursor(text.document())
{
    // A text edit cuts and deletes by itself, outside of any block.
    connect(text.document(), &QTextDocument::contentsChanged, this, [this] {
        if (m_blockDepth == 0)
            announceChanges(Author::User);
    });
}

bool TokenEditor::hasHalfTypedText() const
{
    return std::ranges::any_of(m_text.fragments(), isText);
}

// The cursor

void TokenEditor::setCursor(const QTextCursor &cursor)
{
    m_cursor = cursor;
    Q_EMIT cursorChanged();
}

void TokenEditor::select(int anchor, int position)
{
    setCursor(cursorFor(anchor, position));
}

QTextCursor TokenEditor::cursorFor(int from, int to) const
{
    QTextCursor cursor(m_text.document());
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    return cursor;
}

int TokenEditor::selectedToken() const
{
    const int start = m_cursor.selectionStart();
    return m_cursor.selectionEnd() == start + 1 && m_text.objectAt(start) ? start : -1;
}

bool TokenEditor::selectAdjacentToken(Direction direction)
{
    const bool isBackward = direction == Direction::Backward;
    const int position = m_cursor.position();
    const int token = isBackward ? position - 1 : position;
    if (m_cursor.hasSelection() || !m_text.objectAt(token))
        return false;
    select(position, isBackward ? token : token + 1);
    return true;
}

// Objects

void TokenEditor::setObjects(const QList<Object> &objects)
{
    QList<Object> wanted = objects;
    wanted.removeAll(nullptr);
    m_edited.reset();
    const QList<TokenText::Fragment> fragments = m_text.fragments();
    if (std::ranges::equal(fragments, wanted, {}, &TokenText::Fragment::object))
        return;
    const EditBlock block(*this, Author::Program);
    QTextCursor cursor(m_text.document());
    cursor.select(QTextCursor::Document);
    m_text.insert(cursor, wanted);
    setCursor(cursor);
}

void TokenEditor::appendObject(const Object &object)
{
    if (!object)
        return;
    const EditBlock block(*this, Author::Program);
    const int anchor = m_cursor.anchor(), position = m_cursor.position();
    const int end = m_text.endOfLastToken();
    QTextCursor cursor = cursorFor(end, end);
    m_text.insert(cursor, QList<Object>{object});
    // A selection that ends here does not grow.
    if (anchor != position && std::max(anchor, position) == end)
        select(anchor, position);
}

void TokenEditor::removeObject(const Object &object)
{
    if (!object)
        return;
    const EditBlock block(*this, Author::Program);
    if (editedObject() == object) {
        const TokenText::Fragment text = m_text.textAround(m_edited->start.position());
        if (text.text == m_edited->text)
            cursorFor(text.start, text.end()).removeSelectedText();
        m_edited.reset();
    }
    const QList<TokenText::Fragment> fragments = m_text.fragments();
    for (auto fragment = fragments.rbegin(); fragment != fragments.rend(); ++fragment) {
        if (fragment->object == object)
            cursorFor(fragment->start, fragment->end()).removeSelectedText();
    }
}

bool TokenEditor::refreshTitles()
{
    return m_text.refreshTitles();
}

// Texts that become tokens

void TokenEditor::typeText(const QString &text)
{
    const EditBlock block(*this);
    const QStringList parts = splitAtSeparators(text);
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const int position = m_cursor.position();
        if (i > 0)
            tokenize(m_text.textAround(position).start, position);
        QTextCursor cursor = m_cursor;
        m_text.insert(cursor, parts.at(i));
        setCursor(cursor);
    }
}

TokenEditor::Proposal TokenEditor::proposalFor(const QString &text) const
{
    if (Object object = m_delegate.representedObjectForEditingString(text))
        return object;
    return text;
}

/// A title may end in blanks; those of a text that is no title are dropped.
TokenEditor::Proposal TokenEditor::proposalForPasted(const QString &text) const
{
    if (Object object = m_delegate.representedObjectForEditingString(withoutLeadingBlanks(text)))
        return object;
    return proposalFor(text.trimmed());
}

/// Replaces a text with tokens; returns the position behind them. The delegate may change the
/// document, so a cursor keeps the place.
int TokenEditor::tokenize(int from, int to)
{
    const EditBlock block(*this);
    QTextCursor place = cursorFor(from, to);
    const QString text = m_text.text(from, to);
    QList<Object> objects;
    if (m_edited && m_edited->start.position() == from && m_edited->text == text)
        objects = {m_edited->object};
    else if (const QString name = withoutLeadingBlanks(text); !name.isEmpty())
        objects = m_delegate.shouldAddObjects({proposalFor(name)}, m_text.tokensBefore(from));
    if (m_edited && m_edited->start.position() >= from && m_edited->start.position() <= to)
        m_edited.reset();
    m_text.insert(place, objects);
    return place.position();
}

void TokenEditor::tokenizeAll()
{
    const EditBlock block(*this);
    int position = 0;
    while (true) {
        const QList<TokenText::Fragment> fragments = m_text.fragments();
        const auto text = std::ranges::find_if(fragments, [position](const auto &fragment) {
            return isText(fragment) && fragment.start >= position;
        });
        if (text == fragments.end())
            break;
        position = tokenize(text->start, text->end());
    }
}

void TokenEditor::replaceText(int position, const QString &editingString)
{
    const EditBlock block(*this);
    const TokenText::Fragment text = m_text.textAround(position);
    m_edited.reset();
    QTextCursor place = cursorFor(text.start, text.end());
    QList<Object> objects;
    const Proposal proposal = proposalFor(editingString);
    if (std::holds_alternative<Object>(proposal) || !editingString.trimmed().isEmpty())
        objects = m_delegate.shouldAddObjects({proposal}, m_text.tokensBefore(text.start));
    m_text.insert(place, objects);
    setCursor(place);
}

// Tokens that become texts

void TokenEditor::editToken(int position)
{
    QTextCursor place = cursorFor(position, position);
    const EditBlock block(*this);
    // Other half-typed text would run into it.
    tokenizeAll();
    const int start = place.position();
    const Object object = m_text.objectAt(start);
    if (!object)
        return;
    place.setPosition(start + 1, QTextCursor::KeepAnchor);
    m_text.insert(place, m_delegate.editingStringForRepresentedObject(object));
    const int end = place.position();
    place.setPosition(start);
    place.setKeepPositionOnInsert(true);
    m_edited = EditedToken{object, m_text.text(start, end), place};
    select(start, end);
}

bool TokenEditor::cancelTokenEditing()
{
    if (!m_edited)
        return false;
    const EditedToken edited = *std::exchange(m_edited, std::nullopt);
    const EditBlock block(*this);
    const TokenText::Fragment text = m_text.textAround(edited.start.position());
    QTextCursor cursor = cursorFor(text.start, text.end());
    m_text.insert(cursor, QList<Object>{edited.object});
    setCursor(cursor);
    return true;
}

// The clipboard

std::unique_ptr<QMimeData> TokenEditor::selectionData() const
{
    const QList<TokenText::Fragment> selected = m_text.fragments(m_cursor.selectionStart(),
                                                                 m_cursor.selectionEnd());
    QStringList texts;
    for (const TokenText::Fragment &fragment : selected) {
        texts.append(isText(fragment)
                         ? fragment.text
                         : m_delegate.editingStringForRepresentedObject(fragment.object));
    }
    auto mimeData = std::make_unique<QMimeData>();
    mimeData->setText(texts.join(u", "_s));
    if (const QList<Object> objects = objectsOf(selected); !objects.isEmpty())
        m_delegate.writeRepresentedObjects(objects, *mimeData);
    return mimeData;
}

/// Files and pictures are no tokens, though they may bring their names along.
bool TokenEditor::canPaste(const QMimeData &mimeData) const
{
    return m_delegate.canReadFromPasteboard(mimeData)
           || (mimeData.hasText() && !mimeData.hasUrls() && !mimeData.hasImage());
}

bool TokenEditor::paste(const QMimeData &mimeData)
{
    if (!canPaste(mimeData))
        return false;
    return m_delegate.canReadFromPasteboard(mimeData) ? pasteObjects(mimeData)
                                                      : pasteText(mimeData.text());
}

/// Each part between separators becomes a token, together with the half-typed text beside it; a
/// text without separators just joins that text.
bool TokenEditor::pasteText(const QString &text)
{
    const QString joined = text.startsWith(QChar::ByteOrderMark) ? text.sliced(1) : text;
    const EditBlock block(*this);
    m_cursor.removeSelectedText();
    const int position = m_cursor.position();
    const TokenText::Fragment around = m_text.textAround(position);
    QStringList parts = splitAtSeparators(joined);
    if (parts.size() == 1 && around.length > 0) {
        typeText(joined);
        return true;
    }
    parts.first().prepend(m_text.text(around.start, position));
    parts.last().append(m_text.text(position, around.end()));
    QTextCursor place = cursorFor(around.start, around.end());
    QList<Proposal> proposed;
    for (const QString &part : parts) {
        if (!part.trimmed().isEmpty())
            proposed.append(proposalForPasted(part));
    }
    QList<Object> objects;
    if (!proposed.isEmpty())
        objects = m_delegate.shouldAddObjects(proposed, m_text.tokensBefore(around.start));
    m_text.insert(place, objects);
    setCursor(place);
    return !objects.isEmpty();
}

/// The selection may hold some of the objects that are read, so it is removed first, and put back
/// if nothing could be read.
bool TokenEditor::pasteObjects(const QMimeData &mimeData)
{
    const EditBlock block(*this);
    const QList<TokenText::Fragment> selected = m_text.fragments(m_cursor.selectionStart(),
                                                                 m_cursor.selectionEnd());
    m_cursor.removeSelectedText();
    QTextCursor cursor = m_cursor;
    QList<Object> objects;
    QList<Proposal> proposed;
    for (Object &object : m_delegate.readFromPasteboard(mimeData)) {
        if (object)
            proposed.append(std::move(object));
    }
    if (!proposed.isEmpty())
        objects = m_delegate.shouldAddObjects(proposed, m_text.tokensBefore(cursor.position()));
    if (objects.isEmpty()) {
        insertFragments(cursor, selected);
        return false;
    }
    m_text.insert(cursor, objects);
    setCursor(cursor);
    return true;
}

/// Inserts what was removed elsewhere, and selects it.
void TokenEditor::insertFragments(QTextCursor &cursor, const QList<TokenText::Fragment> &fragments)
{
    const int start = cursor.position();
    for (const TokenText::Fragment &fragment : fragments) {
        if (isText(fragment))
            m_text.insert(cursor, fragment.text);
        else
            m_text.insert(cursor, QList<Object>{fragment.object});
    }
    select(start, cursor.position());
}

void TokenEditor::moveText(QTextCursor source, int position)
{
    const int from = source.selectionStart(), to = source.selectionEnd();
    if (position >= from && position <= to)
        return;
    const EditBlock block(*this);
    const QList<TokenText::Fragment> fragments = m_text.fragments(from, to);
    QTextCursor target = cursorFor(position, position);
    source.removeSelectedText();
    insertFragments(target, fragments);
}

/// The document signals every step, also those that leave the content as it was.
void TokenEditor::announceChanges(Author author)
{
    const QList<TokenText::Fragment> before = std::exchange(m_announced, m_text.fragments());
    if (m_announced == before)
        return;
    m_text.releaseRemoved();
    Q_EMIT contentChanged(author, objectsOf(before) != objectsOf(m_announced));
}

} // namespace tembra

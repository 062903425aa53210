#pragma once

#include "Toolkit/Token/TokenFieldDelegate.h"
#include "Toolkit/Token/TokenText.h"

#include <QObject>
#include <QTextCursor>

#include <optional>

namespace tembra {

/// Edits the text of a token field, without a widget: it types, pastes and deletes at a cursor, turns
/// texts into tokens and tokens into texts, and makes the data of the clipboard.
class TokenEditor final : public QObject
{
    Q_OBJECT

public:
    using Object = TokenText::Object;
    using Proposal = TokenFieldDelegate::Proposal;
    /// Who changes the content: the user, or the program by a function.
    enum class Author { User, Program };
    enum class Direction { Backward, Forward };
    class EditBlock;

    /// Both must live as long.
    TokenEditor(TokenText &text, TokenFieldDelegate &delegate, QObject *parent = nullptr);

    const TokenText &text() const { return m_text; }
    const TokenFieldDelegate &delegate() const { return m_delegate; }
    bool isInEditBlock() const { return m_blockDepth > 0; }
    bool hasHalfTypedText() const;
    /// The half-typed text that the caret is in or beside; empty if there is none.
    TokenText::Fragment halfTypedText() const { return m_text.textAround(m_cursor.position()); }

    /// The caret and the selection.
    QTextCursor cursor() const { return m_cursor; }
    void setCursor(const QTextCursor &cursor);
    void select(int anchor, int position);
    /// The position of the token that is the whole selection; -1 if there is no such token.
    int selectedToken() const;
    /// Selects the token beside the caret; false if there is none, or a selection.
    bool selectAdjacentToken(Direction direction);

    /// Replaces the whole content. Where it is these tokens already, nothing changes.
    void setObjects(const QList<Object> &objects);
    /// Inserts a token behind the last one; half-typed text, caret and selection stay.
    void appendObject(const Object &object);
    /// Removes the tokens of an object, also one that is being edited and still has its own text.
    void removeObject(const Object &object);
    /// Asks for the titles of all tokens anew; true if one is another now.
    bool refreshTitles();

    /// Replaces the selection with what was typed. A separator (comma, tab, line break) ends the text
    /// before it, which becomes a token.
    void typeText(const QString &text);
    /// Replaces the half-typed text around @p position with the token for @p editingString.
    void replaceText(int position, const QString &editingString);
    /// Turns all half-typed texts into tokens.
    void tokenizeAll();

    /// Turns the token at @p position back into its text, all of it selected.
    void editToken(int position);
    bool isEditingToken() const { return m_edited.has_value(); }
    /// The object whose token is being edited as text; null if there is none.
    Object editedObject() const { return m_edited ? m_edited->object : nullptr; }
    /// Turns the text of the edited token back into that token; false if no token is being edited.
    bool cancelTokenEditing();

    /// The selection as texts and objects.
    std::unique_ptr<QMimeData> selectionData() const;
    bool canPaste(const QMimeData &mimeData) const;
    /// Replaces the selection. False if nothing came of the data.
    bool paste(const QMimeData &mimeData);
    /// Moves the selection of @p source to another position and selects it there.
    void moveText(QTextCursor source, int position);

Q_SIGNALS:
    /// The cursor was set. When the content changes, it moves along without a signal.
    void cursorChanged();
    /// An edit block has ended with another content, and perhaps with other tokens.
    void contentChanged(Author author, bool hasOtherTokens);

private:
    /// A token that was turned back into text.
    struct EditedToken
    {
        Object object;
        QString text;
        QTextCursor start;
    };

    Proposal proposalFor(const QString &text) const;
    Proposal proposalForPasted(const QString &text) const;
    int tokenize(int from, int to);
    bool pasteText(const QString &text);
    bool pasteObjects(const QMimeData &mimeData);
    void insertFragments(QTextCursor &cursor, const QList<TokenText::Fragment> &fragments);
    QTextCursor cursorFor(int from, int to) const;
    void announceChanges(Author author);

    TokenText &m_text;
    TokenFieldDelegate &m_delegate;
    QTextCursor m_cursor;
    QList<TokenText::Fragment> m_announced; ///< The content as of the last `contentChanged`.
    std::optional<EditedToken> m_edited;
    int m_blockDepth = 0;
};

/// One change of the content, however many steps it takes: it is announced once, at the end of the
/// outermost block.
class TokenEditor::EditBlock
{
public:
    explicit EditBlock(TokenEditor &editor, Author author = Author::User)
        : m_editor(editor)
        , m_author(author)
    {
        ++m_editor.m_blockDepth;
    }
    ~EditBlock()
    {
        if (--m_editor.m_blockDepth == 0)
            m_editor.announceChanges(m_author);
    }
    Q_DISABLE_COPY_MOVE(EditBlock)

private:
    TokenEditor &m_editor;
    Author m_author;
};

} // namespace tembra

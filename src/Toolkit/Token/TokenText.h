#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QTextCharFormat>

#include <functional>
#include <memory>

class QFont;
class QTextCursor;
class QTextDocument;

namespace tembra {

/// The content of a token field, kept in a text document: tokens, each of them one character that
/// stands for an object, and half-typed texts between them. All of it is one paragraph.
///
/// Positions are those of the document. Texts go in with stand-ins for the characters that a
/// paragraph cannot hold, and for U+FFFC, which stands for a token here; they come out as they were.
class TokenText
{
public:
    using Object = std::shared_ptr<QObject>;
    using TitleOf = std::function<QString(const Object &)>;

    /// The object type of a token's character format.
    static constexpr int objectType = QTextFormat::UserObject + 1;

    struct Token
    {
        Object object;
        QString title;
        double width = -1; ///< Of the title as drawn; negative until it is measured.
    };

    /// A token, or a half-typed text up to the next token.
    struct Fragment
    {
        Object object; ///< Null for a text.
        QString text;
        int start = 0;
        int length = 0;

        int end() const { return start + length; }
        friend bool operator==(const Fragment &, const Fragment &) = default;
    };

    TokenText(QTextDocument *document, TitleOf titleOf);

    QTextDocument *document() const { return m_document; }

    /// The objects of the tokens, in order.
    QList<Object> objects() const;
    QList<Fragment> fragments() const;
    /// The fragments between two positions; texts are cut there.
    QList<Fragment> fragments(int from, int to) const;
    /// The text that @p position lies in or touches; empty where there is none.
    Fragment textAround(int position) const;
    QString text(int from, int to) const;
    /// The object whose character follows @p position.
    Object objectAt(int position) const;
    /// Where the token of that number stands; -1 if there is none.
    int positionOfToken(int index) const;
    int tokensBefore(int position) const;
    int endOfLastToken() const;

    /// Puts these in place of the selection of @p cursor and leaves it behind them.
    void insert(QTextCursor &cursor, const QList<Object> &objects);
    void insert(QTextCursor &cursor, const QString &text);

    /// The token with this character format; null if it is none.
    Token *token(const QTextFormat &format);
    Token *token(const Object &object);
    /// Asks for all titles anew; true if one of them is another now.
    bool refreshTitles();
    /// The font decides where the caret stands beside a token.
    void setFont(const QFont &font);
    /// Drops the references to objects that are no tokens any more.
    void releaseRemoved();

private:
    Object objectOf(const QTextFormat &format) const;
    QTextCharFormat formatFor(const Object &object);

    QTextDocument *m_document;
    TitleOf m_titleOf;
    QHash<quintptr, Token> m_tokens; ///< By the address of the object.
    QTextCharFormat m_format; ///< What the formats of all tokens share.
};

} // namespace tembra

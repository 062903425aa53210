#pragma once

#include <QStringView>

namespace tembra {

struct PredicateToken
{
    enum class Kind {
        Name, ///< One name of a key path.
        Dot,
        Operator,
        ObjectPlaceholder, ///< %@
        IntegerPlaceholder, ///< %d
        Any,
        And,
        Or,
        Not,
        Null,
        OpeningParenthesis,
        ClosingParenthesis,
        End,
        Unknown
    };

    Kind kind;
    QStringView text;
    qsizetype offset; ///< Of its first code unit in the format.
};

/// Cuts a predicate format into tokens. Never fails: what is not of the language is Unknown.
class PredicateLexer
{
public:
    explicit PredicateLexer(QStringView format);

    PredicateToken next();

private:
    PredicateToken token(PredicateToken::Kind kind, qsizetype length);
    PredicateToken word();
    PredicateToken symbol();

    QStringView m_format;
    qsizetype m_offset = 0;
};

} // namespace tembra

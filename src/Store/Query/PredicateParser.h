#pragma once

#include "Foundation/Result.h"
#include "Store/Query/PredicateLexer.h"
#include "Store/Query/PredicateNode.h"

namespace tembra {

/// Reads a predicate format and fills its place holders. NOT binds tighter than AND, AND tighter
/// than OR.
///
/// Errors name the character, counted from 1, and what was expected there.
class PredicateParser
{
public:
    PredicateParser(QStringView format, const QList<PredicateArgument> &arguments);

    Result<PredicateNodePointer> parse();

private:
    Result<PredicateNodePointer> disjunction();
    Result<PredicateNodePointer> conjunction();
    Result<PredicateNodePointer> condition();
    Result<PredicateNodePointer> joined(Connective connective, PredicateToken::Kind word,
                                        Result<PredicateNodePointer> (PredicateParser::*part)());
    Result<PredicateNodePointer> negation();
    Result<PredicateNodePointer> parenthesised();
    Result<PredicateNodePointer> comparison();
    Result<QList<QByteArray>> keyPath();
    Result<ComparisonOperator> comparisonOperator();
    Result<std::optional<PredicateArgument>> argument(ComparisonOperator op);
    Result<std::optional<PredicateArgument>> placeholder(ComparisonOperator op);

    bool take(PredicateToken::Kind kind);
    tl::unexpected<Error> expected(const QString &what) const;
    tl::unexpected<Error> wrongAt(const PredicateToken &token, const QString &reason) const;

    QStringView m_format;
    const QList<PredicateArgument> &m_arguments;
    PredicateLexer m_lexer;
    PredicateToken m_token;
    qsizetype m_used = 0; ///< Arguments that have their place.
    int m_depth = 0;
};

} // namespace tembra

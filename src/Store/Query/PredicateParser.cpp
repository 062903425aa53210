#include "Store/Query/PredicateParser.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;
using Kind = PredicateToken::Kind;

namespace {

/// Deeper formats are refused, so that neither this parser nor SQLite's runs out of stack.
constexpr int deepestNesting = 16;

/// Counts as a reader does: a character outside the basic plane is one.
qsizetype characterNumber(QStringView format, qsizetype offset)
{
    const QStringView before = format.left(offset);
    return 1 + std::count_if(before.begin(), before.end(), [](QChar c) {
               return !c.isLowSurrogate();
           });
}

PredicateNodePointer node(std::variant<Comparison, Compound, Negation> content)
{
    return std::make_shared<const PredicateNode>(PredicateNode{std::move(content)});
}

QString kindName(const PredicateArgument &argument)
{
    struct Naming
    {
        QString operator()(const ObjectID &) const { return u"a record"_s; }
        QString operator()(const QString &) const { return u"a text"_s; }
        QString operator()(const Date &) const { return u"a date"_s; }
        QString operator()(qint64) const { return u"an integer"_s; }
    };
    return std::visit(Naming(), argument);
}

} // namespace

PredicateParser::PredicateParser(QStringView format, const QList<PredicateArgument> &arguments)
    : m_format(format)
    , m_arguments(arguments)
    , m_lexer(format)
    , m_token(m_lexer.next())
{
}

Result<PredicateNodePointer> PredicateParser::parse()
{
    Result<PredicateNodePointer> root = disjunction();
    if (!root)
        return root;
    if (m_token.kind != Kind::End)
        return expected(u"AND, OR or the end"_s);
    if (m_used < m_arguments.size()) {
        return failure(
            u"The condition “%1” has %2 place holders, but %3 arguments were given."_s.arg(m_format)
                .arg(m_used)
                .arg(m_arguments.size()));
    }
    return root;
}

Result<PredicateNodePointer> PredicateParser::disjunction()
{
    return joined(Connective::Or, Kind::Or, &PredicateParser::conjunction);
}

Result<PredicateNodePointer> PredicateParser::conjunction()
{
    return joined(Connective::And, Kind::And, &PredicateParser::condition);
}

Result<PredicateNodePointer> PredicateParser::joined(
    Connective connective, Kind word, Result<PredicateNodePointer> (PredicateParser::*part)())
{
    Result<PredicateNodePointer> first = (this->*part)();
    if (!first || m_token.kind != word)
        return first;
    Compound compound{connective, {std::move(*first)}};
    while (take(word)) {
        Result<PredicateNodePointer> next = (this->*part)();
        if (!next)
            return next;
        compound.operands.push_back(std::move(*next));
    }
    return node(std::move(compound));
}

Result<PredicateNodePointer> PredicateParser::condition()
{
    const bool nests = m_token.kind == Kind::Not || m_token.kind == Kind::OpeningParenthesis;
    if (!nests)
        return comparison();
    if (m_depth == deepestNesting)
        return wrongAt(m_token, u"conditions are nested more than %1 deep"_s.arg(deepestNesting));
    ++m_depth;
    Result<PredicateNodePointer> nested = m_token.kind == Kind::Not ? negation() : parenthesised();
    --m_depth;
    return nested;
}

Result<PredicateNodePointer> PredicateParser::negation()
{
    take(Kind::Not);
    return condition().map(
        [](PredicateNodePointer operand) { return node(Negation{std::move(operand)}); });
}

Result<PredicateNodePointer> PredicateParser::parenthesised()
{
    take(Kind::OpeningParenthesis);
    Result<PredicateNodePointer> inner = disjunction();
    if (inner && !take(Kind::ClosingParenthesis))
        return expected(u"AND, OR or “)”"_s);
    return inner;
}

Result<PredicateNodePointer> PredicateParser::comparison()
{
    Comparison made;
    made.any = take(Kind::Any);
    if (!made.any && m_token.kind != Kind::Name)
        return expected(u"a condition"_s);
    Result<QList<QByteArray>> path = keyPath();
    if (!path)
        return failure(std::move(path).error());
    made.keyPath = std::move(*path);
    const Result<ComparisonOperator> op = comparisonOperator();
    if (!op)
        return failure(op.error());
    made.op = *op;
    Result<std::optional<PredicateArgument>> value = argument(made.op);
    if (!value)
        return failure(std::move(value).error());
    made.argument = std::move(*value);
    return node(std::move(made));
}

Result<QList<QByteArray>> PredicateParser::keyPath()
{
    QList<QByteArray> names;
    do {
        if (m_token.kind != Kind::Name)
            return expected(u"a name of a key path"_s);
        names.append(m_token.text.toLatin1());
        take(Kind::Name);
    } while (take(Kind::Dot));
    return names;
}

Result<ComparisonOperator> PredicateParser::comparisonOperator()
{
    using enum ComparisonOperator;
    if (m_token.kind == Kind::Operator) {
        for (const auto op :
             {Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual, Contains}) {
            if (m_token.text.compare(spelling(op), Qt::CaseInsensitive) == 0) {
                take(Kind::Operator);
                return op;
            }
        }
    }
    return expected(u"==, !=, <, >, <=, >= or CONTAINS[cd]"_s);
}

Result<std::optional<PredicateArgument>> PredicateParser::argument(ComparisonOperator op)
{
    if (take(Kind::Null))
        return std::nullopt;
    if (m_token.kind != Kind::ObjectPlaceholder && m_token.kind != Kind::IntegerPlaceholder)
        return expected(u"%@, %d or NULL"_s);
    return placeholder(op);
}

Result<std::optional<PredicateArgument>> PredicateParser::placeholder(ComparisonOperator op)
{
    if (m_used == m_arguments.size())
        return wrongAt(m_token,
                       u"there is no argument for this place holder, only %1 were given"_s.arg(
                           m_used));
    const PredicateArgument &value = m_arguments.at(m_used);
    const bool wantsInteger = m_token.kind == Kind::IntegerPlaceholder;
    if (wantsInteger != std::holds_alternative<qint64>(value)) {
        const QString wanted = wantsInteger ? u"%d takes an integer"_s
                                            : u"%@ takes a record, a text or a date"_s;
        return wrongAt(m_token, u"%1, but the argument is %2"_s.arg(wanted, kindName(value)));
    }
    if (op == ComparisonOperator::Contains && !std::holds_alternative<QString>(value))
        return wrongAt(m_token,
                       u"CONTAINS[cd] takes a text, but the argument is %1"_s.arg(kindName(value)));
    take(m_token.kind);
    ++m_used;
    return value;
}

bool PredicateParser::take(Kind kind)
{
    if (m_token.kind != kind)
        return false;
    m_token = m_lexer.next();
    return true;
}

tl::unexpected<Error> PredicateParser::expected(const QString &what) const
{
    const QString found = m_token.kind == Kind::End ? u"the end"_s : u"“%1”"_s.arg(m_token.text);
    return wrongAt(m_token, u"expected %1, found %2"_s.arg(what, found));
}

tl::unexpected<Error> PredicateParser::wrongAt(const PredicateToken &token,
                                               const QString &reason) const
{
    return failure(u"The condition “%1” cannot be read: at character %2, %3."_s.arg(
        m_format.toString(), QString::number(characterNumber(m_format, token.offset)), reason));
}

} // namespace tembra

#include "Store/Query/Predicate.h"

#include "Foundation/Precondition.h"
#include "Store/Query/PredicateParser.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString placeholderFor(const std::optional<PredicateArgument> &argument)
{
    if (!argument)
        return u"NULL"_s;
    return std::holds_alternative<qint64>(*argument) ? u"%d"_s : u"%@"_s;
}

QString described(const PredicateNode &node);

/// In parentheses where the language needs them to read the same tree again.
QString operandDescribed(const PredicateNode &operand)
{
    const QString text = described(operand);
    return std::holds_alternative<Compound>(operand.content) ? QString(u'(' + text + u')') : text;
}

QString described(const Comparison &comparison)
{
    const QString path = QString::fromLatin1(comparison.keyPath.join('.'));
    return QString((comparison.any ? "ANY "_L1 : ""_L1) + path + u' ' + spelling(comparison.op)
                   + u' ' + placeholderFor(comparison.argument));
}

QString described(const Compound &compound)
{
    QStringList parts;
    for (const PredicateNodePointer &operand : compound.operands)
        parts.append(operandDescribed(*operand));
    return parts.join(compound.connective == Connective::And ? " AND "_L1 : " OR "_L1);
}

QString described(const Negation &negation)
{
    return QString("NOT "_L1 + operandDescribed(*negation.operand));
}

QString described(const PredicateNode &node)
{
    return std::visit([](const auto &content) { return described(content); }, node.content);
}

void collectArguments(const PredicateNode &node, std::vector<PredicateArgument> &arguments)
{
    if (const auto *comparison = std::get_if<Comparison>(&node.content)) {
        if (comparison->argument)
            arguments.push_back(*comparison->argument);
    } else if (const auto *compound = std::get_if<Compound>(&node.content)) {
        for (const PredicateNodePointer &operand : compound->operands)
            collectArguments(*operand, arguments);
    } else {
        collectArguments(*std::get<Negation>(node.content).operand, arguments);
    }
}

} // namespace

Predicate::Predicate(std::shared_ptr<const PredicateNode> root) : m_root(std::move(root)) {}

Result<Predicate> Predicate::withFormat(QStringView format,
                                        const QList<PredicateArgument> &arguments)
{
    return PredicateParser(format, arguments).parse().map([](PredicateNodePointer root) {
        return Predicate(std::move(root));
    });
}

Predicate Predicate::fixed(QStringView format, const QList<PredicateArgument> &arguments)
{
    Result<Predicate> predicate = withFormat(format, arguments);
    if (!predicate)
        fatal(qUtf8Printable(predicate.error().description()));
    return *std::move(predicate);
}

Predicate Predicate::andPredicate(const QList<Predicate> &subpredicates)
{
    Compound all{Connective::And, {}};
    for (const Predicate &predicate : subpredicates) {
        if (predicate.isEmpty())
            continue;
        // An AND within is taken apart, so that adding conditions again and again nests nothing.
        const auto *inner = std::get_if<Compound>(&predicate.m_root->content);
        if (inner && inner->connective == Connective::And)
            all.operands.insert(all.operands.end(), inner->operands.begin(), inner->operands.end());
        else
            all.operands.push_back(predicate.m_root);
    }
    if (all.operands.empty())
        return {};
    if (all.operands.size() == 1)
        return Predicate(all.operands.front());
    return Predicate(std::make_shared<const PredicateNode>(PredicateNode{std::move(all)}));
}

QString Predicate::describe() const
{
    return m_root ? described(*m_root) : QString();
}

QList<PredicateArgument> Predicate::arguments() const
{
    std::vector<PredicateArgument> found;
    if (m_root)
        collectArguments(*m_root, found);
    return QList<PredicateArgument>(found.begin(), found.end());
}

} // namespace tembra

#include "Store/Query/PredicateNode.h"

#include "Foundation/Precondition.h"

#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

bool isMissing(const PredicateArgument &argument)
{
    if (const auto *id = std::get_if<ObjectID>(&argument))
        return id->isNull();
    if (const auto *date = std::get_if<Date>(&argument))
        return std::isnan(date->secondsSinceReferenceDate);
    const auto *text = std::get_if<QString>(&argument);
    return text && text->isNull();
}

QLatin1StringView spelling(ComparisonOperator op)
{
    switch (op) {
    case ComparisonOperator::Equal:
        return "=="_L1;
    case ComparisonOperator::NotEqual:
        return "!="_L1;
    case ComparisonOperator::Less:
        return "<"_L1;
    case ComparisonOperator::Greater:
        return ">"_L1;
    case ComparisonOperator::LessOrEqual:
        return "<="_L1;
    case ComparisonOperator::GreaterOrEqual:
        return ">="_L1;
    case ComparisonOperator::Contains:
        return "CONTAINS[cd]"_L1;
    }
    fatal("an operator of the language");
}

std::vector<const PredicateNode *> conjuncts(const PredicateNode *root)
{
    if (!root)
        return {};
    const auto *compound = std::get_if<Compound>(&root->content);
    if (!compound || compound->connective != Connective::And)
        return {root};
    std::vector<const PredicateNode *> parts;
    for (const PredicateNodePointer &operand : compound->operands)
        parts.push_back(operand.get());
    return parts;
}

} // namespace tembra

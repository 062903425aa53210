#pragma once

#include "Store/Query/Predicate.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace tembra {

enum class ComparisonOperator {
    Equal,
    NotEqual,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    Contains ///< A text within a text, without regard to case and diacritics.
};

/// `[ANY] keypath op argument`.
struct Comparison
{
    bool any = false;
    QList<QByteArray> keyPath;
    ComparisonOperator op = ComparisonOperator::Equal;
    std::optional<PredicateArgument> argument; ///< Nothing for NULL.
};

enum class Connective { And, Or };

/// Two or more conditions joined by the same word.
struct Compound
{
    Connective connective;
    std::vector<std::shared_ptr<const PredicateNode>> operands;
};

struct Negation
{
    std::shared_ptr<const PredicateNode> operand;
};

/// A condition as a tree, whatever evaluates it.
///
/// What it means: a condition holds or does not, there is nothing between. A comparison with a
/// missing value (NULL, an argument that is missing, or an attribute that is) does not hold, with
/// two exceptions: missing == missing does, and missing != present (either way round) does. With
/// ANY, it holds when it does for at least one related record.
struct PredicateNode
{
    std::variant<Comparison, Compound, Negation> content;
};

using PredicateNodePointer = std::shared_ptr<const PredicateNode>;

/// True for a text, record or date that is none: such an argument stands for NULL.
bool isMissing(const PredicateArgument &argument);

/// As the format language spells it: "==", "CONTAINS[cd]".
QLatin1StringView spelling(ComparisonOperator op);

/// The conditions of which all must hold: those of an AND at the root, else the root alone.
std::vector<const PredicateNode *> conjuncts(const PredicateNode *root);

} // namespace tembra

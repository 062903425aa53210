#include "Store/Query/QueryDriver.h"

namespace tembra {

bool isSelective(const Comparison &comparison)
{
    const bool compares = comparison.op != ComparisonOperator::NotEqual
                          && comparison.op != ComparisonOperator::Contains;
    return compares && !comparison.any && comparison.argument && !isMissing(*comparison.argument);
}

namespace {

bool isRecordEquality(const Comparison &comparison)
{
    return comparison.op == ComparisonOperator::Equal && comparison.argument
           && std::holds_alternative<ObjectID>(*comparison.argument);
}

} // namespace

const PredicateNode *chooseDriver(const std::vector<const PredicateNode *> &conditions)
{
    const PredicateNode *plain = nullptr;
    std::vector<const PredicateNode *> withAny;
    for (const PredicateNode *condition : conditions) {
        const auto *comparison = std::get_if<Comparison>(&condition->content);
        if (!comparison || !isRecordEquality(*comparison))
            continue;
        if (comparison->any)
            withAny.push_back(condition);
        else if (!plain)
            plain = condition;
    }
    if (plain && withAny.size() < 2)
        return plain;
    return withAny.empty() ? nullptr : withAny.front();
}

bool hasAny(const PredicateNode *driver)
{
    return driver && std::get<Comparison>(driver->content).any;
}

bool isPlainRecordEquality(const PredicateNode &condition)
{
    const auto *comparison = std::get_if<Comparison>(&condition.content);
    return comparison && !comparison->any && isRecordEquality(*comparison);
}

} // namespace tembra

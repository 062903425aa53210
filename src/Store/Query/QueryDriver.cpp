#include "Store/Query/QueryDriver.h"

namespace tembra {

bool narrows(const Comparison &comparison)
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

const PredicateNode *driverAmong(const std::vector<const PredicateNode *> &parts)
{
    const PredicateNode *plain = nullptr;
    std::vector<const PredicateNode *> withAny;
    for (const PredicateNode *part : parts) {
        const auto *comparison = std::get_if<Comparison>(&part->content);
        if (!comparison || !isRecordEquality(*comparison))
            continue;
        if (comparison->any)
            withAny.push_back(part);
        else if (!plain)
            plain = part;
    }
    if (plain && withAny.size() < 2)
        return plain;
    return withAny.empty() ? nullptr : withAny.front();
}

bool leadsThroughAny(const PredicateNode *driver)
{
    return driver && std::get<Comparison>(driver->content).any;
}

bool isPlainRecordEquality(const PredicateNode &part)
{
    const auto *comparison = std::get_if<Comparison>(&part.content);
    return comparison && !comparison->any && isRecordEquality(*comparison);
}

} // namespace tembra

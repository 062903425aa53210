#include "Store/Results/ListDiff.h"

#include <QHash>

#include <algorithm>

namespace tembra {

namespace {

using Keys = std::span<const qint64>;

constexpr int absent = -1;

/// For each of @p after, its index in @p before.
std::vector<int> oldIndexes(Keys before, Keys after)
{
    QHash<qint64, int> indexes;
    indexes.reserve(qsizetype(before.size()));
    for (size_t i = 0; i < before.size(); ++i)
        indexes.insert(before[i], int(i));
    std::vector<int> found(after.size());
    std::transform(after.begin(), after.end(), found.begin(),
                   [&](qint64 key) { return indexes.value(key, absent); });
    return found;
}

/// Which members belong to a longest ascending run of present ones: the rows that stay in place.
std::vector<bool> longestIncreasing(const std::vector<int> &numbers)
{
    std::vector<int> tails; // Index of the lowest number that ends a run of length i + 1.
    std::vector<int> previous(numbers.size(), absent);
    for (int i = 0; i < int(numbers.size()); ++i) {
        const int number = numbers[size_t(i)];
        if (number == absent)
            continue;
        const auto place = std::lower_bound(tails.begin(), tails.end(), number,
                                            [&](int tail, int value) {
                                                return numbers[size_t(tail)] < value;
                                            });
        if (place != tails.begin())
            previous[size_t(i)] = *std::prev(place);
        if (place == tails.end())
            tails.push_back(i);
        else
            *place = i;
    }
    std::vector<bool> chosen(numbers.size(), false);
    for (int i = tails.empty() ? absent : tails.back(); i != absent; i = previous[size_t(i)])
        chosen[size_t(i)] = true;
    return chosen;
}

} // namespace

std::vector<RowChange> listDiff(Keys before, Keys after)
{
    const auto [oldEnd, newEnd] = std::mismatch(before.begin(), before.end(), after.begin(),
                                                after.end());
    const int head = int(oldEnd - before.begin());
    before = before.subspan(size_t(head));
    after = after.subspan(size_t(head));
    const auto tail = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
    const auto equalAtEnd = size_t(tail.first - before.rbegin());
    before = before.first(before.size() - equalAtEnd);
    after = after.first(after.size() - equalAtEnd);

    const std::vector<int> origins = oldIndexes(before, after);
    std::vector<bool> kept(before.size(), false);
    for (const int origin : origins) {
        if (origin != absent)
            kept[size_t(origin)] = true;
    }
    std::vector<RowChange> steps;
    for (int row = int(before.size()) - 1; row >= 0; --row) {
        if (!kept[size_t(row)])
            steps.push_back({RowChange::Type::Delete, head + row, -1, before[size_t(row)]});
    }
    const std::vector<bool> inPlace = longestIncreasing(origins);
    for (int row = 0; row < int(after.size()); ++row) {
        const int origin = origins[size_t(row)];
        if (origin == absent)
            steps.push_back({RowChange::Type::Insert, head + row, -1, after[size_t(row)]});
        else if (!inPlace[size_t(row)])
            steps.push_back({RowChange::Type::Move, head + origin, head + row, after[size_t(row)]});
    }
    return steps;
}

} // namespace tembra

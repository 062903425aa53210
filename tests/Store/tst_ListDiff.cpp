#include "Store/Results/ListDiff.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <numeric>

using namespace tembra;

namespace {

using Keys = std::vector<qint64>;
using Type = RowChange::Type;

/// As RowChange tells a consumer to do it.
Keys applied(Keys keys, const std::vector<RowChange> &steps)
{
    std::vector<int> taken;
    for (const RowChange &step : steps) {
        if (step.type == Type::Delete || step.type == Type::Move)
            taken.push_back(step.row);
    }
    std::sort(taken.rbegin(), taken.rend());
    for (const int row : taken)
        keys.erase(keys.begin() + row);
    for (const RowChange &step : steps) {
        if (step.type == Type::Insert)
            keys.insert(keys.begin() + step.row, step.key);
        else if (step.type == Type::Move)
            keys.insert(keys.begin() + step.newRow, step.key);
    }
    return keys;
}

bool isOrdered(const std::vector<RowChange> &steps)
{
    const auto place = [](const RowChange &step) {
        const bool first = step.type == Type::Delete;
        return std::pair(!first,
                         first ? -step.row : (step.type == Type::Move ? step.newRow : step.row));
    };
    return std::is_sorted(steps.begin(), steps.end(), [&](const RowChange &a, const RowChange &b) {
        return place(a) < place(b);
    });
}

} // namespace

class tst_ListDiff : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysNothingAboutEqualLists();
    void deletesInDescendingOrder();
    void insertsInAscendingOrder();
    void movesOneRowThatChangedItsPlace();
    void doesEverythingAtOnce();
    void movesAsFewRowsAsPossible();
    void leadsFromAnyListToAnyOther();
    void isQuickOnLongLists();
};

void tst_ListDiff::saysNothingAboutEqualLists()
{
    QVERIFY(listDiff(Keys{}, Keys{}).empty());
    QVERIFY(listDiff(Keys{3, 1, 2}, Keys{3, 1, 2}).empty());
}

void tst_ListDiff::deletesInDescendingOrder()
{
    const std::vector<RowChange> expected{{Type::Delete, 3, -1, 4}, {Type::Delete, 1, -1, 2}};
    QVERIFY(listDiff(Keys{1, 2, 3, 4, 5}, Keys{1, 3, 5}) == expected);
}

void tst_ListDiff::insertsInAscendingOrder()
{
    const std::vector<RowChange> expected{{Type::Insert, 0, -1, 9},
                                          {Type::Insert, 2, -1, 8},
                                          {Type::Insert, 4, -1, 7}};
    QVERIFY(listDiff(Keys{1, 2}, Keys{9, 1, 8, 2, 7}) == expected);
}

void tst_ListDiff::movesOneRowThatChangedItsPlace()
{
    const std::vector<RowChange> down{{Type::Move, 1, 3, 2}};
    QVERIFY(listDiff(Keys{1, 2, 3, 4, 5}, Keys{1, 3, 4, 2, 5}) == down);
    const std::vector<RowChange> up{{Type::Move, 3, 1, 4}};
    QVERIFY(listDiff(Keys{1, 2, 3, 4, 5}, Keys{1, 4, 2, 3, 5}) == up);
}

void tst_ListDiff::doesEverythingAtOnce()
{
    const std::vector<RowChange> expected{{Type::Delete, 1, -1, 2},
                                          {Type::Move, 4, 0, 5},
                                          {Type::Insert, 2, -1, 9}};
    QVERIFY(listDiff(Keys{1, 2, 3, 4, 5}, Keys{5, 1, 9, 3, 4}) == expected);
}

void tst_ListDiff::movesAsFewRowsAsPossible()
{
    // 2, 5, 6, 8 stay: of 3, 7, 1, 4 none can without moving one of them.
    QCOMPARE(listDiff(Keys{1, 2, 3, 4, 5, 6, 7, 8}, Keys{3, 2, 5, 7, 6, 1, 8, 4}).size(),
             size_t(4));
    QCOMPARE(listDiff(Keys{1, 2, 3, 4}, Keys{4, 3, 2, 1}).size(), size_t(3));
}

void tst_ListDiff::leadsFromAnyListToAnyOther()
{
    QRandomGenerator random(11);
    for (int round = 0; round < 5000; ++round) {
        Keys all(size_t(1 + random.bounded(12)));
        std::iota(all.begin(), all.end(), 1);
        const auto pick = [&] {
            Keys keys;
            for (const qint64 key : all) {
                if (random.bounded(4) != 0)
                    keys.push_back(key);
            }
            if (random.bounded(2) == 0)
                std::shuffle(keys.begin(), keys.end(), random);
            return keys;
        };
        const Keys before = pick();
        const Keys after = pick();
        const std::vector<RowChange> steps = listDiff(before, after);
        QVERIFY(isOrdered(steps));
        QVERIFY(applied(before, steps) == after);
    }
}

void tst_ListDiff::isQuickOnLongLists()
{
    Keys before(200000);
    std::iota(before.begin(), before.end(), 1);
    Keys after(before.rbegin(), before.rend());
    after.push_back(500000);
    QCOMPARE(listDiff(before, after).size(), before.size());
}

QTEST_GUILESS_MAIN(tst_ListDiff)
#include "tst_ListDiff.moc"

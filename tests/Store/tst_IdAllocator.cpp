#include "Store/File/IdAllocator.h"

#include <QTest>

#include <set>
#include <thread>

using namespace tembra;

class tst_IdAllocator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsAtOne();
    void goesOnAfterTheMark();
    void givesNoKeyTwiceAcrossThreads();
};

void tst_IdAllocator::startsAtOne()
{
    IdAllocator ids;
    QCOMPARE(ids.highWaterMark(), 0);
    QCOMPARE(ids.next(), 1);
    QCOMPARE(ids.next(), 2);
    QCOMPARE(ids.highWaterMark(), 2);
}

void tst_IdAllocator::goesOnAfterTheMark()
{
    IdAllocator ids(41);
    QCOMPARE(ids.next(), 42);
    QCOMPARE(ids.highWaterMark(), 42);
}

void tst_IdAllocator::givesNoKeyTwiceAcrossThreads()
{
    IdAllocator ids;
    constexpr int count = 20000;
    std::vector<qint64> first(count);
    std::vector<qint64> second(count);
    const auto fill = [&ids](std::vector<qint64> &keys) {
        for (qint64 &key : keys)
            key = ids.next();
    };
    std::thread other([&] { fill(first); });
    fill(second);
    other.join();
    std::set<qint64> all(first.begin(), first.end());
    all.insert(second.begin(), second.end());
    QCOMPARE(all.size(), size_t(2 * count));
    QCOMPARE(ids.highWaterMark(), 2 * count);
}

QTEST_GUILESS_MAIN(tst_IdAllocator)
#include "tst_IdAllocator.moc"

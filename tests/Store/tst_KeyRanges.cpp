#include "Store/Rows/KeyRanges.h"

#include <QTest>

using namespace tembra;

class tst_KeyRanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsKeysInARowTogether()
    {
        KeyRanges keys;
        QVERIFY(keys.isEmpty());
        for (const qint64 key : {3, 4, 5, 9, 11, 12})
            keys.add(key);
        QCOMPARE(keys.ranges(), (std::vector<KeyRange>{{3, 5}, {9, 9}, {11, 12}}));
    }

    void splitsThemIntoShorterRanges()
    {
        KeyRanges keys;
        for (qint64 key = 1; key <= 7; ++key)
            keys.add(key);
        keys.add(10);
        QCOMPARE(keys.split(3), (std::vector<KeyRange>{{1, 3}, {4, 6}, {7, 7}, {10, 10}}));
        QCOMPARE(keys.split(100), (std::vector<KeyRange>{{1, 7}, {10, 10}}));
        QVERIFY(KeyRanges().split(3).empty());
    }
};

QTEST_GUILESS_MAIN(tst_KeyRanges)

#include "tst_KeyRanges.moc"

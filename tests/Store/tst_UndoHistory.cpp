#include "Store/Undo/UndoHistory.h"
#include "support/FixedClock.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_UndoHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forgetsTheOldestWhenThereAreTooMany();
    void forgetsTheOldestWhenTheyTakeTooMuch();
    void keepsTheNewestAtAnySize();
    void dropsEditsOfRecordsInsertedInTheSameStep();
    void isEmptyWithoutEdits();
};

namespace {

Value big(int number, int megabytes)
{
    return QString(qsizetype(megabytes) * 512 * 1024, QChar(u'a' + number % 20));
}

} // namespace

void tst_UndoHistory::forgetsTheOldestWhenThereAreTooMany()
{
    const FixedClock clock(Date{});
    UndoHistory history(clock);
    for (int i = 0; i < 300; ++i) {
        history.recordValue({0, i + 1}, 0, Value(qint64(i)), Value(qint64(i + 1)));
        QVERIFY(history.closeStep());
    }
    size_t count = 0;
    qint64 oldest = 0;
    while (const auto step = history.takeUndo()) {
        ++count;
        oldest = std::get<ValueEdit>(step->changes.front()).id.key;
    }
    QCOMPARE(count, UndoHistory::maximumSteps);
    QCOMPARE(oldest, 101);
}

void tst_UndoHistory::forgetsTheOldestWhenTheyTakeTooMuch()
{
    const FixedClock clock(Date{});
    UndoHistory history(clock);
    for (int i = 0; i < 30; ++i) {
        history.recordValue({0, i + 1}, 0, big(i, 4), big(i + 1, 4));
        (void)history.closeStep();
    }
    size_t bytes = 0;
    int count = 0;
    while (const auto step = history.takeUndo()) {
        bytes += step->byteSize();
        ++count;
    }
    QVERIFY(bytes <= UndoHistory::maximumBytes);
    QCOMPARE(count, 15);
}

void tst_UndoHistory::keepsTheNewestAtAnySize()
{
    const FixedClock clock(Date{});
    UndoHistory history(clock);
    history.recordValue({0, 1}, 0, Value(qint64(1)), Value(qint64(2)));
    (void)history.closeStep();
    history.recordValue({0, 2}, 0, big(1, 70), Value());
    (void)history.closeStep();
    const auto step = history.takeUndo();
    QVERIFY(step);
    QCOMPARE(std::get<ValueEdit>(step->changes.front()).id.key, 2);
    QVERIFY(!history.canUndo());
}

void tst_UndoHistory::dropsEditsOfRecordsInsertedInTheSameStep()
{
    const FixedClock clock(Date{});
    UndoHistory history(clock);
    history.recordInserted({{0, 1}});
    history.recordValue({0, 1}, 0, Value(), Value(qint64(2)));
    history.recordLink({0, 1}, 3, {1, 9}, true);
    history.recordInserted({{0, 2}});
    history.recordValue({0, 3}, 0, Value(), Value(qint64(2)));
    (void)history.closeStep();
    const auto step = history.takeUndo();
    QCOMPARE(step->changes.size(), size_t(2));
    QCOMPARE(std::get<InsertedRecords>(step->changes.front()).ids.size(), size_t(2));
    // In the next step it is a record like any other.
    history.recordValue({0, 1}, 0, Value(), Value(qint64(2)));
    QVERIFY(history.closeStep());
}

void tst_UndoHistory::isEmptyWithoutEdits()
{
    const FixedClock clock(Date{});
    UndoHistory history(clock);
    history.recordInserted({});
    QVERIFY(!history.closeStep());
    history.beginGroup();
    history.endGroup();
    history.endGroup();
    QVERIFY(!history.isGrouping());
    QVERIFY(!history.canUndo());
    QVERIFY(!history.takeUndo());
    QVERIFY(!history.takeRedo());
}

QTEST_APPLESS_MAIN(tst_UndoHistory)

#include "tst_UndoHistory.moc"

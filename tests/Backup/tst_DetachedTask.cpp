#include "Backup/DetachedTask.h"

#include <QTest>

#include <atomic>

using namespace tembra;

class tst_DetachedTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheAnswer()
    {
        const auto answer = runDetached<int>([] { return 7; }, [] { return true; });
        QCOMPARE(answer, std::optional(7));
    }

    void runsInAThreadOfItsOwn()
    {
        const auto own = std::this_thread::get_id();
        const auto other = runDetached<std::thread::id>([] { return std::this_thread::get_id(); },
                                                        [] { return true; });
        QVERIFY(other && *other != own);
    }

    void isLeftToItselfWhenNobodyWaits()
    {
        struct Gate
        {
            std::atomic<bool> isOpen = false;
            std::atomic<bool> passed = false;
        };
        const auto gate = std::make_shared<Gate>();
        int asked = 0;
        const auto answer = runDetached<int>(
            [gate] {
                while (!gate->isOpen)
                    std::this_thread::yield();
                gate->passed = true;
                return 1;
            },
            [&] { return ++asked < 3; });
        QVERIFY(!answer);
        QCOMPARE(asked, 3);
        QVERIFY(!gate->passed);
        gate->isOpen = true;
        QTRY_VERIFY(gate->passed);
    }
};

QTEST_GUILESS_MAIN(tst_DetachedTask)

#include "tst_DetachedTask.moc"

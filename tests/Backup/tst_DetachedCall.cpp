#include "Backup/DetachedCall.h"

#include <QTest>

#include <atomic>

using namespace tembra;

class tst_DetachedCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheAnswer()
    {
        const auto answer = callDetached<int>([] { return 7; }, [] { return true; });
        QCOMPARE(answer, std::optional(7));
    }

    void runsInAThreadOfItsOwn()
    {
        const auto own = std::this_thread::get_id();
        const auto other = callDetached<std::thread::id>([] { return std::this_thread::get_id(); },
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
        const auto answer = callDetached<int>(
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

    void tellsTheEventLoop()
    {
        int answer = 0;
        std::thread::id caller;
        callDetached<int>(
            this, [] { return 7; },
            [&](int value) {
                answer = value;
                caller = std::this_thread::get_id();
            });
        QCOMPARE(answer, 0);
        QTRY_COMPARE(answer, 7);
        QVERIFY(caller == std::this_thread::get_id());
    }

    void tellsNobodyWhoIsGone()
    {
        const auto mayReturn = std::make_shared<std::promise<void>>();
        const auto didReturn = std::make_shared<std::promise<void>>();
        bool isTold = false;
        {
            QObject context;
            callDetached<int>(
                &context,
                [=] {
                    mayReturn->get_future().wait();
                    didReturn->set_value();
                    return 1;
                },
                [&](int) { isTold = true; });
        }
        mayReturn->set_value();
        didReturn->get_future().wait();
        QTest::qWait(5 * int(detachedCallPollInterval.count()));
        QVERIFY(!isTold);
    }
};

QTEST_GUILESS_MAIN(tst_DetachedCall)

#include "tst_DetachedCall.moc"

#include "Application/UnixSignals.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>

using namespace tembra;

class tst_UnixSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSignalAsksToEnd_data();
    void aSignalAsksToEnd();
    void signalsInARowAskAtLeastOnce();
    void theHandlersGoWithTheObject();
};

void tst_UnixSignals::aSignalAsksToEnd_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_UnixSignals::aSignalAsksToEnd()
{
    QFETCH(int, number);
    const UnixSignals unixSignals;
    QSignalSpy spy(&unixSignals, &UnixSignals::terminationRequested);
    QCOMPARE(std::raise(number), 0);
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 1);
    // And again: one answer does not use it up.
    QCOMPARE(std::raise(number), 0);
    QTRY_COMPARE(spy.count(), 2);
}

void tst_UnixSignals::signalsInARowAskAtLeastOnce()
{
    const UnixSignals unixSignals;
    QSignalSpy spy(&unixSignals, &UnixSignals::terminationRequested);
    // More than the pipe holds: the handler must not block.
    for (int i = 0; i < 100'000; ++i)
        std::raise(SIGTERM);
    QTRY_VERIFY(spy.count() >= 1);
}

void tst_UnixSignals::theHandlersGoWithTheObject()
{
    {
        const UnixSignals unixSignals;
    }
    for (const int number : {SIGTERM, SIGINT}) {
        struct sigaction action = {};
        QCOMPARE(sigaction(number, nullptr, &action), 0);
        QVERIFY(action.sa_handler == SIG_DFL);
    }
}

QTEST_GUILESS_MAIN(tst_UnixSignals)
#include "tst_UnixSignals.moc"

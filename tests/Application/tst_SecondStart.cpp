#include "RunningProgram.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace tembra;
using namespace Qt::StringLiterals;

/// What happens when the program is started while it runs already.
class tst_SecondStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_account = std::make_unique<FreshAccount>(); }
    void cleanup() { m_account.reset(); }

    void bringsAMinimisedWindowForward();
    void bringsAnOpenAlertForward();
    void twoAtOnceBecomeOne();
    void manyAtOnceBecomeOne_data();
    void manyAtOnceBecomeOne();
    void anotherJournalIsAnotherProgram();
    void takesNoPicturesOfTheFirst();
    void tellsOfOneThatHangs();

private:
    QStringList onJournal() const { return {u"--data-dir"_s, m_account->path(u"journal"_s)}; }

    std::unique_ptr<FreshAccount> m_account;
};

void tst_SecondStart::bringsAMinimisedWindowForward()
{
    RunningProgram first(*m_account, onJournal());
    QVERIFY(first.waitForWindow());
    first.minimise();
    QTRY_VERIFY(!first.isInFront());
    QVERIFY(QFile::link(m_account->path(u"journal"_s), m_account->path(u"link"_s)));

    RunningProgram second(*m_account, {u"--data-dir"_s, m_account->path(u"link"_s)});
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first.waitForWindow());
    first.sendSignal(SIGTERM);
    QCOMPARE(first.waitForEnd(), 0);
}

void tst_SecondStart::bringsAnOpenAlertForward()
{
    // A journal that cannot be opened, and nobody has read the alert yet.
    QDir().mkpath(m_account->path(u"journal/Vum.sqlite"_s));
    RunningProgram first(*m_account, onJournal());
    QVERIFY(first.waitForWindow());
    RunningProgram other(*m_account, {u"--data-dir"_s, m_account->path(u"other"_s)});
    QVERIFY(other.waitForWindow());
    QVERIFY(!first.isInFront());

    RunningProgram second(*m_account, onJournal());
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QCOMPARE(first.waitForEnd(), 1);
}

void tst_SecondStart::twoAtOnceBecomeOne()
{
    RunningProgram first(*m_account, onJournal());
    QTest::qWait(150);
    RunningProgram second(*m_account, onJournal());
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first.waitForWindow());
    QCOMPARE(second.errors(), QString());
}

void tst_SecondStart::manyAtOnceBecomeOne_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("hasRuntimeFolder");
    QTest::addColumn<bool>("afterACrash");
    for (int run = 0; run < 18; ++run)
        QTest::addRow("%d", run) << 2 + run % 3 << (run % 2 == 0) << (run % 3 == 2);
}

/// In the same moment, not one after the other.
void tst_SecondStart::manyAtOnceBecomeOne()
{
    QFETCH(int, count);
    QFETCH(bool, hasRuntimeFolder);
    QFETCH(bool, afterACrash);
    if (!hasRuntimeFolder)
        m_account->setVariable(u"XDG_RUNTIME_DIR"_s, m_account->path(u"no such folder"_s));
    if (afterACrash) {
        RunningProgram killed(*m_account, onJournal());
        QVERIFY(killed.waitForWindow());
        killed.sendSignal(SIGKILL);
        QCOMPARE(killed.waitForEnd(), -SIGKILL);
    }
    std::vector<std::unique_ptr<RunningProgram>> programs;
    // Each waits for the same moment, and becomes the program then.
    const QString waiting = u"until [ -e go ]; do :; done; exec \"$0\" \"$@\""_s;
    for (int i = 0; i < count; ++i)
        programs.push_back(std::make_unique<RunningProgram>(
            *m_account, QStringList{u"-c"_s, waiting, RunningProgram::file()} + onJournal(),
            m_account->path(QString()), u"/bin/bash"_s));
    QTest::qWait(100);
    QFile go(m_account->path(u"go"_s));
    QVERIFY(go.open(QIODevice::WriteOnly));
    const auto running = [&] {
        return std::count_if(programs.begin(), programs.end(),
                             [](const auto &program) { return program->isRunning(); });
    };
    QTRY_COMPARE_WITH_TIMEOUT(running(), 1, 20'000);
    for (const auto &program : programs) {
        const bool isFirst = program->isRunning();
        if (isFirst) {
            QVERIFY(program->waitForWindow());
            QVERIFY(program->waitForWindows(1));
            // It is still found by whoever comes later.
            RunningProgram later(*m_account, onJournal());
            QCOMPARE(later.waitForEnd(), 0);
            program->sendSignal(SIGTERM);
        }
        QCOMPARE(program->waitForEnd(), 0);
        if (!isFirst)
            QCOMPARE(program->errors(), QString());
    }
    const QStringList sockets = QDir(m_account->path(u"journal"_s))
                                    .entryList({u"tembra-*"_s}, QDir::AllEntries | QDir::System);
    QCOMPARE(sockets, QStringList());
}

void tst_SecondStart::anotherJournalIsAnotherProgram()
{
    RunningProgram first(*m_account, onJournal());
    QVERIFY(first.waitForWindow());
    RunningProgram second(*m_account, {u"--sample"_s});
    QVERIFY(second.waitForWindow());
    second.sendSignal(SIGTERM);
    QCOMPARE(second.waitForEnd(), 0);
    QTRY_VERIFY(first.isInFront());
}

void tst_SecondStart::takesNoPicturesOfTheFirst()
{
    RunningProgram first(*m_account, onJournal());
    QVERIFY(first.waitForWindow());
    RunningProgram second(*m_account,
                          onJournal()
                              + QStringList{u"--screenshots"_s, m_account->path(u"pictures"_s)});
    QCOMPARE(second.waitForEnd(), 1);
    QVERIFY2(second.errors().contains(u"Quit it to take pictures."), qPrintable(second.errors()));
    QVERIFY(!QFile::exists(m_account->path(u"pictures"_s)));
}

void tst_SecondStart::tellsOfOneThatHangs()
{
    RunningProgram first(*m_account, onJournal());
    QVERIFY(first.waitForWindow());
    first.sendSignal(SIGSTOP);
    RunningProgram second(*m_account, onJournal());
    QVERIFY(second.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QCOMPARE(second.waitForEnd(), 1);
    QVERIFY2(second.errors().contains(
                 u"tembra: Tembra is already running with this journal but does not answer."),
             qPrintable(second.errors()));

    first.sendSignal(SIGCONT);
    first.sendSignal(SIGTERM);
    QCOMPARE(first.waitForEnd(), 0);
}

QTEST_MAIN(tst_SecondStart)
#include "tst_SecondStart.moc"

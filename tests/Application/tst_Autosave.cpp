#include "RunningProgram.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <sqlite3.h>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The autosave of the real program, whose clock is put forward.
class tst_Autosave : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_account.reset(); }

    void anEditIsSavedOnce();
    void theAlertAboutAStoreThatCannotBeOpenedStays();

private:
    QString journal() const { return m_account->path(u"journal"_s); }
    /// Puts the program's clock so many seconds ahead of its start, and wakes the program up.
    void putClockAhead(int seconds) const;
    /// How often the journal was saved in its life.
    int saves() const;

    std::unique_ptr<FreshAccount> m_account;
};

void tst_Autosave::init()
{
    m_account = std::make_unique<FreshAccount>();
    m_account->setVariable(u"LD_PRELOAD"_s, QStringLiteral(SHIFTED_CLOCK));
    m_account->setVariable(u"TEMBRA_TEST_CLOCK"_s, m_account->path(u"clock"_s));
    // A sanitizer wants to be the first library.
    m_account->setVariable(u"ASAN_OPTIONS"_s,
                           qEnvironmentVariable("ASAN_OPTIONS") + u":verify_asan_link_order=0"_s);
}

void tst_Autosave::putClockAhead(int seconds) const
{
    QFile clock(m_account->path(u"clock"_s));
    QVERIFY(clock.open(QIODevice::WriteOnly));
    clock.write(QByteArray::number(seconds));
    clock.close();
    RunningProgram::press({u"shift"_s});
}

int tst_Autosave::saves() const
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *statement = nullptr;
    const QByteArray file = QFile::encodeName(journal() + u"/Vum.sqlite"_s);
    int count = -1;
    if (sqlite3_open_v2(file.constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK
        && sqlite3_prepare_v2(database, "SELECT saves FROM store_meta", -1, &statement, nullptr)
               == SQLITE_OK
        && sqlite3_step(statement) == SQLITE_ROW)
        count = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return count;
}

void tst_Autosave::anEditIsSavedOnce()
{
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    const int before = saves();
    QVERIFY(before >= 0);
    RunningProgram::press({u"ctrl+shift+n"_s});
    RunningProgram::type(u"Ana"_s);
    RunningProgram::press({u"Return"_s});
    QTest::qWait(1500); // Written as a draft by now, but not saved.
    QCOMPARE(saves(), before);

    putClockAhead(60);
    QTest::qWait(500);
    QCOMPARE(saves(), before);
    putClockAhead(121);
    QTRY_COMPARE(saves(), before + 1);
    // Nothing was edited since.
    for (const int seconds : {242, 363}) {
        putClockAhead(seconds);
        QTest::qWait(500);
        QCOMPARE(saves(), before + 1);
    }
    // An edit of whatever kind is saved again, and once.
    RunningProgram::press({u"ctrl+n"_s});
    QTest::qWait(1500);
    QCOMPARE(saves(), before + 1);
    putClockAhead(484);
    QTRY_COMPARE(saves(), before + 2);
    putClockAhead(605);
    QTest::qWait(500);
    QCOMPARE(saves(), before + 2);
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(saves(), before + 2);
}

void tst_Autosave::theAlertAboutAStoreThatCannotBeOpenedStays()
{
    QDir().mkpath(journal() + u"/Vum.sqlite"_s);
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    for (const int seconds : {121, 242}) {
        putClockAhead(seconds);
        QTest::qWait(500);
        QVERIFY(program.isRunning());
        QVERIFY(program.waitForWindows(1));
    }
    RunningProgram::press({u"Return"_s});
    QCOMPARE(program.waitForEnd(), 1);
}

QTEST_MAIN(tst_Autosave)
#include "tst_Autosave.moc"

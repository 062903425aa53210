#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Backup/BackupDocument.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "RunningProgram.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QDir>
#include <QTest>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Backups named on the command line, of a first start and of later ones. Each brings a teammate who
/// has its name.
class tst_OpenFilesAtStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_account = std::make_unique<FreshAccount>(); }
    void cleanup() { m_account.reset(); }

    void aFirstStartAsks();
    void aSecondStartLetsTheFirstAsk();
    void aSecondStartWhileOneIsAskedAbout();
    void startsInTheSameMomentAskAboutAllPackages();
    void oneThatCannotBeReadIsToldOf();
    void theSampleTakesOneToo();

private:
    QString journal() const { return m_account->path(u"journal"_s); }
    QStringList onJournal(const QStringList &packages = {}) const
    {
        return QStringList{u"--data-dir"_s, journal()} + packages;
    }
    /// In this folder of the account; returns the package's name.
    QString package(const QString &folder, const QString &name) const
    {
        const QString file = name + u".tembrabackup"_s;
        QDir().mkpath(m_account->path(folder));
        const auto written = BackupDocument{"[{\"name\":\"" + name.toUtf8() + "\"}]"}.write(
            m_account->path(folder + u'/' + file));
        return written ? file : QString();
    }
    /// Who is in the journal after the program has ended.
    QStringList namesAfter(RunningProgram &program) const
    {
        program.sendSignal(SIGTERM);
        if (program.waitForEnd() != 0)
            return {u"did not end well"_s};
        const auto folder = DataFolder::forOptions({.dataDirectory = journal()});
        ProgramServices services(*folder);
        QStringList names;
        const auto teammates = services.coreData.viewContext().fetch<Counterpart>(
            JournalQueries::counterparts());
        for (const auto &teammate : *teammates)
            names.append(teammate->name());
        return names;
    }

    std::unique_ptr<FreshAccount> m_account;
};

void tst_OpenFilesAtStart::aFirstStartAsks()
{
    // Named from where the shell is, in ways that shells name folders.
    const QStringList packages{package(u"here"_s, u"Ana"_s) + u'/',
                               u"../there/"_s + package(u"there"_s, u"Ben"_s),
                               m_account->path(u"there/"_s) + package(u"there"_s, u"Cem"_s)};
    RunningProgram program(*m_account, onJournal(packages), m_account->path(u"here"_s));
    QVERIFY(program.waitForWindows(2)); // The journal's and the prompt.
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Return"_s}); // Import …
    QVERIFY(program.waitForWindows(2));
    RunningProgram::press({u"Escape"_s}); // … but not this one …
    QVERIFY(program.waitForWindows(2));
    RunningProgram::press({u"Return"_s});
    QVERIFY(program.waitForWindows(1)); // … and that was all.
    QCOMPARE(namesAfter(program), (QStringList{u"Ana"_s, u"Cem"_s}));
}

void tst_OpenFilesAtStart::aSecondStartLetsTheFirstAsk()
{
    package(u"first"_s, u"Ana"_s);
    RunningProgram first(*m_account, onJournal(), m_account->path(u"first"_s));
    QVERIFY(first.waitForWindow());
    first.minimise();
    QTRY_VERIFY(!first.isInFront());

    const QString name = package(u"second"_s, u"Ben"_s);
    RunningProgram second(*m_account, onJournal({name}), m_account->path(u"second"_s));
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first.waitForWindows(2));
    QVERIFY(first.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QVERIFY(first.waitForWindows(1));
    QCOMPARE(namesAfter(first), QStringList(u"Ben"_s));
}

void tst_OpenFilesAtStart::aSecondStartWhileOneIsAskedAbout()
{
    RunningProgram first(*m_account, onJournal({package(u"first"_s, u"Ana"_s)}),
                         m_account->path(u"first"_s));
    QVERIFY(first.waitForWindows(2));

    RunningProgram second(*m_account, onJournal({package(u"second"_s, u"Ben"_s)}),
                          m_account->path(u"second"_s));
    QCOMPARE(second.waitForEnd(), 0);
    QTest::qWait(500);
    QVERIFY(first.waitForWindows(2)); // Still the one prompt, in front.
    QVERIFY(first.waitForWindow());
    RunningProgram::press({u"Escape"_s});
    QVERIFY(first.waitForWindows(2));
    RunningProgram::press({u"Return"_s});
    QVERIFY(first.waitForWindows(1));
    QCOMPARE(namesAfter(first), QStringList(u"Ben"_s));
}

void tst_OpenFilesAtStart::startsInTheSameMomentAskAboutAllPackages()
{
    RunningProgram one(*m_account, onJournal({package(u"here"_s, u"Ana"_s)}),
                       m_account->path(u"here"_s));
    RunningProgram other(*m_account, onJournal({package(u"there"_s, u"Ben"_s)}),
                         m_account->path(u"there"_s));
    QTRY_VERIFY_WITH_TIMEOUT(one.isRunning() != other.isRunning(), 20'000);
    RunningProgram &first = one.isRunning() ? one : other;
    RunningProgram &second = one.isRunning() ? other : one;
    QCOMPARE(second.waitForEnd(), 0);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(first.waitForWindows(2));
        QVERIFY(first.waitForWindow());
        RunningProgram::press({u"Return"_s});
    }
    QVERIFY(first.waitForWindows(1));
    QStringList names = namesAfter(first);
    names.sort();
    QCOMPARE(names, (QStringList{u"Ana"_s, u"Ben"_s}));
}

void tst_OpenFilesAtStart::oneThatCannotBeReadIsToldOf()
{
    RunningProgram program(*m_account, onJournal({u"nowhere.tembrabackup"_s}),
                           m_account->path(u"home"_s));
    QVERIFY(program.waitForWindows(2));
    QVERIFY(program.waitForWindow());
    // An alert keeps later starts waiting no longer than a prompt does.
    RunningProgram second(*m_account, onJournal({package(u"second"_s, u"Ben"_s)}),
                          m_account->path(u"second"_s));
    QCOMPARE(second.waitForEnd(2000), 0);
    RunningProgram::press({u"Return"_s}); // Okay.
    QVERIFY(program.waitForWindows(2));
    RunningProgram::press({u"Return"_s}); // Import.
    QVERIFY(program.waitForWindows(1));
    QCOMPARE(namesAfter(program), QStringList(u"Ben"_s));
}

void tst_OpenFilesAtStart::theSampleTakesOneToo()
{
    RunningProgram program(*m_account, {u"--sample"_s, package(u"here"_s, u"Ana"_s)},
                           m_account->path(u"here"_s));
    QVERIFY(program.waitForWindows(2));
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QVERIFY(program.waitForWindows(1));
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(m_account->filesLeft(), QStringList());
}

QTEST_MAIN(tst_OpenFilesAtStart)
#include "tst_OpenFilesAtStart.moc"

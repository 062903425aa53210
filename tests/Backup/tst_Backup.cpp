#include "Backup/Backup.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "support/FaultFileSystem.h"
#include "support/FaultVfs.h"
#include "support/FolderContents.h"
#include "support/JournalFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>

#include <cerrno>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Backup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_folder = std::make_unique<QTemporaryDir>();
        set(DefaultsManager::shouldBackUpDataKey, true);
        set(DefaultsManager::backupPathKey, QUrl::fromLocalFile(m_folder->path()));
        m_journal->addCounterpart(u"Ana"_s);
        m_teammates.reset();
        m_programName = u"tembra"_s;
        m_fileSystem = &systemFileSystem();
    }
    void cleanup()
    {
        m_teammates.reset();
        m_journal.reset();
    }

    void writesTheJournalIntoTheFolder()
    {
        backUp();
        const QByteArray json = content();
        QVERIFY(json.startsWith("[{\"name\":\"Ana\",\"objectID\":\""));
        QCOMPARE(listed(), QStringList(u"TembraData.tembrabackup"_s));
    }

    void theNextOneTakesItsPlace()
    {
        backUp();
        m_journal->addCounterpart(u"Ben"_s);
        backUp();
        QVERIFY(content().contains("Ben"));
        QCOMPARE(listed().size(), 1);
    }

    void aJournalWithoutTeammatesIsAnEmptyList()
    {
        QVERIFY(m_journal->context().deleteObject(m_journal->counterparts().first()));
        backUp();
        QCOMPARE(content(), "[]");
    }

    void aListThatIsNotWholeLeavesNobodyOut()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->addCounterpart(u"Cem"_s);
        m_teammates = QList{ben};
        backUp();
        QVERIFY(content().indexOf("Ben") < content().indexOf("Ana"));
        QVERIFY(content().indexOf("Ana") < content().indexOf("Cem"));
        const QByteArray before = content();
        m_teammates = QList<std::shared_ptr<Counterpart>>(); // As after a list that failed to load.
        backUp();
        QCOMPARE(content().size(), before.size());
        QVERIFY(content().contains("Ben"));
    }

    void keepsTheOrderItIsGiven()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        const auto ana = m_journal->counterparts().first();
        m_teammates = QList{ben, ana};
        backUp();
        QVERIFY(content().indexOf("Ben") < content().indexOf("Ana"));
    }

    void switchedOffItTouchesNothing()
    {
        set(DefaultsManager::shouldBackUpDataKey, false);
        backUp();
        QVERIFY(QDir(m_folder->path()).isEmpty());
    }

    void withoutItsFolderItSaysNothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("not there") << u"/no/such/folder"_s;
        QTest::newRow("a file") << u"settings.ini"_s; // Of the journal.
    }
    void withoutItsFolderItSaysNothing()
    {
        QFETCH(QString, path);
        if (path.endsWith("settings.ini"_L1))
            path = m_journal->filePath(u"settings.ini"_s);
        set(DefaultsManager::backupPathKey, QUrl::fromLocalFile(path));
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        backUp();
    }

    void aNightlyBuildKeepsToItself()
    {
        m_programName = u"tembraNightly-2"_s;
        backUp();
        QCOMPARE(listed(), QStringList(u"NightlyTembraData.tembrabackup"_s));
        m_programName = u"tembra"_s;
        QCOMPARE(backup().automaticFileName(), u"TembraData.tembrabackup"_s);
    }

    void aFailureIsLoggedAndKeepsTheOldPackage()
    {
        backUp();
        const auto before = snapshot(m_folder->path());
        m_journal->addCounterpart(u"Ben"_s);
        FaultFileSystem full;
        full.fail({.call = FaultFileSystem::Call::Write,
                   .systemError = ENOSPC,
                   .lasting = FaultFileSystem::Lasting::ForGood});
        m_fileSystem = &full;
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(u"^Could not write backup: .+full"_s));
        backUp();
        QCOMPARE(snapshot(m_folder->path()), before);
    }

    void aJournalThatCannotBeReadNeverEmptiesAPackage()
    {
        FaultVfs vfs;
        m_journal.reset();
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), vfs.name());
        set(DefaultsManager::shouldBackUpDataKey, true);
        set(DefaultsManager::backupPathKey, QUrl::fromLocalFile(m_folder->path()));
        m_journal->addCounterpart(u"Ana"_s);
        backUp();
        const auto before = snapshot(m_folder->path());
        m_teammates = m_journal->counterparts();
        m_journal->addCounterpart(u"Ben"_s);
        vfs.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood, FaultVfs::Write);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Could not write backup: .+"_s));
        backUp();
        vfs.failNothing();
        QCOMPARE(snapshot(m_folder->path()), before);
        m_teammates.reset();
        m_journal.reset(); // Before its file system.
    }

    void aFolderThatDoesNotAnswerIsGivenUp()
    {
        struct Gate
        {
            std::mutex mutex;
            std::condition_variable opened;
            bool isOpen = false;
        };
        // They outlive this program, as the thread that is left to itself may.
        static FaultFileSystem &stuck = *new FaultFileSystem;
        static Gate &gate = *new Gate;
        stuck.before(FaultFileSystem::Call::Sync, 1, [] {
            std::unique_lock lock(gate.mutex);
            gate.opened.wait(lock, [] { return gate.isOpen; });
        });
        m_fileSystem = &stuck;
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(
                                 u"^Could not write backup: The folder of .+ did not answer"_s));
        QElapsedTimer timer;
        timer.start();
        int drawn = 0;
        backup().backUp(m_journal->counterparts(), [&] { ++drawn; });
        QVERIFY(timer.elapsed() >= 10'000);
        QVERIFY(drawn > 100);
        {
            const std::lock_guard guard(gate.mutex);
            gate.isOpen = true;
        }
        gate.opened.notify_all();
        // What was given up removes its temporary files and replaces nothing any more.
        QTRY_VERIFY(
            QDir(m_folder->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void suggestsANameWithTheDay_data()
    {
        QTest::addColumn<Date>("now");
        QTest::addColumn<QString>("name");
        QTest::newRow("a day") << utc(2026, 3, 7) << u"Tembra_Backup_2026-03-07.tembrabackup"_s;
        QTest::newRow("late, already tomorrow in Tokyo")
            << utc(2019, 3, 3, 23) << u"Tembra_Backup_2019-03-04.tembrabackup"_s;
    }
    void suggestsANameWithTheDay()
    {
        QFETCH(Date, now);
        QFETCH(QString, name);
        // Whatever digits and calendar the user has.
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Persian));
        QCOMPARE(Backup::suggestedFileName(now, QTimeZone("Asia/Tokyo")), name);
        QLocale::setDefault(before);
    }

private:
    void set(QLatin1StringView key, const QVariant &value)
    {
        QSettings settings(m_journal->filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings.setValue(key, value);
        settings.sync();
    }

    Backup backup() const
    {
        return {m_journal->context(), m_journal->defaults, m_programName, *m_fileSystem};
    }
    void backUp() const
    {
        backup().backUp(m_teammates.value_or(m_journal->counterparts()), [] {});
    }

    QStringList listed() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    QByteArray content() const
    {
        QFile file(m_folder->filePath(u"TembraData.tembrabackup/teammates.json"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_programName = u"tembra"_s;
    FileSystem *m_fileSystem = &systemFileSystem();
    std::optional<QList<std::shared_ptr<Counterpart>>> m_teammates;
};

QTEST_GUILESS_MAIN(tst_Backup)

#include "tst_Backup.moc"

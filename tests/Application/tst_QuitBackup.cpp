#include "Application/AppDelegate.h"

#include "Backup/BackupDocument.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "ProgramInProcess.h"
#include "RunningProgram.h"
#include "support/FolderContents.h"
#include "support/PrivateMounts.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

#include <csignal>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr int goesOn = ProgramInProcess::goesOn;

} // namespace

/// The backup that is written when the program quits.
class tst_QuitBackup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isWrittenAtEveryWayOut_data();
    void isWrittenAtEveryWayOut();
    void holdsWhoIsListed();
    void holdsWhatIsBeingTyped();
    void oneThatWouldHoldFewerKeepsTheOldOne();
    void theNextOneTakesItsPlace();
    void isWrittenBeforeAnythingIsAsked();
    void isNotWrittenWhereItIsSwitchedOff();
    void isNotWrittenWithoutItsFolder_data();
    void isNotWrittenWithoutItsFolder();
    void oneThatFailsLetsTheProgramQuit_data();
    void oneThatFailsLetsTheProgramQuit();
    void aNightlyBuildKeepsToItself();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void set(bool backsUp, const QString &folder) const
    {
        QSettings settings(path(u"settings.ini"_s), QSettings::IniFormat);
        settings.setValue(DefaultsManager::shouldBackUpDataKey, backsUp);
        settings.setValue(DefaultsManager::backupPathKey, QUrl::fromLocalFile(folder));
    }
    void start()
    {
        m_program = std::make_unique<ProgramInProcess>(m_folder->path());
        QVERIFY(QTest::qWaitForWindowActive(m_program->window));
    }
    int quit()
    {
        return m_program->run([] { std::raise(SIGTERM); });
    }
    QStringList listed() const
    {
        return QDir(m_backups).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                         | QDir::NoDotAndDotDot);
    }
    QByteArray backup() const
    {
        return readFile(m_backups + u"/TembraData.tembrabackup/teammates.json"_s);
    }
    /// Makes writing fail. Nothing where that cannot be had here.
    std::shared_ptr<void> breakBackups(const QString &fault) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_backups;
    std::unique_ptr<ProgramInProcess> m_program;
};

void tst_QuitBackup::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_backups = path(u"backups"_s);
    QVERIFY(QDir().mkdir(m_backups));
    set(true, m_backups);
}

void tst_QuitBackup::cleanup()
{
    m_program.reset();
    QFile::setPermissions(m_backups, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_folder.reset();
}

void tst_QuitBackup::isWrittenAtEveryWayOut_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"menu", "window", "SIGTERM", "QApplication::quit", "log-out",
                            "log-out without questions"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_QuitBackup::isWrittenAtEveryWayOut()
{
    QFETCH(QString, way);
    start();
    m_program->addTeammate(u"Ana"_s);
    bool isWrittenAtLogOut = true;
    const auto leave = [&] {
        if (way == u"menu") {
            QTest::keyClick(QApplication::activeWindow(), Qt::Key_Q, Qt::ControlModifier);
        } else if (way == u"window") {
            m_program->window->close();
        } else if (way == u"SIGTERM") {
            std::raise(SIGTERM);
        } else {
            if (way != u"QApplication::quit") {
                m_program->delegate->prepareForLogout(way == u"log-out");
                isWrittenAtLogOut = backup().contains("Ana");
            }
            QApplication::quit();
        }
    };
    QCOMPARE(m_program->run(leave), 0);
    QVERIFY(isWrittenAtLogOut); // The desktop may wait no longer.
    QCOMPARE(listed(), QStringList(u"TembraData.tembrabackup"_s));
    QVERIFY2(backup().startsWith("[{\"name\":\"Ana\",\"objectID\":\""), backup().constData());
    QCOMPARE(m_program->alerts->messages, QStringList());
}

/// In the order of the list.
void tst_QuitBackup::holdsWhoIsListed()
{
    start();
    for (const QString &name : {u"Zoe"_s, u"Ana"_s, u"Émile"_s})
        m_program->addTeammate(name);
    QCOMPARE(quit(), 0);
    const QByteArray json = backup();
    qsizetype place = 0;
    for (const auto &teammate : m_program->delegate->counterpartsViewController()->counterparts()) {
        const qsizetype found = json.indexOf(teammate->name().toUtf8());
        QVERIFY2(found > place, json.constData());
        place = found;
    }
    QCOMPARE(json.count("\"name\":"), 3);
}

void tst_QuitBackup::holdsWhatIsBeingTyped()
{
    start();
    const auto typeAndQuit = [&] {
        m_program->find<QAction>(u"newTeammateAction"_s)->trigger();
        QTRY_VERIFY(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
        QTest::keyClicks(QApplication::focusWidget(), u"Ben"_s);
        std::raise(SIGTERM);
    };
    QCOMPARE(m_program->run(typeAndQuit), 0);
    QVERIFY2(backup().contains("Ben"), backup().constData());
}

void tst_QuitBackup::oneThatWouldHoldFewerKeepsTheOldOne()
{
    const QByteArray before = R"([{"name":"Ana"},{"name":"Ben"}])";
    QVERIFY(BackupDocument{before}.write(m_backups + u"/TembraData.tembrabackup"_s));
    start(); // With an empty journal.
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(
                             u"^The backup before held more teammates or meetings; it is kept as "
                             "TembraData .+\\.tembrabackup$"_s));
    QCOMPARE(quit(), 0);
    QCOMPARE(backup(), "[]");
    const QStringList kept = listed().filter(u"TembraData 20"_s);
    QCOMPARE(kept.size(), 1);
    QCOMPARE(readFile(m_backups + u'/' + kept.first() + u"/teammates.json"_s), before);
}

void tst_QuitBackup::theNextOneTakesItsPlace()
{
    start();
    QCOMPARE(quit(), 0);
    QCOMPARE(backup(), "[]");
    m_program.reset();
    start();
    m_program->addTeammate(u"Ben"_s);
    QCOMPARE(quit(), 0);
    QVERIFY(backup().contains("Ben"));
    QCOMPARE(listed(), QStringList(u"TembraData.tembrabackup"_s));
}

/// Whoever then stays has it all the same.
void tst_QuitBackup::isWrittenBeforeAnythingIsAsked()
{
    start();
    m_program->addTeammate(u"Ana"_s);
    m_program->services.coreData.setCommitEditing([] { return false; });
    QTest::ignoreMessage(QtWarningMsg, "AppDelegate unable to commit editing to terminate");
    QCOMPARE(quit(), goesOn);
    QVERIFY(backup().contains("Ana"));
    QVERIFY(m_program->window->isVisible());
}

void tst_QuitBackup::isNotWrittenWhereItIsSwitchedOff()
{
    set(false, m_backups);
    start();
    m_program->addTeammate(u"Ana"_s);
    QCOMPARE(quit(), 0);
    QCOMPARE(listed(), QStringList());
}

void tst_QuitBackup::isNotWrittenWithoutItsFolder_data()
{
    QTest::addColumn<bool>("isFile");
    QTest::newRow("gone") << false;
    QTest::newRow("a file") << true;
}

void tst_QuitBackup::isNotWrittenWithoutItsFolder()
{
    QFETCH(bool, isFile);
    start(); // While it is still there.
    m_program->addTeammate(u"Ana"_s);
    QVERIFY(QDir().rmdir(m_backups));
    if (isFile)
        writeFile(m_backups, "mine");
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QCOMPARE(quit(), 0);
    QCOMPARE(m_program->alerts->messages, QStringList());
    QVERIFY(!m_program->hasChanges());
    QCOMPARE(QFileInfo::exists(m_backups), isFile);
    QCOMPARE(readFile(m_backups), isFile ? QByteArray("mine") : QByteArray());
}

std::shared_ptr<void> tst_QuitBackup::breakBackups(const QString &fault) const
{
    if (fault == u"something else in its place") {
        writeFile(m_backups + u"/TembraData.tembrabackup"_s, "mine");
        return std::make_shared<int>();
    }
    if (fault == u"may not be written" && ::geteuid() != 0) {
        QFile::setPermissions(m_backups, QFile::ReadOwner | QFile::ExeOwner);
        return std::make_shared<int>();
    }
    const auto disk = std::make_shared<MountedDisk>(
        MountedDisk::inMemory(m_backups, "size=64k,nr_inodes=8"));
    if (!disk->isMounted())
        return nullptr;
    if (fault == u"full disk")
        writeFile(m_backups + u"/film"_s, QByteArray(64 << 10, 'x'));
    else if (!disk->makeReadOnly())
        return nullptr;
    return disk;
}

void tst_QuitBackup::oneThatFailsLetsTheProgramQuit_data()
{
    QTest::addColumn<QString>("said");
    QTest::newRow("something else in its place") << u"is not a folder"_s;
    QTest::newRow("may not be written") << u"(can be read but not written|You may not)"_s;
    QTest::newRow("full disk") << u"The disk is full"_s;
}

void tst_QuitBackup::oneThatFailsLetsTheProgramQuit()
{
    QFETCH(QString, said);
    const auto broken = breakBackups(QString::fromLatin1(QTest::currentDataTag()));
    if (!broken)
        QSKIP(qPrintable(PrivateMounts::obstacle()));
    const auto before = snapshot(m_backups);
    start();
    m_program->addTeammate(u"Ana"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Could not write backup: .*"_s + said));
    QCOMPARE(quit(), 0);
    QCOMPARE(m_program->alerts->messages, QStringList());
    QVERIFY(!m_program->hasChanges()); // It was saved.
    QCOMPARE(snapshot(m_backups), before);
}

/// The program's own name decides.
void tst_QuitBackup::aNightlyBuildKeepsToItself()
{
    const FreshAccount account;
    const QString nightly = account.path(u"tembraNightly"_s);
    QVERIFY(QFile::copy(RunningProgram::file(), nightly));
    for (const QString &program : {nightly, RunningProgram::file()}) {
        RunningProgram running(account, {u"--data-dir"_s, m_folder->path()}, {}, program);
        QVERIFY(running.waitForWindow());
        running.sendSignal(SIGTERM);
        QCOMPARE(running.waitForEnd(), 0);
        const QStringList expected = program == nightly
                                         ? QStringList(u"NightlyTembraData.tembrabackup"_s)
                                         : QStringList{u"NightlyTembraData.tembrabackup"_s,
                                                       u"TembraData.tembrabackup"_s};
        QCOMPARE(listed(), expected);
    }
    QCOMPARE(backup(), "[]");
}

int main(int argc, char *argv[])
{
    PrivateMounts::enter();
    const QApplication application(argc, argv);
    tst_QuitBackup test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_QuitBackup.moc"

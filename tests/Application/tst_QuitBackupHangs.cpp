#include "Application/AppDelegate.h"

#include "Backup/BackupDocument.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/StatusLine.h"
#include "ProgramInProcess.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

#include <atomic>
#include <csignal>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

std::thread::id mainThread;
std::atomic<bool> diskHangs = false;

/// The journal's own disk always answers.
bool isBackup(int file)
{
    return QFile::symLinkTarget(u"/proc/self/fd/%1"_s.arg(file)).contains(u"/backups/"_s);
}

} // namespace

/// Stands in for the system's: a disk that does not answer keeps whoever writes to it waiting, which
/// is never to be the main thread.
extern "C" int fsync(int file)
{
    const bool waits = diskHangs && std::this_thread::get_id() != mainThread && isBackup(file);
    while (waits && diskHangs)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return int(::syscall(SYS_fsync, file));
}

/// The backup before quitting, into a folder that takes its time or never answers.
class tst_QuitBackupHangs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aSlowFolderIsWaitedFor();
    void aFolderThatDoesNotAnswerIsGivenUp();
    void aManualBackupIsFinishedFirst();
    void aManualBackupThatHangsLeavesTheOldPackage();

private:
    /// Begins a backup that the user asked for, and switches the automatic one off. Calls
    /// @p didChoose before anything is written.
    void beginManualBackup(const QString &path, const std::function<void()> &didChoose = {}) const;

    QString task() const
    {
        const auto *label = m_program->window->statusLine().findChild<EmojiLabel *>(
            u"statusTask"_s);
        return label && label->isVisible() ? label->text() : QString();
    }
    bool isWritten() const
    {
        return QFile::exists(m_folder->filePath(u"backups/TembraData.tembrabackup"_s));
    }
    /// Quits, and again and again while it is at it; what the status line said meanwhile.
    int quitImpatiently();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProgramInProcess> m_program;
    QStringList m_said;
    qint64 m_longestBreak = 0; ///< Between two turns of the event loop, in milliseconds.
};

void tst_QuitBackupHangs::init()
{
    mainThread = std::this_thread::get_id();
    m_folder = std::make_unique<QTemporaryDir>();
    const QString backups = m_folder->filePath(u"backups"_s);
    QVERIFY(QDir().mkdir(backups));
    {
        QSettings settings(m_folder->filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings.setValue(DefaultsManager::shouldBackUpDataKey, true);
        settings.setValue(DefaultsManager::backupPathKey, QUrl::fromLocalFile(backups));
    }
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
    QVERIFY(QTest::qWaitForWindowActive(m_program->window));
    m_program->addTeammate(u"Ana"_s);
    m_said.clear();
    m_longestBreak = 0;
    diskHangs = true;
}

void tst_QuitBackupHangs::cleanup()
{
    diskHangs = false;
    // A write that was given up ends while its folder is there.
    QTRY_VERIFY(QDir(m_folder->filePath(u"backups"_s))
                    .entryList({u"*.tmp"_s}, QDir::AllEntries | QDir::Hidden)
                    .isEmpty());
    m_program.reset();
    m_folder.reset();
}

int tst_QuitBackupHangs::quitImpatiently()
{
    QElapsedTimer sinceLast;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (sinceLast.isValid())
            m_longestBreak = std::max(m_longestBreak, sinceLast.restart());
        if (const QString said = task(); !said.isEmpty() && !m_said.contains(said))
            m_said.append(said);
        m_program->delegate->terminate();
    });
    return m_program->run([&] {
        sinceLast.start();
        watch.start(50);
        std::raise(SIGTERM);
    });
}

void tst_QuitBackupHangs::aSlowFolderIsWaitedFor()
{
    QTimer::singleShot(2000, this, [] { diskHangs = false; });
    QElapsedTimer timer;
    timer.start();
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QCOMPARE(quitImpatiently(), 0);
    QVERIFY2(timer.elapsed() < 6000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(isWritten());
    QCOMPARE(m_said, QStringList(u"Writing the backup before quitting …"_s));
    QVERIFY2(m_longestBreak < 300, qPrintable(QString::number(m_longestBreak)));
}

void tst_QuitBackupHangs::aFolderThatDoesNotAnswerIsGivenUp()
{
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"^Could not write backup: The folder of “.+/backups/"
                                            "TembraData.tembrabackup” did not answer"_s));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(quitImpatiently(), 0);
    QVERIFY2(timer.elapsed() >= 10'000 && timer.elapsed() < 11'000,
             qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!isWritten());
    QVERIFY(!m_program->hasChanges()); // What matters most is saved.
    QCOMPARE(m_program->alerts->messages, QStringList());
    QCOMPARE(m_said, QStringList(u"Writing the backup before quitting …"_s));
    QVERIFY2(m_longestBreak < 300, qPrintable(QString::number(m_longestBreak)));
}

void tst_QuitBackupHangs::beginManualBackup(const QString &path,
                                            const std::function<void()> &didChoose) const
{
    QSettings(m_folder->filePath(u"settings.ini"_s), QSettings::IniFormat)
        .setValue(DefaultsManager::shouldBackUpDataKey, false);
    QTimer answer;
    connect(&answer, &QTimer::timeout, &answer, [&] {
        auto *dialog = qobject_cast<PackageDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
        if (name->text() != path) {
            name->selectAll();
            QTest::keyClicks(name, path);
        }
        // The first time it may only close the list of completions.
        QTest::keyClick(name, Qt::Key_Return);
        if (!dialog->isVisible() && didChoose)
            didChoose();
    });
    answer.start(50);
    QTRY_COMPARE(m_program->delegate->counterpartsViewController()->counterparts().size(), 1);
    m_program->find<QAction>(u"createBackupAction"_s)->trigger();
}

void tst_QuitBackupHangs::aManualBackupIsFinishedFirst()
{
    const QString path = m_folder->filePath(u"backups/Mine.tembrabackup"_s);
    beginManualBackup(path);
    QTimer::singleShot(2000, this, [] { diskHangs = false; });
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QCOMPARE(quitImpatiently(), 0);
    QVERIFY(BackupDocument::read(path)->teammatesJsonData.value_or("").contains("Ana"));
    QVERIFY(m_said.contains(u"Finishing the backup before quitting …"_s));
}

void tst_QuitBackupHangs::aManualBackupThatHangsLeavesTheOldPackage()
{
    const QString path = m_folder->filePath(u"backups/Mine.tembrabackup"_s);
    // From the main thread, for which the disk never hangs.
    beginManualBackup(path, [&] { QVERIFY(BackupDocument{"[]"}.write(path)); });
    QCOMPARE(BackupDocument::read(path)->teammatesJsonData, QByteArray("[]"));
    QTest::ignoreMessage(QtWarningMsg, "Could not write backup: It was cancelled.");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(quitImpatiently(), 0);
    QVERIFY2(timer.elapsed() >= 10'000 && timer.elapsed() < 12'000,
             qPrintable(QString::number(timer.elapsed())));
    diskHangs = false;
    QTRY_VERIFY(QDir(path).entryList({u"*.tmp"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());
    QCOMPARE(BackupDocument::read(path)->teammatesJsonData, QByteArray("[]"));
    QVERIFY(!m_program->hasChanges());
}

QTEST_MAIN(tst_QuitBackupHangs)
#include "tst_QuitBackupHangs.moc"

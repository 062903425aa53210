#include "Application/AppDelegate.h"

#include "ProgramInProcess.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString notAvailable = u"Your specified backup location is not available. Update your "
                             "preferences to continue making backups."_s;

} // namespace

/// The look at the backup folder when the program starts.
class tst_BackupFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void oneThatIsMissingIsToldOf_data();
    void oneThatIsMissingIsToldOf();
    void otherwiseNothingIsSaid_data();
    void otherwiseNothingIsSaid();
    void continueGoesOn();
    void quitsUnderTheAlert();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    /// Starts the program with these settings; an invalid URL is none.
    void start(bool backsUp, const QUrl &folder);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProgramInProcess> m_program;
};

void tst_BackupFolder::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkdir(path(u"there"_s)));
    QVERIFY(QDir().mkdir(path(u"home"_s)));
    QFile file(path(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    qputenv("HOME", QFile::encodeName(path(u"home"_s)));
    qunsetenv("XDG_CONFIG_HOME");
}

void tst_BackupFolder::cleanup()
{
    m_program.reset();
    m_folder.reset();
}

void tst_BackupFolder::start(bool backsUp, const QUrl &folder)
{
    {
        QSettings settings(path(u"settings.ini"_s), QSettings::IniFormat);
        settings.setValue(DefaultsManager::shouldBackUpDataKey, backsUp);
        if (folder.isValid())
            settings.setValue(DefaultsManager::backupPathKey, folder);
    }
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
}

void tst_BackupFolder::oneThatIsMissingIsToldOf_data()
{
    QTest::addColumn<QString>("folder"); // In the test's own, or the URL; nothing: none is chosen.
    QTest::newRow("was removed") << u"gone"_s;
    QTest::newRow("below a file") << u"file/below"_s;
    QTest::newRow("was never chosen, and there are no Documents") << QString();
    QTest::newRow("on another computer") << u"sftp://example.org/backups"_s;
}

void tst_BackupFolder::oneThatIsMissingIsToldOf()
{
    QFETCH(QString, folder);
    QUrl url;
    if (!folder.isEmpty())
        url = folder.contains(u':') ? QUrl(folder) : QUrl::fromLocalFile(path(folder));
    start(true, url);
    QStringList buttons;
    bool isSheetOfTheWindow = false;
    const auto readThenContinue = [&](Alert &alert) {
        for (const QPushButton *button : alert.buttons())
            buttons.append(button->text());
        isSheetOfTheWindow = alert.parentWidget() == m_program->window
                             && alert.windowModality() == Qt::WindowModal;
        alert.reject();
    };
    QCOMPARE(m_program->run([] {}, {readThenContinue}), ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList(notAvailable)); // Once.
    QCOMPARE(m_program->alerts->informativeTexts, QStringList(QString()));
    QCOMPARE(buttons.last(), u"Continue"_s);
    QVERIFY(isSheetOfTheWindow);
}

void tst_BackupFolder::otherwiseNothingIsSaid_data()
{
    QTest::addColumn<bool>("backsUp");
    QTest::addColumn<QString>("folder"); // In the test's own; nothing: none is chosen.
    QTest::newRow("it is there") << true << u"there"_s;
    QTest::newRow("something is there") << true << u"file"_s;
    QTest::newRow("none was chosen, but there are Documents") << true << QString();
    QTest::newRow("off, and it is there") << false << u"there"_s;
    QTest::newRow("off, and it is missing") << false << u"gone"_s;
}

void tst_BackupFolder::otherwiseNothingIsSaid()
{
    QFETCH(bool, backsUp);
    QFETCH(QString, folder);
    QVERIFY(QDir().mkdir(path(u"home/Documents"_s)));
    start(backsUp, folder.isEmpty() ? QUrl() : QUrl::fromLocalFile(path(folder)));
    QCOMPARE(m_program->run([] {}), ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList());
}

void tst_BackupFolder::continueGoesOn()
{
    start(true, QUrl::fromLocalFile(path(u"gone"_s)));
    QCOMPARE(m_program->run([] {}, {AlertReader::pressKey(Qt::Key_Escape)}),
             ProgramInProcess::goesOn);
    QVERIFY(m_program->window->isVisible());
    QVERIFY(!m_program->hasChanges());
    QVERIFY(!QFile::exists(path(u"gone"_s)));
    // It does not come again.
    QCOMPARE(m_program->run([] {}), ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList());
}

void tst_BackupFolder::quitsUnderTheAlert()
{
    start(true, QUrl::fromLocalFile(path(u"gone"_s)));
    m_program->addTeammate(u"Ana"_s);
    QTest::failOnWarning(QRegularExpression(u"backup"_s));
    const auto quitUnderIt = [](Alert &) { std::raise(SIGTERM); };
    QCOMPARE(m_program->run([] {}, {quitUnderIt}), 0);
    QCOMPARE(m_program->alerts->messages, QStringList(notAvailable));
    QVERIFY(!m_program->hasChanges());
}

QTEST_MAIN(tst_BackupFolder)
#include "tst_BackupFolder.moc"

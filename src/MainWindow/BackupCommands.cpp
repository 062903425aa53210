#include "MainWindow/BackupCommands.h"

#include "Backup/BackupDocument.h"
#include "Backup/ImportTexts.h"
#include "Foundation/Time/Clock.h"
#include "MainWindow/StatusLine.h"
#include "Model/JournalServices.h"

#include <QAction>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

#include <chrono>

namespace tembra {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeWithoutProgress = 300ms;

} // namespace

BackupCommands::BackupCommands(CoreDataInterface &coreData, const JournalServices &services,
                               StatusLine &statusLine, QWidget *window)
    : QObject(window)
    , m_services(services)
    , m_statusLine(statusLine)
    , m_backup(coreData, services.clock, window)
    , m_import(coreData, window)
    , m_importQueue(m_import, services.dates, window)
{
    m_progressDelay.setSingleShot(true);
    m_progressDelay.setInterval(timeWithoutProgress);
    connectSignals();
}

BackupCommands::~BackupCommands() = default;

void BackupCommands::connectSignals()
{
    connect(&m_progressDelay, &QTimer::timeout, this,
            [this] { m_statusLine.showProgress(m_activity); });
    connect(&m_statusLine, &StatusLine::cancelRequested, this, &BackupCommands::cancelActivity);
    connect(&m_statusLine, &StatusLine::messageDismissed, this,
            [this] { m_undoableImports.clear(); });
    connect(&m_backup, &BackupPanel::began, this, [this](const QString &activity) {
        setActionsEnabled(false);
        beginActivity(activity);
    });
    connect(&m_backup, &BackupPanel::ended, this, [this] {
        endActivity();
        setActionsEnabled(true);
    });
    connect(&m_backup, &BackupPanel::wrote, this, &BackupCommands::didWriteBackup);
    // The status line shows one activity at a time.
    connect(&m_importQueue, &ImportQueue::inspectionBegan, this, [this](const QString &activity) {
        if (!m_backup.isRunning())
            beginActivity(activity);
    });
    connect(&m_importQueue, &ImportQueue::inspectionEnded, this, [this] {
        if (!m_backup.isRunning())
            endActivity();
    });
    connect(&m_import, &Import::imported, this, &BackupCommands::didImport);
    connect(&m_import, &Import::undone, this, &BackupCommands::didUndo);
    connect(&m_import, &Import::notUndone, this, &BackupCommands::showImportMessage);
    connect(&m_import, &Import::cancelled, this,
            [this] { showMessage(tr("Cancelled; nothing was changed.", "After an import")); });
}

void BackupCommands::addTo(QMenu &menu)
{
    const auto add = [&](const QString &title, const QString &objectName) {
        QAction *action = menu.addAction(title);
        action->setObjectName(objectName);
        action->setMenuRole(QAction::NoRole);
        m_actions.append(action);
        return action;
    };
    connect(add(tr("Create &Backup…", "File menu"), u"createBackupAction"_s), &QAction::triggered,
            this, &BackupCommands::createBackupRequested);
    connect(add(tr("&Import Backup…", "File menu"), u"importBackupAction"_s), &QAction::triggered,
            this, &BackupCommands::importBackupRequested);
}

QStringList BackupCommands::packagesIn(const QMimeData &dragged)
{
    const PackageType type = importTexts::backupType();
    QStringList packages;
    for (const QUrl &url : dragged.urls()) {
        QString path = url.toLocalFile();
        if (path.endsWith(u'/'))
            path.chop(1); // As some file managers name folders.
        if (url.isLocalFile() && type.hasSuffix(path))
            packages.append(path);
    }
    return packages;
}

void BackupCommands::endTasks(std::chrono::milliseconds timeout,
                              const std::function<void()> &whileWaiting)
{
    m_import.cancelAndWait();
    m_progressDelay.stop(); // From here on the caller shows what is waited for.
    const QDeadlineTimer deadline(timeout);
    while (m_backup.isRunning() && !deadline.hasExpired())
        whileWaiting();
    m_backup.cancel();
    while (m_backup.isRunning())
        whileWaiting();
}

void BackupCommands::beginActivity(const QString &activity)
{
    m_activity = activity;
    m_progressDelay.start();
}

void BackupCommands::endActivity()
{
    m_progressDelay.stop();
    m_statusLine.endProgress();
}

void BackupCommands::cancelActivity()
{
    m_backup.cancel();
    m_importQueue.cancelInspection();
}

void BackupCommands::setActionsEnabled(bool enabled)
{
    for (QAction *action : std::as_const(m_actions))
        action->setEnabled(enabled);
}

void BackupCommands::didImport(const CompletedImport &import)
{
    if (import.counts.teammates == 0) {
        showMessage(tr("“%1” holds no teammates.", "After an import; %1 is a backup's name")
                        .arg(importTexts::nameOf(import.packagePath)));
        return;
    }
    m_undoableImports.push_back(import);
    showImportMessage(import);
}

void BackupCommands::showImportMessage(const CompletedImport &import)
{
    showMessage(
        tr("“%1” is imported: %2.", "%1 is a backup's name, %2 how many teammates and meetings")
            .arg(importTexts::nameOf(import.packagePath), importTexts::amount(import.counts)));
}

void BackupCommands::didUndo(const CompletedImport &import)
{
    m_undoableImports.pop_back();
    showMessage(tr("The import of “%1” was undone.", "%1 is a backup's name")
                    .arg(importTexts::nameOf(import.packagePath)));
}

void BackupCommands::didWriteBackup(const WrittenBackup &backup)
{
    const QLocale locale;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(
        qint64(m_services.clock.now().toUnixMilliseconds()));
    QString text = tr("The backup “%1” is complete: read back and found whole at %2, %3.",
                      "%1 is a backup's name, %2 the time of day, %3 its size")
                       .arg(importTexts::nameOf(backup.packagePath),
                            locale.toString(now.time(), QLocale::ShortFormat),
                            locale.formattedDataSize(backup.size));
    if (!backup.replacedCopy.isEmpty())
        text += u' '
                + tr("The one before held more and is kept as “%1”.", "%1 is a backup's name")
                      .arg(importTexts::nameOf(backup.replacedCopy));
    showMessage(text);
}

/// Every message keeps the offer to undo the newest import.
void BackupCommands::showMessage(const QString &text)
{
    if (m_undoableImports.empty())
        return m_statusLine.showMessage(text);
    m_statusLine.showMessage(text, tr("Undo Import…", "Button: asks, then undoes an import"),
                             [this] { m_import.undo(m_undoableImports.back()); });
}

} // namespace tembra

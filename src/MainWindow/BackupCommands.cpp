#include "MainWindow/BackupCommands.h"

#include "Backup/BackupDocument.h"
#include "Backup/ImportTexts.h"
#include "Foundation/Time/Clock.h"
#include "MainWindow/StatusLine.h"
#include "Model/JournalServices.h"

#include <QAction>
#include <QDateTime>
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
    , m_prompts(m_import, services.dates, window)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(timeWithoutProgress);
    connect(&m_patience, &QTimer::timeout, this, [this] { m_statusLine.showProgress(m_activity); });
    connect(&m_statusLine, &StatusLine::cancelRequested, this, &BackupCommands::cancelTask);
    connect(&m_backup, &BackupPanel::began, this, &BackupCommands::followTask);
    connect(&m_backup, &BackupPanel::ended, this, &BackupCommands::endTask);
    connect(&m_backup, &BackupPanel::wrote, this, &BackupCommands::sayWrote);
    connect(&m_import, &Import::began, this, &BackupCommands::followTask);
    connect(&m_import, &Import::ended, this, &BackupCommands::endTask);
    connect(&m_import, &Import::progressed, &m_statusLine, &StatusLine::setProgress);
    connect(&m_import, &Import::imported, this, &BackupCommands::sayImported);
    connect(&m_import, &Import::cancelled, this, [this] {
        m_statusLine.showMessage(tr("Cancelled; nothing was changed.", "After an import"));
    });
    connect(&m_import, &Import::undone, this, [this](const ImportOutcome &outcome) {
        m_statusLine.showMessage(tr("The import of “%1” was undone.", "%1 is a backup's name")
                                     .arg(importTexts::nameOf(outcome.packagePath)));
    });
}

/// While all that is needed to hear of its end is still there.
BackupCommands::~BackupCommands()
{
    stop();
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

void BackupCommands::followTask(const QString &activity)
{
    m_activity = activity;
    m_patience.start();
    for (QAction *action : std::as_const(m_actions))
        action->setEnabled(false);
}

void BackupCommands::endTask()
{
    m_patience.stop();
    m_statusLine.endProgress();
    for (QAction *action : std::as_const(m_actions))
        action->setEnabled(true);
}

void BackupCommands::cancelTask()
{
    m_import.cancel();
    m_backup.cancel();
}

void BackupCommands::sayImported(const ImportOutcome &outcome)
{
    const QString name = importTexts::nameOf(outcome.packagePath);
    if (outcome.counts.teammates == 0) {
        m_statusLine.showMessage(
            tr("“%1” holds no teammates.", "After an import; %1 is a backup's name").arg(name));
        return;
    }
    m_statusLine.showMessage(tr("“%1” is imported: %2.",
                                "%1 is a backup's name, %2 how many teammates and meetings")
                                 .arg(name, importTexts::amount(outcome.counts)),
                             tr("Undo Import…", "Button: asks, then undoes an import"),
                             [this, outcome] { m_import.undo(outcome); });
}

void BackupCommands::sayWrote(const QString &packagePath, qint64 size)
{
    const QLocale locale;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(
        qint64(m_services.clock.now().toUnixMilliseconds()));
    m_statusLine.showMessage(tr("The backup “%1” is complete: read back and found whole at %2, %3.",
                                "%1 is a backup's name, %2 the time of day, %3 its size")
                                 .arg(importTexts::nameOf(packagePath),
                                      locale.toString(now.time(), QLocale::ShortFormat),
                                      locale.formattedDataSize(size)));
}

} // namespace tembra

#pragma once

#include "Backup/BackupPanel.h"
#include "Backup/Import.h"
#include "Backup/ImportQueue.h"

#include <QTimer>

#include <chrono>
#include <vector>

class QAction;
class QMenu;
class QMimeData;

namespace tembra {

class StatusLine;
struct JournalServices;

/// The commands of the main window for backups and imports, and what the status line tells of them.
class BackupCommands final : public QObject
{
    Q_OBJECT

public:
    BackupCommands(CoreDataInterface &coreData, const JournalServices &services,
                   StatusLine &statusLine, QWidget *window);
    ~BackupCommands() override;

    void addTo(QMenu &menu);
    void createBackup(const QList<ObjectID> &teammates) { m_backup.createBackup(teammates); }
    void importBackup() { m_import.chooseAndImport(); }
    /// Asks for each whether it is to be imported.
    void openPackages(const QStringList &packagePaths) { m_importQueue.enqueue(packagePaths); }
    /// Ends what is in progress: cancels an import, and waits for a backup until @p timeout, then
    /// cancels it, too. Meanwhile @p whileWaiting is called again and again.
    void endTasks(std::chrono::milliseconds timeout, const std::function<void()> &whileWaiting);

    /// The backup packages among the files that are being dragged.
    static QStringList packagesIn(const QMimeData &dragged);

Q_SIGNALS:
    void createBackupRequested();
    void importBackupRequested();

private:
    void connectSignals();
    void beginActivity(const QString &activity);
    void endActivity();
    void cancelActivity();
    void didImport(const CompletedImport &import);
    void didUndo(const CompletedImport &import);
    void didWriteBackup(const WrittenBackup &backup);
    void showMessage(const QString &text);
    void showImportMessage(const CompletedImport &import);
    void setActionsEnabled(bool enabled);

    const JournalServices &m_services;
    StatusLine &m_statusLine;
    BackupPanel m_backup;
    Import m_import;
    ImportQueue m_importQueue;
    QTimer m_progressDelay; ///< Activities that end sooner show no progress.
    QString m_activity;
    std::vector<CompletedImport> m_undoableImports; ///< The newest one, at the end, is offered.
    QList<QAction *> m_actions;
};

} // namespace tembra

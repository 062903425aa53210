#pragma once

#include "Backup/BackupPanel.h"
#include "Backup/Import.h"
#include "Backup/ImportPrompts.h"

#include <QTimer>

class QAction;
class QMenu;
class QMimeData;

namespace tembra {

class StatusLine;
struct JournalServices;

/// Backing up and importing in the main window: the commands, and what the status line says of them.
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
    void openPackages(const QStringList &packagePaths) { m_prompts.open(packagePaths); }
    /// Ends an import that is going on; it will have changed nothing.
    void stop() { m_import.stop(); }

    /// The backup packages among the files that are being dragged.
    static QStringList packagesIn(const QMimeData &dragged);

Q_SIGNALS:
    void createBackupRequested();
    void importBackupRequested();

private:
    void followTask(const QString &activity);
    void endTask();
    void cancelTask();
    void sayImported(const ImportOutcome &outcome);
    void sayWrote(const QString &packagePath, qint64 size);

    const JournalServices &m_services;
    StatusLine &m_statusLine;
    BackupPanel m_backup;
    Import m_import;
    ImportPrompts m_prompts;
    QTimer m_patience; ///< What is done sooner needs no progress.
    QString m_activity;
    QList<QAction *> m_actions;
};

} // namespace tembra

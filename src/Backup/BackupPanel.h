#pragma once

#include "Backup/BackgroundTask.h"
#include "Store/Schema/ObjectID.h"

#include <QList>

class QWidget;

namespace tembra {

class Clock;
class CoreDataInterface;

/// A backup that is on the disk, was read back and is complete.
struct WrittenBackup
{
    QString packagePath;
    qint64 size = 0; ///< Of the document, in bytes.
    QString replacedCopy; ///< The name under which the larger one that it replaced is kept, if any.
};

/// Writes backups that the user asks for: asks where, and writes the journal there in the background.
/// A failure is only logged.
class BackupPanel final : public QObject
{
    Q_OBJECT

public:
    BackupPanel(CoreDataInterface &coreData, const Clock &clock, QWidget *window,
                QObject *parent = nullptr);
    ~BackupPanel() override;

    /// Asks where, and writes the whole journal, with these teammates first. Without effect while a
    /// backup is being written.
    void createBackup(const QList<ObjectID> &teammates);
    void writeBackup(const QList<ObjectID> &teammates, const QString &packagePath);

    bool isRunning() const { return m_task != nullptr; }
    /// Leaves the package that was there, and logs it.
    void cancel();

Q_SIGNALS:
    void began(const QString &activity);
    void ended();
    /// After ended().
    void wrote(const tembra::WrittenBackup &backup);

private:
    void finish(const WrittenBackup &backup);

    CoreDataInterface &m_coreData;
    const Clock &m_clock;
    QWidget *m_window;
    std::unique_ptr<BackgroundTask> m_task;
};

} // namespace tembra

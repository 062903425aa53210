#pragma once

#include "Backup/DetachedTask.h"

#include <QObject>
#include <QTimer>
#include <QUrl>

namespace tembra {

/// Looks whether the folder for backups is there, without ever keeping anybody waiting: it may be on
/// a disk far away.
class BackupFolderCheck final : public QObject
{
    Q_OBJECT

public:
    explicit BackupFolderCheck(const QUrl &folder, QObject *parent = nullptr);

Q_SIGNALS:
    void answered(bool isAvailable);

private:
    void look();

    DetachedTask<bool> m_task;
    QTimer m_timer;
};

} // namespace tembra

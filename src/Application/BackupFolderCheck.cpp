#include "Application/BackupFolderCheck.h"

#include "Model/DefaultsManager.h"

namespace tembra {

using namespace std::chrono_literals;

BackupFolderCheck::BackupFolderCheck(const QUrl &folder, QObject *parent)
    : QObject(parent)
    , m_task([folder] { return DefaultsManager::isAvailable(folder); })
{
    connect(&m_timer, &QTimer::timeout, this, &BackupFolderCheck::look);
    m_timer.start(20ms);
}

void BackupFolderCheck::look()
{
    const std::optional<bool> answer = m_task.answer(0ms);
    if (!answer)
        return;
    m_timer.stop();
    Q_EMIT answered(*answer);
}

} // namespace tembra

#include "Backup/BackgroundTask.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

namespace tembra {

Result<std::unique_ptr<BackgroundTask>> BackgroundTask::start(PersistentContainer &container,
                                                              Work work)
{
    auto context = container.newBackgroundContext();
    if (!context)
        return failure(std::move(context).error());
    std::unique_ptr<BackgroundTask> task(new BackgroundTask);
    task->m_thread = std::thread(
        [self = task.get(), work = std::move(work), given = std::move(*context)]() mutable {
            self->run(std::move(given), work);
        });
    return task;
}

BackgroundTask::~BackgroundTask()
{
    cancel();
    if (m_thread.joinable())
        m_thread.join();
}

void BackgroundTask::cancel()
{
    m_cancellation.request_stop();
}

void BackgroundTask::run(std::unique_ptr<ManagedObjectContext> context, const Work &work)
{
    Result<void> outcome = work(*context, [this](double fraction) {
        report(fraction);
        return !isCancelled();
    });
    // The second connection is closed before anybody hears of the end.
    context.reset();
    QMetaObject::invokeMethod(
        this,
        [this, outcome = std::move(outcome)] {
            m_thread.join(); // What it wrote is read from here on.
            m_outcome = outcome;
            Q_EMIT finished();
        },
        Qt::QueuedConnection);
}

void BackgroundTask::report(double fraction)
{
    const int percent = int(fraction * 100);
    if (percent == m_reportedPercent)
        return;
    m_reportedPercent = percent;
    QMetaObject::invokeMethod(
        this, [this, fraction] { Q_EMIT progressed(fraction); }, Qt::QueuedConnection);
}

} // namespace tembra

#include "Backup/JournalWork.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

namespace tembra {

Result<std::unique_ptr<JournalWork>> JournalWork::start(PersistentContainer &container, Work work)
{
    auto context = container.newBackgroundContext();
    if (!context)
        return failure(std::move(context).error());
    std::unique_ptr<JournalWork> made(new JournalWork);
    made->m_thread = std::thread(
        [self = made.get(), work = std::move(work), given = std::move(*context)]() mutable {
            self->run(std::move(given), work);
        });
    return made;
}

JournalWork::~JournalWork()
{
    cancel();
    if (m_thread.joinable())
        m_thread.join();
}

void JournalWork::cancel()
{
    m_cancelled = true;
}

void JournalWork::run(std::unique_ptr<ManagedObjectContext> context, const Work &work)
{
    Result<void> outcome = work(*context, [this](double done) {
        tell(done);
        return !m_cancelled;
    });
    // Before anybody hears of the end: then the store has one way in again.
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

void JournalWork::tell(double done)
{
    const int percent = int(done * 100);
    if (percent == m_toldPercent)
        return;
    m_toldPercent = percent;
    QMetaObject::invokeMethod(
        this, [this, done] { Q_EMIT progressed(done); }, Qt::QueuedConnection);
}

} // namespace tembra

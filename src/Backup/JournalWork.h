#pragma once

#include "Foundation/Result.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace tembra {

class ManagedObjectContext;
class PersistentContainer;

/// Long work on the journal, in a thread and a context of its own, so that the program goes on
/// meanwhile. The thread ends with this object, at the latest.
class JournalWork final : public QObject
{
    Q_OBJECT

public:
    /// Asked by the work as often as it can stop; told how much of it is done, from 0 to 1. False
    /// once it was cancelled.
    using MayGoOn = std::function<bool(double done)>;
    using Work = std::function<Result<void>(ManagedObjectContext &context, const MayGoOn &mayGoOn)>;

    /// Begins at once. Fails when there is no second way into the store.
    static Result<std::unique_ptr<JournalWork>> start(PersistentContainer &container, Work work);
    /// Cancels, and waits for the thread.
    ~JournalWork() override;

    void cancel();
    bool isCancelled() const { return m_cancelled; }
    /// What the work returned; after finished().
    const Result<void> &outcome() const { return m_outcome; }

Q_SIGNALS:
    /// How much is done, in steps that can be seen.
    void progressed(double done);
    /// The work has returned, and what it saved is merged.
    void finished();

private:
    JournalWork() = default;
    void run(std::unique_ptr<ManagedObjectContext> context, const Work &work);
    void tell(double done);

    std::thread m_thread;
    std::atomic<bool> m_cancelled = false;
    int m_toldPercent = 0; ///< The thread's.
    Result<void> m_outcome;
};

} // namespace tembra

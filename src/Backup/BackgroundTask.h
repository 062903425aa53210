#pragma once

#include "Foundation/Result.h"

#include <QObject>

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

namespace tembra {

class ManagedObjectContext;
class PersistentContainer;

/// A long task on the journal that runs in a thread with a background context of its own, while the
/// main thread runs its event loop. The thread ends with this object, at the latest.
class BackgroundTask final : public QObject
{
    Q_OBJECT

public:
    /// Called by the work as often as it can stop, with the fraction that is done, from 0 to 1.
    /// Returns false once the task was cancelled.
    using ProgressHandler = std::function<bool(double fraction)>;
    using Work = std::function<Result<void>(ManagedObjectContext &context,
                                            const ProgressHandler &progressHandler)>;

    /// Begins at once. Fails when there can be no second connection to the store.
    static Result<std::unique_ptr<BackgroundTask>> start(PersistentContainer &container, Work work);
    /// Cancels, and waits for the thread.
    ~BackgroundTask() override;

    void cancel();
    bool isCancelled() const { return m_cancellation.stop_requested(); }
    /// What the work returned; after finished().
    const Result<void> &outcome() const { return m_outcome; }

Q_SIGNALS:
    /// The fraction that is done, at most once for each per cent.
    void progressed(double fraction);
    /// The work has returned, and what it saved is merged into the main context.
    void finished();

private:
    BackgroundTask() = default;
    void run(std::unique_ptr<ManagedObjectContext> context, const Work &work);
    void report(double fraction);

    std::stop_source m_cancellation;
    std::thread m_thread;
    int m_reportedPercent = 0; ///< Used by the thread only.
    Result<void> m_outcome;
};

} // namespace tembra

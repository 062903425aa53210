#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace tembra {

/// A task in a thread of its own that nobody can stop, as a call to a folder that does not answer
/// cannot be stopped. Whoever has waited long enough leaves it to itself: so the task must own
/// everything it uses.
template<typename Answer>
class DetachedTask
{
public:
    explicit DetachedTask(std::function<Answer()> task)
    {
        std::thread([shared = m_shared, task = std::move(task)] {
            Answer answer = task();
            const std::lock_guard guard(shared->mutex);
            shared->answer.emplace(std::move(answer));
            shared->changed.notify_all();
        }).detach();
    }

    /// What the task has returned, if it does so within @p longest.
    std::optional<Answer> answer(std::chrono::milliseconds longest) const
    {
        std::unique_lock lock(m_shared->mutex);
        m_shared->changed.wait_for(lock, longest, [this] { return m_shared->answer.has_value(); });
        return m_shared->answer;
    }

private:
    struct Shared
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<Answer> answer;
    };

    std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
};

/// Calls @p task and returns what it returns; nothing once @p keepWaiting, asked some fifty times a
/// second, says no.
template<typename Answer>
std::optional<Answer> runDetached(std::function<Answer()> task,
                                  const std::function<bool()> &keepWaiting)
{
    const DetachedTask<Answer> running(std::move(task));
    for (;;) {
        if (std::optional<Answer> answer = running.answer(std::chrono::milliseconds(20)))
            return answer;
        if (!keepWaiting())
            return std::nullopt;
    }
}

} // namespace tembra

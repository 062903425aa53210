#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace tembra {

/// Calls @p task in a thread of its own and returns what it returns; nothing once @p keepWaiting,
/// asked some fifty times a second, says no. Then the task is left to itself, since a call to a
/// folder that does not answer cannot be stopped: so it must own everything it uses.
template<typename Answer>
std::optional<Answer> runDetached(std::function<Answer()> task,
                                  const std::function<bool()> &keepWaiting)
{
    struct Shared
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<Answer> answer;
    };
    const auto shared = std::make_shared<Shared>();
    std::thread([shared, task = std::move(task)] {
        Answer answer = task();
        const std::lock_guard guard(shared->mutex);
        shared->answer.emplace(std::move(answer));
        shared->changed.notify_all();
    }).detach();
    for (;;) {
        {
            std::unique_lock lock(shared->mutex);
            if (shared->changed.wait_for(lock, std::chrono::milliseconds(20),
                                         [&] { return shared->answer.has_value(); }))
                return std::move(shared->answer);
        }
        if (!keepWaiting())
            return std::nullopt;
    }
}

} // namespace tembra

#pragma once

#include <QTimer>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>

namespace tembra {

/// How often the functions below ask whether the call has returned.
inline constexpr std::chrono::milliseconds detachedCallPollInterval(20);

/// Calls @p function in a detached thread. Such a call can be abandoned, as it has to be when a
/// network folder does not answer; so @p function must own everything it uses.
template<typename Value>
std::future<Value> startDetached(std::function<Value()> function)
{
    std::packaged_task<Value()> task(std::move(function));
    std::future<Value> future = task.get_future();
    std::thread(std::move(task)).detach();
    return future;
}

/// Calls @p function in a detached thread and waits for its value. Abandons the call, and returns
/// nothing, once @p keepWaiting returns false.
template<typename Value>
std::optional<Value> callDetached(std::function<Value()> function,
                                  const std::function<bool()> &keepWaiting)
{
    std::future<Value> future = startDetached(std::move(function));
    while (future.wait_for(detachedCallPollInterval) != std::future_status::ready) {
        if (!keepWaiting())
            return std::nullopt;
    }
    return future.get();
}

/// Calls @p function in a detached thread, and @p finished with its value from the event loop of this
/// thread. Abandons the call when @p context is destroyed.
template<typename Value>
void callDetached(QObject *context, std::function<Value()> function,
                  std::function<void(Value)> finished)
{
    auto *timer = new QTimer(context);
    const auto future = std::make_shared<std::future<Value>>(startDetached(std::move(function)));
    QObject::connect(timer, &QTimer::timeout, context, [=] {
        if (future->wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            return;
        timer->stop();
        timer->deleteLater();
        finished(future->get());
    });
    timer->start(detachedCallPollInterval);
}

} // namespace tembra

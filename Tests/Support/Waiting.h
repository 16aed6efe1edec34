#pragma once

// Waiting without sleeping: the event loop turns until a condition holds or the watchdog's time is over.

#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <qcorotask.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

/// The watchdog's time: what waits so long hangs. A tool that only a stop ends goes on for longer.
inline constexpr std::chrono::seconds watchdogTime(120);

/// A tool's time limit that is never reached, in seconds.
inline constexpr double farLimit = watchdogTime.count();

/// Turns the event loop until `condition` holds; false when `limit` passed first.
inline bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit = watchdogTime)
{
    return QTest::qWaitFor(condition, static_cast<int>(limit.count()));
}

/// Runs a task to its end on the event loop: `waitFor(task)` returns its value, or nothing when the limit passed first;
/// for a task without a value, whether it ended. An object and not a function, so that the function of the same name in
/// the task's own namespace, which has no limit, does not take part.
struct TaskWaiter {
    template <typename Value>
    std::optional<Value> operator()(QCoro::Task<Value> task, std::chrono::milliseconds limit = watchdogTime) const
    {
        const auto value = std::make_shared<std::optional<Value>>();
        std::move(task).then([value](Value result) { *value = std::move(result); });
        waitUntil([value] { return value->has_value(); }, limit);
        return std::move(*value);
    }

    bool operator()(QCoro::Task<> task, std::chrono::milliseconds limit = watchdogTime) const
    {
        const auto done = std::make_shared<bool>(false);
        std::move(task).then([done] { *done = true; });
        return waitUntil([done] { return *done; }, limit);
    }
};
inline constexpr TaskWaiter waitFor;

/// Takes the steps from within an event loop, as the application's own does it.
inline void inEventLoop(const std::function<void()> &steps)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        steps();
        loop.quit();
    });
    loop.exec();
}

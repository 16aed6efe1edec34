#pragma once

// Waiting without sleeping: the event loop turns until a condition holds or the watchdog's time is over.

#include <QCoroTask>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTest>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

/// Turns the event loop until `condition` holds; false when `limit` passed first.
inline bool waitUntil(const std::function<bool()> &condition,
                      std::chrono::milliseconds limit = std::chrono::milliseconds(20000))
{
    return QTest::qWaitFor(condition, static_cast<int>(limit.count()));
}

/// Runs a task to its end on the event loop and returns its value; nothing when `limit` passed first.
template <typename Value>
std::optional<Value> waitFor(QCoro::Task<Value> task,
                             std::chrono::milliseconds limit = std::chrono::milliseconds(20000))
{
    const auto value = std::make_shared<std::optional<Value>>();
    std::move(task).then([value](Value result) { *value = std::move(result); });
    waitUntil([value] { return value->has_value(); }, limit);
    return *value;
}

/// Runs a task without a value to its end; false when `limit` passed first.
inline bool waitFor(QCoro::Task<> task, std::chrono::milliseconds limit = std::chrono::milliseconds(20000))
{
    const auto done = std::make_shared<bool>(false);
    std::move(task).then([done] { *done = true; });
    return waitUntil([done] { return *done; }, limit);
}

#pragma once

#include "Foundation/Task.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <variant>

/// Waiting in tests: the event loop runs meanwhile, and no wait is without end.
namespace vesk {

/// Runs the event loop until the condition holds; false when it still does not after the time limit, which is
/// long because only a failing test waits for it.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = std::chrono::minutes(2))
{
    const QDeadlineTimer deadline(limit);
    // The call of processEvents with a time limit does not wait: it takes a whole core from what is waited
    // for.
    QTimer wake;
    wake.start(std::chrono::milliseconds(5));
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

template <typename T>
struct Outcome {
    using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;
    std::optional<Value> value;
    std::exception_ptr error;
};

template <typename T>
Task<> settle(Task<T> task, std::shared_ptr<Outcome<T>> outcome)
{
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
            outcome->value.emplace();
        } else {
            outcome->value = co_await task;
        }
    } catch (...) {
        outcome->error = std::current_exception();
    }
}

/// What the work ends with: its result, or its exception. (QCoro::waitFor of 0.8 never returns from a task
/// that throws.)
template <typename T>
T awaited(Task<T> task)
{
    const auto outcome = std::make_shared<Outcome<T>>();
    const Task<> settling = settle(std::move(task), outcome);
    if (!eventually([&outcome] { return outcome->value || outcome->error; })) {
        throw std::runtime_error("the work did not end");
    }
    if (outcome->error) {
        std::rethrow_exception(outcome->error);
    }
    if constexpr (!std::is_void_v<T>) {
        return std::move(*outcome->value);
    }
}

template <typename Recording>
Task<> setupOf(const Recording &recording)
{
    co_await *recording.setup();
}

/// Waits until a recording has really started; what prevents it is thrown.
template <typename Recording>
void awaitSetup(const Recording &recording)
{
    awaited(setupOf(recording));
}

} // namespace vesk

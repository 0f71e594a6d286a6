#pragma once

#include <chrono>
#include <optional>
#include <QCoreApplication>
#include <QCoroTask>
#include <QEventLoop>
#include <type_traits>
#include <utility>

#include "Base/Executor.h"
#include "ManualClock.h"

namespace corvellan::test {

/// The main thread's executor; `main` makes it before the first test.
Executor& mainExecutor();

/// For a `main` of a test program's own, which takes the place of `TestMain.cpp`.
void setMainExecutor(Executor& main);

/// Spins the main loop until `condition` holds. False when `limit` of real time is over first.
template <typename Condition>
bool spinUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds{10}) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }
    return true;
}

namespace detail {

template <typename T>
QCoro::Task<void> keepResult(QCoro::Task<T>& task, std::optional<T>& result) {
    result.emplace(co_await task);
}

inline QCoro::Task<void> keepEnd(QCoro::Task<void>& task, bool& hasEnded) {
    co_await task;
    hasEnded = true;
}

}  // namespace detail

/// Spins the main loop until `task` has ended and hands its result out. Throws when it does not end
/// within `limit` of real time.
template <typename T>
T complete(QCoro::Task<T> task, std::chrono::milliseconds limit = std::chrono::seconds{10}) {
    if constexpr (std::is_void_v<T>) {
        bool hasEnded = false;
        auto keeper = detail::keepEnd(task, hasEnded);
        if (!spinUntil([&] { return hasEnded; }, limit))
            throw std::runtime_error("a task did not end in time");
    } else {
        std::optional<T> result;
        auto keeper = detail::keepResult(task, result);
        if (!spinUntil([&] { return result.has_value(); }, limit))
            throw std::runtime_error("a task did not end in time");
        return std::move(*result);
    }
}

/// Runs everything that is posted to the main loop, and what that posts in turn, until it is quiet.
/// Says nothing about other threads.
void settle();

/// Moves the clock forward by `step`, stopping at each deadline to let the main loop settle.
void settleAfter(ManualClock& clock, std::chrono::nanoseconds step);

}  // namespace corvellan::test

#pragma once

#include <atomic>
#include <chrono>
#include <coroutine>
#include <memory>
#include <optional>
#include <QCoroTask>
#include <stop_token>
#include <utility>
#include <vector>

#include "Clock.h"
#include "Executor.h"

namespace corvellan {

enum class SleepEnd { elapsed, interrupted };

namespace detail {

/// One wake-up for a coroutine that two sides may want to wake: the first one wins.
class WakeOnce {
public:
    WakeOnce(Executor& executor, std::coroutine_handle<> handle) : m_executor(executor), m_handle(handle) {}

    void wake() {
        if (!m_woken.exchange(true, std::memory_order_acq_rel))
            m_executor.post([handle = m_handle] { handle.resume(); });
    }

private:
    Executor& m_executor;
    std::coroutine_handle<> m_handle;
    std::atomic<bool> m_woken = false;
};

/// What a stop request calls: the coroutine goes on by itself, never inside the request.
struct WakeOnStop {
    std::shared_ptr<WakeOnce> wake;
    void operator()() const { wake->wake(); }
};

class SleepAwaiter {
public:
    SleepAwaiter(Clock& clock, MonotonicTime deadline, std::stop_token stop)
        : m_clock(clock),
          m_deadline(deadline),
          m_stop(std::move(stop)) {}
    SleepAwaiter(const SleepAwaiter&) = delete;
    SleepAwaiter& operator=(const SleepAwaiter&) = delete;

    [[nodiscard]] bool await_ready() const { return m_stop.stop_requested(); }

    void await_suspend(std::coroutine_handle<> handle) {
        Q_ASSERT(Executor::current());
        m_wake = std::make_shared<WakeOnce>(*Executor::current(), handle);
        m_timer = m_clock.callAt(m_deadline, [wake = m_wake] { wake->wake(); });
        m_onStop.emplace(m_stop, WakeOnStop{m_wake});
    }

    SleepEnd await_resume() {
        m_onStop.reset();
        if (m_timer)
            m_clock.cancel(*m_timer);
        return m_stop.stop_requested() ? SleepEnd::interrupted : SleepEnd::elapsed;
    }

private:
    Clock& m_clock;
    MonotonicTime m_deadline;
    std::stop_token m_stop;
    std::shared_ptr<WakeOnce> m_wake;
    std::optional<Clock::TimerId> m_timer;
    std::optional<std::stop_callback<WakeOnStop>> m_onStop;
};

/// Whether some work has ended, and who waits for that. One executor's own.
struct WorkEnd {
    bool hasEnded = false;
    std::shared_ptr<WakeOnce> waiter;
};

inline QCoro::Task<void> watchEnd(QCoro::Task<void> work, std::shared_ptr<WorkEnd> end) {
    co_await work;
    end->hasEnded = true;
    if (end->waiter)
        end->waiter->wake();
}

class EndOrStopAwaiter {
public:
    EndOrStopAwaiter(std::shared_ptr<WorkEnd> end, std::stop_token stop)
        : m_end(std::move(end)),
          m_stop(std::move(stop)) {}
    EndOrStopAwaiter(const EndOrStopAwaiter&) = delete;
    EndOrStopAwaiter& operator=(const EndOrStopAwaiter&) = delete;

    [[nodiscard]] bool await_ready() const { return m_end->hasEnded || m_stop.stop_requested(); }

    void await_suspend(std::coroutine_handle<> handle) {
        Q_ASSERT(Executor::current());
        m_end->waiter = std::make_shared<WakeOnce>(*Executor::current(), handle);
        m_onStop.emplace(m_stop, WakeOnStop{m_end->waiter});
    }

    void await_resume() { m_onStop.reset(); }

private:
    std::shared_ptr<WorkEnd> m_end;
    std::stop_token m_stop;
    std::optional<std::stop_callback<WakeOnStop>> m_onStop;
};

}  // namespace detail

/// Awaitable: waits on the clock's monotonic time and resumes on the caller's executor; tells
/// whether `stop` cut it short. A stop that was requested before returns at once.
inline auto sleep(Clock& clock, std::chrono::nanoseconds duration, std::stop_token stop = {}) {
    return detail::SleepAwaiter{clock, clock.now() + duration, std::move(stop)};
}

/// Waits for the end of `work`, though not beyond a requested `stop`: the work then goes on by itself
/// to its own end, and must need nothing that goes with the caller.
inline QCoro::Task<void> untilStopped(QCoro::Task<void> work, std::stop_token stop) {
    const auto end = std::make_shared<detail::WorkEnd>();
    detail::watchEnd(std::move(work), end);
    detail::EndOrStopAwaiter endOrStop{end, std::move(stop)};
    co_await endOrStop;
}

/// The handle of one piece of cancellable work. Cancelling only asks: the work notices at its next
/// cancellable wait, and nothing of it ever runs inside `cancel`. The work goes on to its own end
/// when the handle goes; `cancel` before if that is not wanted.
class CancellableTask {
public:
    CancellableTask() = default;

    /// Starts `body`, a callable that takes a `std::stop_token` and returns `QCoro::Task<void>`, at
    /// the next turn of the calling thread's executor. A task cancelled before still runs.
    template <typename Body>
    [[nodiscard]] static CancellableTask start(Body body) {
        CancellableTask task;
        task.m_state = std::make_shared<State>();
        drive(task.m_state, std::move(body));
        return task;
    }

    void cancel() const {
        if (m_state)
            m_state->stop.request_stop();
    }
    [[nodiscard]] bool isCancelled() const { return m_state && m_state->stop.stop_requested(); }
    /// The work has run to its end.
    [[nodiscard]] bool isFinished() const { return !m_state || m_state->isFinished; }

private:
    struct State {
        std::stop_source stop;
        bool isFinished = false;
    };

    // `body` is a parameter, so that what it captured lives in this coroutine until its end.
    template <typename Body>
    static QCoro::Task<void> drive(std::shared_ptr<State> state, Body body) {
        co_await Executor::current()->turn();
        co_await body(state->stop.get_token());
        state->isFinished = true;
    }

    std::shared_ptr<State> m_state;
};

/// An optional cancellable task, as long-lived objects hold it: assigning a new one cancels the old.
class TaskSlot {
public:
    TaskSlot& operator=(CancellableTask task) {
        cancel();
        m_task = std::move(task);
        return *this;
    }
    /// Asks the task to stop and keeps its handle.
    void cancel() const {
        if (m_task)
            m_task->cancel();
    }
    /// Asks the task to stop and forgets it.
    void clear() {
        cancel();
        m_task.reset();
    }
    [[nodiscard]] bool isSet() const { return m_task.has_value(); }
    /// Nothing is under way here.
    [[nodiscard]] bool isFinished() const { return !m_task || m_task->isFinished(); }

private:
    std::optional<CancellableTask> m_task;
};

/// Lets coroutines wait for what others on the same executor announce. Not thread-safe.
class Announcement {
public:
    /// Awaitable: resumes after the next `announce`.
    [[nodiscard]] auto next() { return Awaiter{*this}; }

    void announce() {
        for (const auto& waiter : std::exchange(m_waiters, {}))
            waiter->wake();
    }

private:
    struct Awaiter {
        Announcement& announcement;

        [[nodiscard]] bool await_ready() const { return false; }
        void await_suspend(std::coroutine_handle<> handle) const {
            Q_ASSERT(Executor::current());
            announcement.m_waiters.push_back(std::make_shared<detail::WakeOnce>(*Executor::current(), handle));
        }
        void await_resume() const {}
    };

    std::vector<std::shared_ptr<detail::WakeOnce>> m_waiters;
};

/// Children that run side by side under one stop token. One that ends early ends nothing else.
class TaskGroup {
public:
    explicit TaskGroup(std::stop_token stop) : m_stop(std::move(stop)) {}

    /// Starts a child, a callable as for `CancellableTask::start`, at once and up to its first wait.
    template <typename Body>
    void add(Body body) {
        m_children.push_back(drive(m_stop, std::move(body)));
    }

    /// Returns when every child has ended.
    [[nodiscard]] QCoro::Task<void> wait() {
        for (auto& child : m_children)
            co_await child;
        m_children.clear();
    }

private:
    template <typename Body>
    static QCoro::Task<void> drive(std::stop_token stop, Body body) {
        co_await body(std::move(stop));
    }

    std::stop_token m_stop;
    std::vector<QCoro::Task<void>> m_children;
};

}  // namespace corvellan

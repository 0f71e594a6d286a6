#pragma once

#include <mutex>

#include "Base/Clock.h"
#include "Base/TimerQueue.h"

namespace corvellan::test {

/// A clock whose hands only tests move. `advance` makes everything due that falls into the step, in
/// order, with the clock standing at each deadline in turn.
class ManualClock final : public Clock {
public:
    [[nodiscard]] MonotonicTime now() const override {
        const std::scoped_lock lock{m_mutex};
        return m_now;
    }
    [[nodiscard]] WallTime wallNow() const override {
        const std::scoped_lock lock{m_mutex};
        return m_wall + std::chrono::floor<std::chrono::milliseconds>(m_now.time_since_epoch());
    }
    TimerId callAt(MonotonicTime deadline, std::function<void()> due) override {
        const std::scoped_lock lock{m_mutex};
        return m_queue.add(deadline, std::move(due));
    }
    void cancel(TimerId timer) override {
        const std::scoped_lock lock{m_mutex};
        m_queue.remove(timer);
    }

    /// Turns the hands only: what wakes up runs when the test next spins the loop. For steps over
    /// several deadlines of one coroutine use `settleAfter` (TestLoop.h), which lets it sleep anew.
    void advance(std::chrono::nanoseconds step) {
        const auto end = now() + step;
        while (true) {
            std::vector<std::function<void()>> due;
            {
                const std::scoped_lock lock{m_mutex};
                const auto next = m_queue.next();
                if (!next || *next > end) {
                    m_now = end;
                    return;
                }
                if (*next > m_now)
                    m_now = *next;
                due = m_queue.takeDue(m_now);
            }
            for (const auto& call : due)
                call();
        }
    }

    /// As when the computer sleeps: wall time goes on, monotonic time stands.
    void advanceWallAlone(std::chrono::milliseconds step) {
        const std::scoped_lock lock{m_mutex};
        m_wall += step;
    }

    [[nodiscard]] std::optional<MonotonicTime> nextDeadline() const {
        const std::scoped_lock lock{m_mutex};
        return m_queue.next();
    }

private:
    mutable std::mutex m_mutex;
    MonotonicTime m_now{};
    // 2026-03-02 10:00:00 UTC.
    WallTime m_wall = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + std::chrono::hours{10};
    TimerQueue m_queue;
};

}  // namespace corvellan::test

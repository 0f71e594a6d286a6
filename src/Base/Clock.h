#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace corvellan {

using MonotonicTime = std::chrono::steady_clock::time_point;
/// Wall time in milliseconds, UTC.
using WallTime = std::chrono::sys_time<std::chrono::milliseconds>;

/// Where time comes from: monotonic time for waits, wall time for stamps. Injected everywhere,
/// so that tests can turn the hands themselves. Every operation is callable on any thread.
class Clock {
public:
    /// Names one pending `callAt`.
    using TimerId = std::uint64_t;

    virtual ~Clock() = default;

    [[nodiscard]] virtual MonotonicTime now() const = 0;
    [[nodiscard]] virtual WallTime wallNow() const = 0;

    /// Calls `due` once when `deadline` has come, on a thread of the clock's own choosing;
    /// `due` must only hand over (post, push) and never wait.
    virtual TimerId callAt(MonotonicTime deadline, std::function<void()> due) = 0;

    /// Forgets a pending call. When it is already running or done, nothing happens.
    virtual void cancel(TimerId timer) = 0;
};

/// The system's clocks, with one thread that sleeps until the next deadline.
class SystemClock final : public Clock {
public:
    SystemClock();
    ~SystemClock() override;
    SystemClock(const SystemClock&) = delete;
    SystemClock& operator=(const SystemClock&) = delete;

    [[nodiscard]] MonotonicTime now() const override;
    [[nodiscard]] WallTime wallNow() const override;
    TimerId callAt(MonotonicTime deadline, std::function<void()> due) override;
    void cancel(TimerId timer) override;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace corvellan

#pragma once

#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace corvellan {

/// libpulse's own thread. Everything of libpulse is touched on it or under its lock.
class PulseLoop {
public:
    /// Holds the loop still. Not on the loop's own thread.
    class Lock {
    public:
        explicit Lock(PulseLoop& loop) : m_loop(loop.m_loop.get()) { pa_threaded_mainloop_lock(m_loop); }
        ~Lock() { pa_threaded_mainloop_unlock(m_loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* m_loop;
    };

    PulseLoop() : m_loop(pa_threaded_mainloop_new()) {}

    /// False when there is no thread to be had.
    bool start() { return m_loop && pa_threaded_mainloop_start(m_loop.get()) == 0; }
    /// Ends the thread. Without the lock.
    void stop() {
        if (m_loop)
            pa_threaded_mainloop_stop(m_loop.get());
    }
    [[nodiscard]] pa_mainloop_api* api() const { return pa_threaded_mainloop_get_api(m_loop.get()); }

private:
    struct Free {
        void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
    };
    std::unique_ptr<pa_threaded_mainloop, Free> m_loop;
};

/// Calls back on the loop's thread, once per arming. All of it on that thread or under the lock.
class PulseTimer {
public:
    using Duration = std::chrono::steady_clock::duration;

    PulseTimer(PulseLoop& loop, std::function<void()> due) : m_loop(loop), m_due(std::move(due)) {}
    ~PulseTimer() { disarm(); }
    PulseTimer(const PulseTimer&) = delete;
    PulseTimer& operator=(const PulseTimer&) = delete;

    /// Due after `delay`, whatever was set before.
    void arm(Duration delay);
    /// Due after `delay` at the latest: a nearer time that was set before stays.
    void armNoLater(Duration delay);
    void disarm();

private:
    PulseLoop& m_loop;
    std::function<void()> m_due;
    pa_time_event* m_event = nullptr;
    std::optional<std::chrono::steady_clock::time_point> m_deadline;
};

}  // namespace corvellan

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

#include "Base/Clock.h"
#include "Base/Error.h"
#include "Base/Executor.h"
#include "Base/Tasks.h"

namespace corvellan {

/// Lets a coroutine wait for signals of Qt objects on its own thread, and no longer than until a deadline
/// or a stop request. After each wake-up the coroutine looks for itself what has happened.
class EventWait {
public:
    EventWait(Clock& clock, std::chrono::nanoseconds patience, std::stop_token stop)
        : m_clock(clock),
          m_deadline(clock.now() + patience),
          m_stop(std::move(stop)),
          m_timer(clock.callAt(m_deadline, posted())),
          m_onStop(m_stop, posted()) {}
    ~EventWait() { m_clock.cancel(m_timer); }
    EventWait(const EventWait&) = delete;
    EventWait& operator=(const EventWait&) = delete;

    /// What signals are to call. It may outlive this object.
    [[nodiscard]] std::function<void()> waker() const {
        return [changed = m_changed] { changed->announce(); };
    }

    /// Nothing more is to be waited for.
    [[nodiscard]] bool isOver() const { return m_stop.stop_requested() || m_clock.now() >= m_deadline; }

    /// Why it is over.
    [[nodiscard]] Error reason(const QString& timeOut) const {
        return m_stop.stop_requested() ? Error::cancelled() : Error{TransportError{timeOut}};
    }

    /// Awaitable: the next wake-up.
    [[nodiscard]] auto next() { return m_changed->next(); }

private:
    /// The clock and the stop request may call from other threads.
    [[nodiscard]] std::function<void()> posted() const {
        return [home = Executor::current(), changed = m_changed] { home->post([changed] { changed->announce(); }); };
    }

    Clock& m_clock;
    MonotonicTime m_deadline;
    std::stop_token m_stop;
    std::shared_ptr<Announcement> m_changed = std::make_shared<Announcement>();
    Clock::TimerId m_timer;
    std::stop_callback<std::function<void()>> m_onStop;
};

}  // namespace corvellan

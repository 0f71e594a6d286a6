#include "PulseLoop.h"

namespace corvellan {

void PulseTimer::arm(Duration delay) {
    disarm();
    m_deadline = std::chrono::steady_clock::now() + delay;
    // Wall time, but only here: the loop turns it into monotonic time at once.
    timeval due{};
    pa_gettimeofday(&due);
    pa_timeval_add(&due, static_cast<pa_usec_t>(std::chrono::ceil<std::chrono::microseconds>(delay).count()));
    m_event = m_loop.api()->time_new(
        m_loop.api(), &due,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
            auto& timer = *static_cast<PulseTimer*>(self);
            timer.disarm();
            timer.m_due();
        },
        this);
}

void PulseTimer::armNoLater(Duration delay) {
    if (!m_deadline || std::chrono::steady_clock::now() + delay < *m_deadline)
        arm(delay);
}

void PulseTimer::disarm() {
    m_deadline.reset();
    if (m_event)
        m_loop.api()->time_free(m_event);
    m_event = nullptr;
}

}  // namespace corvellan

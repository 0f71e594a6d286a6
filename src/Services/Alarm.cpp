#include "Alarm.h"

#include <utility>

namespace corvellan {

struct Alarm::Setting {
    Alarm* alarm = nullptr;
    std::function<void()> ring;
    Clock::TimerId timer = 0;
};

void Alarm::set(std::chrono::nanoseconds delay, std::function<void()> ring) {
    cancel();
    m_setting = std::make_shared<Setting>();
    m_setting->alarm = this;
    m_setting->ring = std::move(ring);
    // The clock's thread only carries the weak pointer over; it is looked into where the alarm lives.
    auto due = [&executor = m_executor, weak = std::weak_ptr{m_setting}] {
        executor.post([weak] {
            const auto setting = weak.lock();
            if (!setting)
                return;
            setting->alarm->m_setting.reset();
            setting->ring();
        });
    };
    m_setting->timer = m_clock.callAt(m_clock.now() + delay, std::move(due));
}

void Alarm::cancel() {
    if (const auto setting = std::exchange(m_setting, nullptr))
        m_clock.cancel(setting->timer);
}

}  // namespace corvellan

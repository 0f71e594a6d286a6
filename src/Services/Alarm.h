#pragma once

#include <functional>
#include <memory>

#include "Base/Clock.h"
#include "Base/Executor.h"

namespace corvellan {

/// A one-shot timer for an object that lives on an executor: it rings there, and never after it was
/// cancelled or has gone. All operations on that executor's thread.
class Alarm {
public:
    Alarm(Executor& executor, Clock& clock) : m_executor(executor), m_clock(clock) {}
    ~Alarm() { cancel(); }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    /// Rings once after `delay`; an earlier setting is forgotten. `ring` may set the alarm again.
    void set(std::chrono::nanoseconds delay, std::function<void()> ring);
    void cancel();
    [[nodiscard]] bool isSet() const { return m_setting != nullptr; }

private:
    struct Setting;

    Executor& m_executor;
    Clock& m_clock;
    std::shared_ptr<Setting> m_setting;
};

}  // namespace corvellan

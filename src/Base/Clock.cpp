#include "Clock.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include "TimerQueue.h"

namespace corvellan {

struct SystemClock::Impl {
    std::mutex mutex;
    std::condition_variable changed;
    TimerQueue queue;
    bool stopping = false;
    std::thread thread;

    void work() {
        std::unique_lock lock{mutex};
        while (!stopping) {
            if (const auto next = queue.next())
                changed.wait_until(lock, *next);
            else
                changed.wait(lock);
            const auto due = queue.takeDue(std::chrono::steady_clock::now());
            lock.unlock();
            for (const auto& call : due)
                call();
            lock.lock();
        }
    }
};

SystemClock::SystemClock() : m_impl(std::make_unique<Impl>()) {
    m_impl->thread = std::thread([impl = m_impl.get()] { impl->work(); });
}

SystemClock::~SystemClock() {
    {
        const std::scoped_lock lock{m_impl->mutex};
        m_impl->stopping = true;
    }
    m_impl->changed.notify_one();
    m_impl->thread.join();
}

MonotonicTime SystemClock::now() const {
    return std::chrono::steady_clock::now();
}

WallTime SystemClock::wallNow() const {
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

Clock::TimerId SystemClock::callAt(MonotonicTime deadline, std::function<void()> due) {
    TimerId id = 0;
    {
        const std::scoped_lock lock{m_impl->mutex};
        id = m_impl->queue.add(deadline, std::move(due));
    }
    m_impl->changed.notify_one();
    return id;
}

void SystemClock::cancel(TimerId timer) {
    const std::scoped_lock lock{m_impl->mutex};
    m_impl->queue.remove(timer);
}

}  // namespace corvellan

#pragma once

#include <coroutine>
#include <functional>
#include <memory>
#include <QCoroTask>
#include <type_traits>
#include <utility>

namespace corvellan {

/// A serial queue of work: what is posted runs one piece after another, in order, on one thread.
///
/// Services do all their work on the executor they were given, so that nobody above them thinks
/// about threads. `post` is callable on any thread, audio call-backs included: it allocates one
/// node and at most wakes the thread, and it never takes a lock.
class Executor {
public:
    virtual ~Executor() = default;

    virtual void post(std::function<void()> work) = 0;

    /// True on the thread that runs this executor's work.
    [[nodiscard]] virtual bool isCurrent() const = 0;

    /// The executor whose work runs on this thread. Null on threads that carry none.
    [[nodiscard]] static Executor* current();

    /// Runs `work` (a callable that returns a task) here, and resumes the caller on the executor
    /// that it came from. On this executor already, `work` starts at once.
    template <typename Work>
    auto run(Work work) -> std::invoke_result_t<Work&>;

    /// As `run`, for a plain callable.
    template <typename Work>
    auto call(Work work) -> QCoro::Task<std::invoke_result_t<Work&>>;

    /// Awaitable: the rest of the coroutine runs here. Only for coroutines that hop back to
    /// where they started before they end, since a task ends on the thread that awaits it.
    [[nodiscard]] auto hop();

    /// Awaitable: lets everything that is already queued run first. On this executor's thread.
    [[nodiscard]] auto turn();

protected:
    /// Makes this the executor of the calling thread; null takes it away again.
    static void setCurrent(Executor* executor);
};

namespace detail {

struct HopAwaiter {
    Executor& target;
    bool always = false;

    [[nodiscard]] bool await_ready() const { return !always && target.isCurrent(); }
    void await_suspend(std::coroutine_handle<> handle) const {
        target.post([handle] { handle.resume(); });
    }
    void await_resume() const {}
};

}  // namespace detail

inline auto Executor::hop() {
    return detail::HopAwaiter{*this};
}

inline auto Executor::turn() {
    return detail::HopAwaiter{*this, true};
}

template <typename Work>
auto Executor::run(Work work) -> std::invoke_result_t<Work&> {
    using Task = std::invoke_result_t<Work&>;
    if (isCurrent()) {
        // Awaited here and not just returned: `work` must outlive the task it made.
        if constexpr (std::is_void_v<typename Task::value_type>)
            co_await work();
        else
            co_return co_await work();
    } else {
        Executor* const home = current();
        Q_ASSERT(home);
        co_await hop();
        if constexpr (std::is_void_v<typename Task::value_type>) {
            co_await work();
            co_await home->hop();
        } else {
            auto result = co_await work();
            co_await home->hop();
            co_return result;
        }
    }
}

template <typename Work>
auto Executor::call(Work work) -> QCoro::Task<std::invoke_result_t<Work&>> {
    using Result = std::invoke_result_t<Work&>;
    Executor* const home = current();
    Q_ASSERT(home);
    co_await hop();
    if constexpr (std::is_void_v<Result>) {
        work();
        co_await home->hop();
    } else {
        Result result = work();
        co_await home->hop();
        co_return result;
    }
}

/// An executor on a thread that runs a Qt event loop. Construct and destroy it on that thread;
/// work still queued at its end is dropped.
class EventLoopExecutor final : public Executor {
public:
    EventLoopExecutor();
    ~EventLoopExecutor() override;
    EventLoopExecutor(const EventLoopExecutor&) = delete;
    EventLoopExecutor& operator=(const EventLoopExecutor&) = delete;

    void post(std::function<void()> work) override;
    [[nodiscard]] bool isCurrent() const override;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

/// A named thread with an event loop of its own, and the executor on it.
class WorkerThread {
public:
    /// \param name what debuggers and `top` show, at most 15 bytes.
    explicit WorkerThread(const char* name);
    /// Ends the loop after the work at hand and joins. Objects that live on the thread must be gone.
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    [[nodiscard]] Executor& executor() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

/// Runs `work` on `executor` and waits for its end; inline when already there. Only for
/// destructors of objects whose parts live on another thread: it blocks.
void runAndWait(Executor& executor, const std::function<void()>& work);

}  // namespace corvellan

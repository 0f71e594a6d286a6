#pragma once

#include <atomic>
#include <coroutine>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

#include "Error.h"
#include "Executor.h"

namespace corvellan {

namespace detail {

/// Where a reader sleeps. Whoever takes it out of `StreamState::waiter` owes it one wake-up.
struct StreamWaiter {
    Executor* executor = nullptr;
    std::coroutine_handle<> handle;

    void wake() const {
        executor->post([handle = handle] { handle.resume(); });
    }
};

template <typename T>
struct StreamState {
    struct Node {
        std::optional<T> value;  // Empty in the node that ends the stream.
        std::optional<Error> error;
        Node* next = nullptr;
    };

    /// What producers pushed, newest first; the reader takes it whole and turns it round.
    std::atomic<Node*> pushed = nullptr;
    std::atomic<StreamWaiter*> waiter = nullptr;
    /// Set by the first who ends the stream, producer or reader: what is pushed later is dropped.
    std::atomic<bool> ended = false;
    /// The reader has ended it: nothing more is read, not even what waits.
    std::atomic<bool> abandoned = false;

    /// The reader's own: nodes in order of arrival, and how the stream ended once it was read so far.
    Node* ready = nullptr;
    bool drained = false;
    std::optional<Error> failure;

    std::mutex terminationMutex;
    std::function<void()> termination;
    bool terminated = false;

    ~StreamState() {
        release(pushed.load(std::memory_order_acquire));
        release(ready);
    }

    static void release(Node* node) {
        while (node)
            delete std::exchange(node, node->next);
    }

    void push(Node* node) {
        Node* head = pushed.load(std::memory_order_relaxed);
        do {
            node->next = head;
        } while (!pushed.compare_exchange_weak(head, node, std::memory_order_seq_cst, std::memory_order_relaxed));
        wakeReader();
    }

    [[nodiscard]] bool hasNews() const {
        return pushed.load(std::memory_order_seq_cst) || abandoned.load(std::memory_order_seq_cst);
    }

    /// A producer may get here so late that what it pushed has been read already and the reader sleeps anew, for
    /// what comes next. Woken for nothing, the reader would take the stream for ended.
    void wakeReader() {
        while (StreamWaiter* const sleeper = waiter.exchange(nullptr, std::memory_order_seq_cst)) {
            if (hasNews()) {
                sleeper->wake();
                return;
            }
            waiter.store(sleeper, std::memory_order_seq_cst);
            // Who brought something in the meantime has found nobody to wake.
            if (!hasNews())
                return;
        }
    }

    /// Moves what was pushed over to `ready`. True when there is something to read.
    bool fill() {
        if (ready)
            return true;
        Node* node = pushed.exchange(nullptr, std::memory_order_seq_cst);
        while (node) {
            Node* const next = node->next;
            node->next = ready;
            ready = node;
            node = next;
        }
        return ready != nullptr;
    }

    void terminate() {
        std::function<void()> call;
        {
            const std::scoped_lock lock{terminationMutex};
            if (std::exchange(terminated, true))
                return;
            call = std::exchange(termination, nullptr);
        }
        if (call)
            call();
    }

    void onTermination(std::function<void()> call) {
        {
            const std::scoped_lock lock{terminationMutex};
            if (!terminated) {
                termination = std::move(call);
                return;
            }
        }
        call();
    }

    /// Ends the stream from the producer's side; what was pushed before is still read.
    void finish(std::optional<Error> error) {
        if (ended.exchange(true, std::memory_order_acq_rel))
            return;
        push(new Node{.value = std::nullopt, .error = std::move(error), .next = nullptr});
        terminate();
    }

    /// Ends the stream from the reader's side: nothing more is read.
    void abandon() {
        ended.store(true, std::memory_order_release);
        abandoned.store(true, std::memory_order_seq_cst);
        wakeReader();
        terminate();
    }
};

}  // namespace detail

/// The reading end of an unbounded stream between threads. Copies share one stream; one reader at
/// a time, another may follow. When the last copy goes, or a reader is stopped, the stream ends.
template <typename T>
class AsyncStream {
    using State = detail::StreamState<T>;

    /// Ends the stream when the last copy of the reading end goes.
    struct Reading {
        std::shared_ptr<State> state;
        explicit Reading(std::shared_ptr<State> shared) : state(std::move(shared)) {}
        ~Reading() { state->abandon(); }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
    };

public:
    /// What a read yields: a value, or nothing at the stream's end, or the error that ended it.
    using Next = std::expected<std::optional<T>, Error>;

    /// The writing end. Copies write to the same stream; all operations are callable on any thread.
    class Producer {
    public:
        /// Lock-free but for the allocation of one node, then at most one wake-up. Ignored after the end.
        void push(T value) const {
            if (m_state->ended.load(std::memory_order_acquire))
                return;
            m_state->push(new typename State::Node{.value = std::move(value), .error = std::nullopt, .next = nullptr});
        }
        /// Ends the stream; what was pushed before is still read.
        void finish() const { m_state->finish(std::nullopt); }
        /// Ends the stream with an error; what was pushed before is still read.
        void fail(Error error) const { m_state->finish(std::move(error)); }
        /// Calls `call` once when the stream ends from either side, on the thread that ends it; at
        /// once when it has ended already.
        void onTermination(std::function<void()> call) const { m_state->onTermination(std::move(call)); }
        [[nodiscard]] bool hasEnded() const { return m_state->ended.load(std::memory_order_acquire); }

    private:
        friend class AsyncStream;
        explicit Producer(std::shared_ptr<State> state) : m_state(std::move(state)) {}
        std::shared_ptr<State> m_state;
    };

    /// A new stream and its writing end.
    [[nodiscard]] static std::pair<AsyncStream, Producer> make() {
        auto state = std::make_shared<State>();
        return {AsyncStream{std::make_shared<Reading>(state)}, Producer{state}};
    }

    /// A stream that ends at once, with `error`.
    [[nodiscard]] static AsyncStream failed(Error error) {
        auto [stream, producer] = make();
        producer.fail(std::move(error));
        return stream;
    }

    /// Awaitable, resumes on the executor of the calling thread: the next value, the end, or the
    /// error. A `stop` that is or becomes requested ends the stream and yields its end.
    [[nodiscard]] auto next(std::stop_token stop = {}) const { return Awaiter{m_reading, std::move(stop)}; }

private:
    class Awaiter {
    public:
        Awaiter(std::shared_ptr<Reading> reading, std::stop_token stop)
            : m_reading(std::move(reading)),
              m_stop(std::move(stop)) {}
        Awaiter(const Awaiter&) = delete;
        Awaiter& operator=(const Awaiter&) = delete;

        [[nodiscard]] bool await_ready() {
            State& state = *m_reading->state;
            if (m_stop.stop_requested()) {
                state.abandon();
                return true;
            }
            return state.drained || state.abandoned.load(std::memory_order_acquire) || state.fill();
        }

        bool await_suspend(std::coroutine_handle<> handle) {
            State& state = *m_reading->state;
            m_waiter = {.executor = Executor::current(), .handle = handle};
            Q_ASSERT(m_waiter.executor);
            state.waiter.store(&m_waiter, std::memory_order_seq_cst);
            // Something may have come between the look and the lying down.
            if (state.hasNews())
                return !takeBack();
            m_onStop.emplace(m_stop, Abandon{&state});
            return true;
        }

        [[nodiscard]] Next await_resume() {
            m_onStop.reset();
            State& state = *m_reading->state;
            const bool isAbandoned = state.abandoned.load(std::memory_order_acquire);
            if (!isAbandoned && !state.drained && state.fill()) {
                const std::unique_ptr<typename State::Node> node{std::exchange(state.ready, state.ready->next)};
                if (node->value)
                    return std::move(node->value);
                state.drained = true;
                state.failure = std::move(node->error);
            }
            if (state.failure)
                return std::unexpected(*state.failure);
            return std::nullopt;
        }

    private:
        struct Abandon {
            State* state;
            void operator()() const { state->abandon(); }
        };

        /// True when no producer holds the waiter, so that the coroutine goes on by itself.
        bool takeBack() { return m_reading->state->waiter.exchange(nullptr, std::memory_order_seq_cst) != nullptr; }

        std::shared_ptr<Reading> m_reading;
        std::stop_token m_stop;
        detail::StreamWaiter m_waiter;
        std::optional<std::stop_callback<Abandon>> m_onStop;
    };

    explicit AsyncStream(std::shared_ptr<Reading> reading) : m_reading(std::move(reading)) {}

    std::shared_ptr<Reading> m_reading;
};

}  // namespace corvellan

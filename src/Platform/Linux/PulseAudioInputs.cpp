#include "PulseAudioInputs.h"

#include <atomic>
#include <coroutine>
#include <optional>

#include "Base/Executor.h"
#include "PulseInput.h"

namespace corvellan {

namespace {

/// One opening under way. The loop's thread and the stop token may both end it: the first one wins.
struct Opening {
    Executor* executor = nullptr;
    std::coroutine_handle<> handle;
    std::atomic<bool> isDecided = false;
    std::optional<Error> failure;

    void end(std::optional<Error> reason) {
        if (isDecided.exchange(true, std::memory_order_acq_rel))
            return;
        failure = std::move(reason);
        executor->post([resumed = handle] { resumed.resume(); });
    }
};

class OpeningAwaiter {
public:
    OpeningAwaiter(PulseInput& input, std::stop_token stop) : m_input(input), m_stop(std::move(stop)) {}
    OpeningAwaiter(const OpeningAwaiter&) = delete;
    OpeningAwaiter& operator=(const OpeningAwaiter&) = delete;

    [[nodiscard]] bool await_ready() const { return false; }

    void await_suspend(std::coroutine_handle<> handle) {
        Q_ASSERT(Executor::current());
        m_opening->executor = Executor::current();
        m_opening->handle = handle;
        m_onStop.emplace(m_stop, Cancel{m_opening});
        m_input.open([opening = m_opening](std::optional<Error> failure) { opening->end(std::move(failure)); });
    }

    std::optional<Error> await_resume() {
        m_onStop.reset();
        return std::move(m_opening->failure);
    }

private:
    struct Cancel {
        std::shared_ptr<Opening> opening;
        void operator()() const { opening->end(Error::cancelled()); }
    };

    PulseInput& m_input;
    std::stop_token m_stop;
    std::shared_ptr<Opening> m_opening = std::make_shared<Opening>();
    std::optional<std::stop_callback<Cancel>> m_onStop;
};

}  // namespace

QCoro::Task<AudioInputs::Opened> PulseAudioInputs::open(AudioInputKind kind, std::stop_token stop) {
    auto input = std::make_unique<PulseInput>(kind, m_clock, m_ownSpeech);
    OpeningAwaiter opening{*input, stop};
    auto failure = co_await opening;
    if (failure)
        co_return std::unexpected(std::move(*failure));
    co_return Open{std::move(input)};
}

}  // namespace corvellan

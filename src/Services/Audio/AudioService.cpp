#include "AudioService.h"

#include <optional>
#include <stop_token>
#include <utility>

#include "Base/Log.h"
#include "Base/Text.h"
#include "CorvellanAudio/Level.h"
#include "CorvellanAudio/MicResampler.h"
#include "CorvellanAudio/Pcm16.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QString AudioError::errorDescription() const {
    switch (kind) {
    case Kind::formatCreationFailed: return u"Failed to create audio format"_s;
    case Kind::converterCreationFailed: return u"Failed to create audio converter"_s;
    }
    Q_UNREACHABLE();
}

/// What the executor alone touches.
struct AudioService::State {
    Executor& executor;
    Clock& clock;
    AudioInputs& inputs;
    Diagnostics::Side& counters;

    Logger logger{"Audio"};
    /// Present while capturing.
    std::unique_ptr<AudioInput> engine;
    std::optional<AsyncStream<AudioChunk>::Producer> continuation;
    float audioLevel = 0.0F;
    bool isMuted = false;

    /// Names the capture at hand, so that a late level of one that has ended is not taken for it.
    std::uint64_t capture = 0;
    std::stop_source gone;

    State(Executor& runsOn, Clock& time, AudioInputs& platform, Diagnostics::Side& side)
        : executor(runsOn),
          clock(time),
          inputs(platform),
          counters(side) {}

    void endCapture() {
        engine.reset();
        ++capture;
        if (continuation)
            continuation->finish();
        continuation.reset();
        audioLevel = 0.0F;
    }
};

/// What runs for each buffer. The audio thread's own; it reaches the service through posted work alone.
class AudioService::Tap {
public:
    Tap(const std::shared_ptr<State>& state, std::uint64_t capture, AsyncStream<AudioChunk>::Producer continuation,
        std::unique_ptr<MicResampler> converter, AudioFormat format)
        : m_state(state),
          m_capture(capture),
          m_executor(state->executor),
          m_clock(state->clock),
          m_counters(state->counters),
          m_continuation(std::move(continuation)),
          m_converter(std::move(converter)),
          m_format(format) {}

    void take(std::span<const float> samples, AudioFormat format) {
        const auto deliveredAt = m_clock.now();
        if (m_state.expired() || format.channels < 1 || samples.size() < static_cast<std::size_t>(format.channels))
            return;
        m_counters.framesCaptured.fetch_add(samples.size() / static_cast<std::size_t>(format.channels),
                                            std::memory_order_relaxed);
        storeLevel(firstChannelRMS(samples, format.channels));

        if (format != m_format) {
            m_converter = MicResampler::create(format.sampleRateHertz, format.channels);
            m_format = format;
        }
        if (!m_converter)
            return;
        const auto output = m_converter->process(samples);
        if (output.empty())
            return;
        QByteArray pcm{static_cast<qsizetype>(output.size_bytes()), Qt::Uninitialized};
        storeLittleEndian(output, {pcm.data(), output.size_bytes()});
        m_counters.bytesCaptured.fetch_add(output.size_bytes(), std::memory_order_relaxed);
        m_continuation.push({.pcm = std::move(pcm), .deliveredAt = deliveredAt});
    }

    void countReopening() { m_counters.reopenings.fetch_add(1, std::memory_order_relaxed); }

private:
    void storeLevel(float level) {
        m_executor.post([weak = m_state, capture = m_capture, level] {
            const auto state = weak.lock();
            if (state && state->capture == capture)
                state->audioLevel = level;
        });
    }

    std::weak_ptr<State> m_state;
    std::uint64_t m_capture;
    Executor& m_executor;
    Clock& m_clock;
    Diagnostics::Side& m_counters;
    AsyncStream<AudioChunk>::Producer m_continuation;
    std::unique_ptr<MicResampler> m_converter;
    AudioFormat m_format;
};

AudioService::AudioService(Executor& executor, Clock& clock, AudioInputs& inputs, Diagnostics::Side& counters)
    : m_state(std::make_shared<State>(executor, clock, inputs, counters)) {}

AudioService::~AudioService() {
    m_state->gone.request_stop();
    runAndWait(m_state->executor, [this] { m_state->endCapture(); });
}

QCoro::Task<float> AudioService::audioLevel() {
    return m_state->executor.call([state = m_state] { return state->audioLevel; });
}

QCoro::Task<bool> AudioService::isMuted() {
    return m_state->executor.call([state = m_state] { return state->isMuted; });
}

QCoro::Task<void> AudioService::setMuted(bool muted) {
    return m_state->executor.call([state = m_state, muted] {
        state->isMuted = muted;
        if (muted)
            state->audioLevel = 0.0F;
    });
}

QCoro::Task<void> AudioService::clearAudioLevel() {
    return m_state->executor.call([state = m_state] { state->audioLevel = 0.0F; });
}

QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> AudioService::startMic() {
    return m_state->executor.run([state = m_state]() -> QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> {
        const auto gone = state->gone.get_token();
        auto opened = co_await state->inputs.open(AudioInputKind::microphone, gone);
        if (!opened)
            co_return std::unexpected(opened.error());
        if (gone.stop_requested())
            co_return std::unexpected(Error::cancelled());

        const AudioFormat format = opened->input->format();
        auto converter = MicResampler::create(format.sampleRateHertz, format.channels);
        if (!converter)
            co_return std::unexpected(Error{AudioError{AudioError::Kind::converterCreationFailed}});

        auto [stream, producer] = AsyncStream<AudioChunk>::make();
        state->continuation = producer;
        const auto tap = std::make_shared<Tap>(state, ++state->capture, producer, std::move(converter), format);
        // An older capture ends here.
        state->engine = std::move(opened->input);
        state->engine->start({
            .onBuffer = [tap](std::span<const float> samples, AudioFormat now) { tap->take(samples, now); },
            // The stream stays open and silent until the device or the server is back.
            .onInterrupted = [](const Error&) {},
            .onReopened = [tap] { tap->countReopening(); },
        });
        state->logger.info(u"Mic started: "_s + text::fixed(format.sampleRateHertz, 6) + u"Hz → 24kHz"_s);
        co_return std::move(stream);
    });
}

QCoro::Task<void> AudioService::stopMic() {
    return m_state->executor.call([state = m_state] {
        state->endCapture();
        state->logger.info(u"Mic stopped"_s);
    });
}

}  // namespace corvellan

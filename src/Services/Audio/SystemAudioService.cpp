#include "SystemAudioService.h"

#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "Base/Log.h"
#include "Base/Text.h"
#include "CorvellanAudio/Level.h"
#include "CorvellanAudio/Pcm16.h"
#include "CorvellanAudio/SystemAudioCapture.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QByteArray resampleToPCM16(std::span<const float> samples, double fromRate, double toRate) {
    const std::size_t bytes = chunkBytesPerSample * resampledCount(samples.size(), fromRate, toRate);
    QByteArray pcm{static_cast<qsizetype>(bytes), Qt::Uninitialized};
    corvellan::resampleToPCM16(samples, fromRate, toRate, {pcm.data(), bytes});
    return pcm;
}

}  // namespace

/// What the executor alone touches.
struct SystemAudioService::State {
    Executor& executor;
    Clock& clock;
    AudioInputs& inputs;
    Diagnostics::Side& counters;

    Logger logger{"SystemAudio"};
    /// Present while running.
    std::unique_ptr<SystemAudioCapture> capture;
    float audioLevel = 0.0F;

    /// Streams that are still read, so that none is left to call a service that has gone.
    std::vector<AsyncStream<AudioChunk>::Producer> openStreams;
    /// Names the capture at hand, so that a late level of one that has ended is not taken for it.
    std::uint64_t captureNumber = 0;
    std::stop_source gone;

    State(Executor& runsOn, Clock& time, AudioInputs& platform, Diagnostics::Side& side)
        : executor(runsOn),
          clock(time),
          inputs(platform),
          counters(side) {}

    void updateAudioLevel(float level, std::uint64_t ofCapture) {
        if (ofCapture == captureNumber)
            audioLevel = level;
    }

    void endCapture() {
        if (capture)
            capture->stop();
        capture.reset();
        ++captureNumber;
        audioLevel = 0.0F;
    }

    void endStreams() {
        for (const auto& stream : std::exchange(openStreams, {}))
            stream.finish();
    }

    void stop() {
        endCapture();
        logger.info(u"System audio stopped"_s);
    }
};

SystemAudioService::SystemAudioService(Executor& executor, Clock& clock, AudioInputs& inputs,
                                       Diagnostics::Side& counters)
    : m_state(std::make_shared<State>(executor, clock, inputs, counters)) {}

SystemAudioService::~SystemAudioService() {
    m_state->gone.request_stop();
    runAndWait(m_state->executor, [this] {
        m_state->endCapture();
        m_state->endStreams();
    });
}

QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> SystemAudioService::start() {
    return m_state->executor.run([state = m_state]() -> QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> {
        const auto gone = state->gone.get_token();
        Diagnostics::Side& counters = state->counters;
        std::function<void()> countReopening = [&counters] {
            counters.reopenings.fetch_add(1, std::memory_order_relaxed);
        };
        auto started = co_await SystemAudioCapture::start(state->inputs, std::move(countReopening), gone);
        if (!started)
            co_return std::unexpected(started.error());
        if (gone.stop_requested())
            co_return std::unexpected(Error::cancelled());

        state->capture = std::move(started->capture);
        const double rate = state->capture->sampleRate;
        auto [stream, producer] = AsyncStream<AudioChunk>::make();
        std::erase_if(state->openStreams, [](const auto& older) { return older.hasEnded(); });
        state->openStreams.push_back(producer);
        const std::uint64_t number = ++state->captureNumber;
        const std::weak_ptr<State> weak = state;
        Executor& executor = state->executor;
        Clock& clock = state->clock;
        state->capture->setOnSamples(
            [weak, producer, number, rate, &executor, &clock, &counters](std::span<const float> samples) {
                const auto deliveredAt = clock.now();
                if (weak.expired() || samples.empty())
                    return;
                counters.framesCaptured.fetch_add(samples.size(), std::memory_order_relaxed);
                const float level = computeRMS(samples);
                executor.post([weak, number, level] {
                    if (const auto service = weak.lock())
                        service->updateAudioLevel(level, number);
                });
                QByteArray pcm = resampleToPCM16(samples, rate, chunkSampleRateHertz);
                counters.bytesCaptured.fetch_add(static_cast<std::uint64_t>(pcm.size()), std::memory_order_relaxed);
                producer.push({.pcm = std::move(pcm), .deliveredAt = deliveredAt});
            });
        producer.onTermination([weak, &executor] {
            executor.post([weak] {
                const auto service = weak.lock();
                if (service && !service->gone.stop_requested())
                    service->stop();
            });
        });
        state->logger.info(u"System audio started: "_s + text::fixed(rate, 6) + u"Hz → 24kHz"_s);
        co_return std::move(stream);
    });
}

QCoro::Task<void> SystemAudioService::stop() {
    return m_state->executor.call([state = m_state] { state->stop(); });
}

QCoro::Task<float> SystemAudioService::audioLevel() {
    return m_state->executor.call([state = m_state] { return state->audioLevel; });
}

}  // namespace corvellan

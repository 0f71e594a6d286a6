#include "SystemAudioCapture.h"

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvellan {

QString SystemAudioCapture::CaptureError::errorDescription() const {
    switch (kind) {
    case Kind::noDisplay: return u"No display found for audio capture"_s;
    }
    Q_UNREACHABLE();
}

QCoro::Task<SystemAudioCapture::Started> SystemAudioCapture::start(AudioInputs& inputs,
                                                                   std::function<void()> onReopened,
                                                                   std::stop_token stop) {
    auto opened = co_await inputs.open(AudioInputKind::systemOutput, stop);
    if (!opened) {
        const auto* const reason = opened.error().as<AudioInputError>();
        if (reason && reason->kind == AudioInputError::Kind::noDevice)
            co_return std::unexpected(Error{CaptureError{CaptureError::Kind::noDisplay}});
        co_return std::unexpected(opened.error());
    }

    const auto rate = opened->input->format().sampleRateHertz;
    auto capture = std::make_unique<SystemAudioCapture>(rate > 0 ? rate : defaultSampleRate);
    // The stream is stopped before the capture goes.
    auto* const self = capture.get();
    self->m_stream = std::move(opened->input);
    self->m_isCapturing.store(true, std::memory_order_release);
    self->m_stream->start({
        .onBuffer = [self](std::span<const float> samples,
                           AudioFormat format) { self->didOutputSampleBuffer(samples, format.channels); },
        .onInterrupted = [self](const Error& reason) { self->didStopWithError(reason); },
        .onReopened =
            [self, onReopened = std::move(onReopened)] {
                self->m_isCapturing.store(true, std::memory_order_release);
                if (onReopened)
                    onReopened();
            },
    });
    co_return Running{std::move(capture)};
}

SystemAudioCapture::~SystemAudioCapture() {
    stop();
}

void SystemAudioCapture::setOnSamples(OnSamples onSamples) {
    Q_ASSERT(!m_onSamplesOwner);
    m_onSamplesOwner = std::make_unique<OnSamples>(std::move(onSamples));
    m_onSamples.store(m_onSamplesOwner.get(), std::memory_order_release);
}

void SystemAudioCapture::stop() {
    m_stream.reset();
    m_isCapturing.store(false, std::memory_order_release);
}

void SystemAudioCapture::didOutputSampleBuffer(std::span<const float> samples, int channels) {
    if (samples.empty())
        return;
    m_ring.write(samples, channels, m_mono);
    if (const auto* const onSamples = m_onSamples.load(std::memory_order_acquire))
        (*onSamples)(m_mono);
}

void SystemAudioCapture::didStopWithError(const Error& error) {
    std::fprintf(stderr, "SCStream stopped: %s\n", qUtf8Printable(error.errorDescription()));
    m_isCapturing.store(false, std::memory_order_release);
}

}  // namespace corvellan

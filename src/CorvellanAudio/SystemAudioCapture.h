#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <QCoroTask>
#include <QString>
#include <span>
#include <stop_token>
#include <vector>

#include "Base/Error.h"
#include "Platform/AudioInput.h"
#include "SampleRing.h"

namespace corvellan {

/// What the computer plays, as mono samples at the output's own rate: pushed to `onSamples` and kept
/// in a ring for readers who pull. Both see the same samples.
class SystemAudioCapture {
public:
    /// Why there is nothing to capture.
    struct CaptureError {
        enum class Kind {
            noDisplay,  ///< Nothing that plays sound; the name is that of a screen's sound.
        };

        Kind kind = Kind::noDisplay;

        [[nodiscard]] QString errorDescription() const;
    };

    using OnSamples = std::function<void(std::span<const float> mono)>;
    /// Never null. A struct, since a task can't yield an `expected` of what null converts to.
    struct Running {
        std::unique_ptr<SystemAudioCapture> capture;
    };
    using Started = std::expected<Running, Error>;

    static constexpr std::uint32_t defaultSampleRate = 48'000;
    static constexpr std::size_t ringSize = SampleRing::ringSize;

    /// Opens the default output's sound and begins. Fails with `CaptureError`, or with the platform's
    /// error as it comes. Resumes the caller on the caller's executor.
    ///
    /// \param onReopened called on the audio thread whenever another device or a returned sound server
    ///     was taken; may be null.
    [[nodiscard]] static QCoro::Task<Started> start(AudioInputs& inputs, std::function<void()> onReopened,
                                                    std::stop_token stop);

    explicit SystemAudioCapture(std::uint32_t rate = defaultSampleRate) : sampleRate(rate) {}
    /// Stops.
    ~SystemAudioCapture();
    SystemAudioCapture(const SystemAudioCapture&) = delete;
    SystemAudioCapture& operator=(const SystemAudioCapture&) = delete;

    /// Hertz, the whole life long.
    const std::uint32_t sampleRate;

    /// False before the start, after the stop, and while device or sound server are lost. Any thread.
    [[nodiscard]] bool isCapturing() const { return m_isCapturing.load(std::memory_order_acquire); }

    /// Names who receives each buffer, on the audio thread and outside the lock. Once; samples that
    /// came before are in the ring only.
    void setOnSamples(OnSamples onSamples);

    /// Copies waiting samples to the start of `into`. Any thread, one reader at a time.
    ///
    /// \return the number of samples copied.
    [[nodiscard]] std::size_t readSamples(std::span<float> into) { return m_ring.read(into); }

    /// Samples consumed by `readSamples`, those lost to an overrun included. Any thread.
    [[nodiscard]] std::int64_t ringReadPos() const { return m_ring.ringReadPos(); }

    /// Ends the capture; when it returns, `onSamples` is not running and never runs again. Harmless
    /// when nothing runs.
    void stop();

    /// The platform's call-back for a buffer, on the audio thread. An empty one is ignored.
    void didOutputSampleBuffer(std::span<const float> samples, int channels);
    /// The platform's call-back for a stream that it stopped: tells so on standard error.
    void didStopWithError(const Error& error);

private:
    SampleRing m_ring;
    std::atomic<bool> m_isCapturing = false;
    std::unique_ptr<OnSamples> m_onSamplesOwner;
    std::atomic<const OnSamples*> m_onSamples = nullptr;
    /// The audio thread's own.
    std::vector<float> m_mono;
    /// Present while capturing. Last, so that it ends before what its call-backs use.
    std::unique_ptr<AudioInput> m_stream;
};

}  // namespace corvellan

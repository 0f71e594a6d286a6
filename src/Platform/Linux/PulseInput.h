#pragma once

#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/Clock.h"
#include "FixedBlocks.h"
#include "Platform/AudioInput.h"
#include "Platform/OwnSpeech.h"
#include "PulseLoop.h"
#include "PulseRecordStream.h"

namespace corvellan {

/// One default device, followed for as long as the input lives.
///
/// Everything happens on the loop's thread. A connection (context) is made; once it is ready the
/// default device is looked up and a stream opened on it. A change of the default is looked up after
/// it has settled, and the new device's stream takes over when it is ready. A stream that fails is
/// looked for again, and so is a server, with growing pauses. Only the first opening can fail.
class PulseInput final : public AudioInput, private PulseRecordStream::Listener {
public:
    /// Called once on the loop's thread; empty when the device is open.
    using OnOpened = std::function<void(std::optional<Error> failure)>;

    PulseInput(AudioInputKind kind, Clock& clock, const OwnSpeech& ownSpeech);
    ~PulseInput() override;
    PulseInput(const PulseInput&) = delete;
    PulseInput& operator=(const PulseInput&) = delete;

    /// Once. Ends within 2 seconds.
    void open(OnOpened onOpened);

    /// Only after `open` has succeeded.
    [[nodiscard]] AudioFormat format() const override { return m_firstFormat; }
    void start(AudioInputSink sink) override;

private:
    enum class Phase { opening, open, closed };

    void connect();
    void contextStateChanged();
    void contextLost(int error);
    void dropContext();
    void closeAll();

    void serverChanged(pa_subscription_event_type_t event);
    void lookUp();
    void serverInfo(const pa_server_info* info);
    void endLookUp();
    void deviceFound(const PulseDevice& device);
    void noDevice();

    void streamReady(PulseRecordStream& stream) override;
    void streamFailed(PulseRecordStream& stream, int error) override;
    void streamDelivered(PulseRecordStream& stream, std::span<const float> samples) override;
    void deliverBlock(std::span<const float> block, AudioFormat format);

    void watchdogDue();
    void retryLookUp();
    [[nodiscard]] std::chrono::milliseconds nextRetryDelay();
    void endOpening(std::optional<Error> failure);
    void interrupt(int error);

    const AudioInputKind m_kind;
    Clock& m_clock;
    const OwnSpeech& m_ownSpeech;

    PulseLoop m_loop;
    Phase m_phase = Phase::opening;
    OnOpened m_onOpened;
    AudioFormat m_firstFormat;
    std::optional<AudioInputSink> m_sink;
    bool m_isInterrupted = false;

    pa_context* m_context = nullptr;
    bool m_isLookingUp = false;
    bool m_isLookUpStale = false;
    std::optional<PulseDevice> m_found;

    /// The stream that delivers, and the one that is to take over when it is ready.
    std::unique_ptr<PulseRecordStream> m_stream;
    std::unique_ptr<PulseRecordStream> m_next;
    /// The system side's own.
    std::optional<FixedBlocks> m_blocks;
    std::vector<float> m_silence;

    std::chrono::milliseconds m_retryDelay;
    /// Bounds each attempt; connects again; looks up again.
    PulseTimer m_watchdog;
    PulseTimer m_reconnect;
    PulseTimer m_settle;
};

}  // namespace corvellan

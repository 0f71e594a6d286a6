#pragma once

#include <memory>
#include <QString>

#include "Base/Clock.h"
#include "Base/Diagnostics.h"
#include "Base/Executor.h"
#include "Platform/AudioInput.h"
#include "Services/Protocols/AudioServiceProtocol.h"

namespace corvellan {

/// Why a microphone that was opened can't be used. What the platform refuses comes as its own error.
struct AudioError {
    enum class Kind { formatCreationFailed, converterCreationFailed };

    Kind kind = Kind::converterCreationFailed;

    [[nodiscard]] QString errorDescription() const;
};

/// The default microphone in the device's own format, turned into chunks with a resampler whose state
/// carries on from buffer to buffer. Keeps a level for the meter and a mute flag, and decides nothing
/// about what the audio is for.
///
/// A device that changes or is lost during capture is followed by the platform; the stream stays open
/// and is silent meanwhile. A `startMic` while capturing takes the new capture's side: the old one ends,
/// and its stream stays open and silent. What arrives while a start is under way counts as before it.
class AudioService final : public AudioServiceProtocol {
public:
    /// All arguments must outlive the service. `counters` receives frames, bytes and reopenings.
    AudioService(Executor& executor, Clock& clock, AudioInputs& inputs, Diagnostics::Side& counters);
    /// Ends capture and the stream without a word in the log. Waits for `executor`.
    ~AudioService() override;
    AudioService(const AudioService&) = delete;
    AudioService& operator=(const AudioService&) = delete;

    QCoro::Task<float> audioLevel() override;
    QCoro::Task<bool> isMuted() override;
    QCoro::Task<void> setMuted(bool muted) override;
    QCoro::Task<void> clearAudioLevel() override;
    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> startMic() override;
    QCoro::Task<void> stopMic() override;

private:
    struct State;
    class Tap;

    std::shared_ptr<State> m_state;
};

}  // namespace corvellan

#pragma once

#include <memory>
#include <QByteArray>
#include <span>

#include "Base/Clock.h"
#include "Base/Diagnostics.h"
#include "Base/Executor.h"
#include "Platform/AudioInput.h"
#include "Services/Protocols/AudioServiceProtocol.h"

namespace corvellan {

/// What the default output plays, turned into chunks of the same form as the microphone's. The
/// resampling is plain and stateless, chunk by chunk.
///
/// An output that changes or is lost during capture is followed by the platform; the stream stays open
/// and is silent meanwhile. What arrives while a start is under way counts as before it.
class SystemAudioService final : public SystemAudioServiceProtocol {
public:
    /// All arguments must outlive the service. `counters` receives frames, bytes and reopenings.
    SystemAudioService(Executor& executor, Clock& clock, AudioInputs& inputs, Diagnostics::Side& counters);
    /// Ends capture and streams without a word in the log. Waits for `executor`.
    ~SystemAudioService() override;
    SystemAudioService(const SystemAudioService&) = delete;
    SystemAudioService& operator=(const SystemAudioService&) = delete;

    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> start() override;
    QCoro::Task<void> stop() override;
    QCoro::Task<float> audioLevel() override;

private:
    struct State;

    std::shared_ptr<State> m_state;
};

}  // namespace corvellan

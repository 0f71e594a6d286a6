#pragma once

#include "AppFactory.h"
#include "Base/Clock.h"
#include "Base/Diagnostics.h"
#include "Base/Executor.h"

namespace corvellan {

class AudioInputs;

/// Makes the services for the two sides of a call: counters and latencies go to the side's own part
/// of the diagnostics. What it is given outlives what it makes.
class AppServices final : public AppFactory {
public:
    AppServices(Executor& live, Clock& clock, AudioInputs& inputs, Diagnostics& diagnostics);

    [[nodiscard]] std::unique_ptr<AudioServiceProtocol> makeAudio() override;
    [[nodiscard]] std::unique_ptr<SttServiceProtocol> makeMicrophoneStt() override;
    [[nodiscard]] std::unique_ptr<AuthServiceProtocol> makeAuth() override;

    [[nodiscard]] std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override;
    [[nodiscard]] std::unique_ptr<TtsServiceProtocol> makeTts() override;
    [[nodiscard]] std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override;
    [[nodiscard]] std::unique_ptr<SttServiceProtocol> makeStt() override;
    [[nodiscard]] std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override;

private:
    Executor& m_live;
    Clock& m_clock;
    AudioInputs& m_inputs;
    Diagnostics& m_diagnostics;
};

}  // namespace corvellan

#include "AppServices.h"

#include "AbsentServices.h"
#include "Base/Deployment.h"
#include "Services/Audio/AudioService.h"
#include "Services/Audio/SystemAudioService.h"
#include "Services/SttService.h"
#include "Services/WebSocketService.h"

namespace corvellan {

AppServices::AppServices(Executor& live, Clock& clock, AudioInputs& inputs, Diagnostics& diagnostics)
    : m_live(live),
      m_clock(clock),
      m_inputs(inputs),
      m_diagnostics(diagnostics) {}

std::unique_ptr<AudioServiceProtocol> AppServices::makeAudio() {
    return std::make_unique<AudioService>(m_live, m_clock, m_inputs, m_diagnostics.mic);
}

std::unique_ptr<SttServiceProtocol> AppServices::makeMicrophoneStt() {
    return std::make_unique<SttService>(m_live, m_clock, m_diagnostics.mic, deployment::sttUrl());
}

std::unique_ptr<AuthServiceProtocol> AppServices::makeAuth() {
    return std::make_unique<AbsentAuthService>();
}

std::unique_ptr<ScreenShareServiceProtocol> AppServices::makeScreenShare() {
    return std::make_unique<AbsentScreenShareService>();
}

std::unique_ptr<TtsServiceProtocol> AppServices::makeTts() {
    return std::make_unique<AbsentTtsService>();
}

std::unique_ptr<SystemAudioServiceProtocol> AppServices::makeSystemAudio() {
    return std::make_unique<SystemAudioService>(m_live, m_clock, m_inputs, m_diagnostics.system);
}

std::unique_ptr<SttServiceProtocol> AppServices::makeStt() {
    return std::make_unique<SttService>(m_live, m_clock, m_diagnostics.system, deployment::sttUrl());
}

std::unique_ptr<WebSocketServiceProtocol> AppServices::makeWebSocket() {
    return std::make_unique<WebSocketService>(m_live, m_clock, m_diagnostics);
}

}  // namespace corvellan

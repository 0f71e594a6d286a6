#include "AppServices.h"

#include <QCoreApplication>

#include "Base/Deployment.h"
#include "Services/Audio/AudioService.h"
#include "Services/Audio/SystemAudioService.h"
#include "Services/Auth/AuthService.h"
#include "Services/ScreenShare/ScreenShareService.h"
#include "Services/Speech/TtsService.h"
#include "Services/SttService.h"
#include "Services/WebSocketService.h"

namespace corvellan {

std::unique_ptr<AudioServiceProtocol> AppServices::makeAudio() {
    return std::make_unique<AudioService>(m_parts.live, m_parts.clock, m_parts.audioInputs, m_parts.diagnostics.mic);
}

std::unique_ptr<SttServiceProtocol> AppServices::makeMicrophoneStt() {
    return std::make_unique<SttService>(m_parts.live, m_parts.clock, m_parts.diagnostics.mic, deployment::sttUrl());
}

std::unique_ptr<AuthServiceProtocol> AppServices::makeAuth() {
    return std::make_unique<AuthService>(AuthService::Environment{
        .executor = m_parts.network,
        .main = m_parts.main,
        .clock = m_parts.clock,
        .http = m_parts.http,
        .browser = m_parts.browser,
        .listeners = m_parts.listeners,
        .defaultBaseUrl = deployment::chatUrl(),
        .tokenFilePath = m_parts.tokenFilePath,
    });
}

std::unique_ptr<ScreenShareServiceProtocol> AppServices::makeScreenShare() {
    return std::make_unique<ScreenShareService>(
        ScreenShareService::Environment{.executor = m_parts.network,
                                        .worker = m_parts.worker,
                                        .clock = m_parts.clock,
                                        .http = m_parts.http,
                                        .captures = m_parts.screenCaptures,
                                        .ownProcessId = QCoreApplication::applicationPid()});
}

std::unique_ptr<TtsServiceProtocol> AppServices::makeTts() {
    return std::make_unique<TtsService>(m_parts.main, m_parts.speechSynthesizer);
}

std::unique_ptr<SystemAudioServiceProtocol> AppServices::makeSystemAudio() {
    return std::make_unique<SystemAudioService>(m_parts.live, m_parts.clock, m_parts.audioInputs,
                                                m_parts.diagnostics.system);
}

std::unique_ptr<SttServiceProtocol> AppServices::makeStt() {
    return std::make_unique<SttService>(m_parts.live, m_parts.clock, m_parts.diagnostics.system, deployment::sttUrl());
}

std::unique_ptr<WebSocketServiceProtocol> AppServices::makeWebSocket() {
    return std::make_unique<WebSocketService>(m_parts.live, m_parts.clock, m_parts.diagnostics);
}

}  // namespace corvellan

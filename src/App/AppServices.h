#pragma once

#include "AppFactory.h"
#include "Base/Clock.h"
#include "Base/Diagnostics.h"
#include "Base/Executor.h"

namespace corvellan {

class AudioInputs;
class HttpClientProtocol;
class LoopbackListeners;
class ScreenCaptures;
class SpeechSynthesizer;
class WebBrowser;

/// Makes the program's services: counters and latencies of a call go to the side's own part of the
/// diagnostics.
class AppServices final : public AppFactory {
public:
    /// What they are made of; all of it outlives what is made.
    struct Parts {
        Executor& main;
        Executor& live;
        Executor& network;
        Executor& worker;
        Clock& clock;
        AudioInputs& audioInputs;
        ScreenCaptures& screenCaptures;
        SpeechSynthesizer& speechSynthesizer;
        HttpClientProtocol& http;
        WebBrowser& browser;
        LoopbackListeners& listeners;
        QString tokenFilePath;
        Diagnostics& diagnostics;
    };

    explicit AppServices(Parts parts) : m_parts(std::move(parts)) {}

    [[nodiscard]] std::unique_ptr<AudioServiceProtocol> makeAudio() override;
    [[nodiscard]] std::unique_ptr<SttServiceProtocol> makeMicrophoneStt() override;
    [[nodiscard]] std::unique_ptr<AuthServiceProtocol> makeAuth() override;

    [[nodiscard]] std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override;
    [[nodiscard]] std::unique_ptr<TtsServiceProtocol> makeTts() override;
    [[nodiscard]] std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override;
    [[nodiscard]] std::unique_ptr<SttServiceProtocol> makeStt() override;
    [[nodiscard]] std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override;

private:
    Parts m_parts;
};

}  // namespace corvellan

#pragma once

#include <memory>

#include "AudioServiceProtocol.h"
#include "ScreenShareServiceProtocol.h"
#include "SttServiceProtocol.h"
#include "TtsServiceProtocol.h"
#include "WebSocketServiceProtocol.h"

namespace corvellan {

/// Makes the services that the session builds by itself, so that it knows contracts only.
class ServiceFactory {
public:
    virtual ~ServiceFactory() = default;

    [[nodiscard]] virtual std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() = 0;
    [[nodiscard]] virtual std::unique_ptr<TtsServiceProtocol> makeTts() = 0;
    [[nodiscard]] virtual std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() = 0;
    [[nodiscard]] virtual std::unique_ptr<SttServiceProtocol> makeStt() = 0;
    [[nodiscard]] virtual std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() = 0;
};

}  // namespace corvellan

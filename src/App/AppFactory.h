#pragma once

#include <memory>

#include "Services/Protocols/AuthServiceProtocol.h"
#include "Services/Protocols/ServiceFactory.h"

namespace corvellan {

/// Makes all services of the program: those that the session builds by itself, and the four that it is
/// given.
class AppFactory : public ServiceFactory {
public:
    [[nodiscard]] virtual std::unique_ptr<AudioServiceProtocol> makeAudio() = 0;
    [[nodiscard]] virtual std::unique_ptr<SttServiceProtocol> makeMicrophoneStt() = 0;
    [[nodiscard]] virtual std::unique_ptr<AuthServiceProtocol> makeAuth() = 0;
};

}  // namespace corvellan

#pragma once

#include "Services/Protocols/TtsServiceProtocol.h"

/// What stands behind the contracts of services that this version does not have. Each answers
/// honestly that nothing is there; a coached call needs none of them.
namespace corvellan {

class AbsentTtsService final : public TtsServiceProtocol {
public:
    void feedToken(const QString& token) override;
    void flush() override;
    void stop() override;
    void setOnPlayingChanged(std::function<void(bool)> callback) override;
};

}  // namespace corvellan

#pragma once

#include "Services/Protocols/ScreenShareServiceProtocol.h"
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

class AbsentScreenShareService final : public ScreenShareServiceProtocol {
public:
    QCoro::Task<void> start(QString sessionId, QString httpBase, std::optional<QString> authToken,
                            ScreenShareOptions options) override;
    QCoro::Task<void> stop() override;
};

}  // namespace corvellan

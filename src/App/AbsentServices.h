#pragma once

#include "Services/Protocols/AuthServiceProtocol.h"
#include "Services/Protocols/ScreenShareServiceProtocol.h"
#include "Services/Protocols/TtsServiceProtocol.h"

/// What stands behind the contracts of services that this version does not have. Each answers
/// honestly that nothing is there; a session on a local server needs none of them.
namespace corvellan {

/// Why an operation cannot be done in this version.
struct AbsentServiceError {
    QString sentence;
    [[nodiscard]] QString errorDescription() const { return sentence; }
};

class AbsentAuthService final : public AuthServiceProtocol {
public:
    QCoro::Task<bool> isAuthenticated() override;
    QCoro::Task<std::optional<QString>> token() override;
    QCoro::Task<std::optional<QString>> validToken(QString authBaseUrl) override;
    QCoro::Task<void> invalidateToken() override;
    QCoro::Task<std::expected<void, Error>> login() override;
    QCoro::Task<std::expected<void, Error>> login(QString authBaseUrl) override;
    QCoro::Task<void> logout() override;
};

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

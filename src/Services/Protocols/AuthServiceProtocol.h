#pragma once

#include <expected>
#include <optional>
#include <QCoroTask>
#include <QString>

#include "Base/Error.h"

namespace corvellan {

/// Signs the user in and hands valid access tokens out. Work runs on the service's own executor;
/// callers are resumed on theirs.
class AuthServiceProtocol {
public:
    virtual ~AuthServiceProtocol() = default;

    /// There are usable tokens in memory.
    virtual QCoro::Task<bool> isAuthenticated() = 0;
    /// The access token in memory, as it stands.
    virtual QCoro::Task<std::optional<QString>> token() = 0;
    /// The best access token to hand, refreshed if needed. Never fails and never opens the browser.
    virtual QCoro::Task<std::optional<QString>> validToken(QString authBaseUrl) = 0;
    /// Forgets everything, after a server refused the token.
    virtual QCoro::Task<void> invalidateToken() = 0;
    /// As below, at the authorization server that this program was built for.
    virtual QCoro::Task<std::expected<void, Error>> login() = 0;
    /// Makes sure that the user is signed in, with the browser if it must be.
    virtual QCoro::Task<std::expected<void, Error>> login(QString authBaseUrl) = 0;
    /// Forgets everything.
    virtual QCoro::Task<void> logout() = 0;
};

}  // namespace corvellan

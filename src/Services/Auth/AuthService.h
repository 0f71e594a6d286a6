#pragma once

#include <memory>

#include "AuthError.h"
#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Services/Protocols/AuthServiceProtocol.h"

namespace corvellan {

class HttpClientProtocol;
class LoopbackListeners;
class WebBrowser;

/// Signs in by OAuth 2.0 with an authorization code and PKCE: the user's browser does what the user sees, a
/// listener on a port of this machine takes the code, and the token pair is kept in memory and in a file.
///
/// While one operation waits, others run: two refreshes may overlap, and the later answer stays. A refresh
/// that is refused because the other one was faster leaves that one's tokens in place. A `logout` during a
/// refresh stands: what comes afterwards is dropped.
class AuthService final : public AuthServiceProtocol {
public:
    /// What it works with. All of it must outlive the service; `executor` runs on a thread with a Qt event
    /// loop, and `main` is the browser's.
    struct Environment {
        Executor& executor;
        Executor& main;
        Clock& clock;
        HttpClientProtocol& http;
        WebBrowser& browser;
        LoopbackListeners& listeners;
        QString defaultBaseUrl;  ///< For `login` without an address.
        QString tokenFilePath;   ///< `TokenFile::defaultPath()` but for tests.
    };

    explicit AuthService(Environment environment);
    /// What is under way ends as cancelled; the port is free again. On the thread of `main`.
    ~AuthService() override;
    AuthService(const AuthService&) = delete;
    AuthService& operator=(const AuthService&) = delete;

    QCoro::Task<bool> isAuthenticated() override;
    QCoro::Task<std::optional<QString>> token() override;
    QCoro::Task<std::optional<QString>> validToken(QString authBaseUrl) override;
    QCoro::Task<void> invalidateToken() override;
    QCoro::Task<std::expected<void, Error>> login() override;
    QCoro::Task<std::expected<void, Error>> login(QString authBaseUrl) override;
    QCoro::Task<void> logout() override;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace corvellan

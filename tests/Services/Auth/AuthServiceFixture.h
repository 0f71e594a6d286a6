#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrlQuery>
#include <string>
#include <thread>

#include "Models/AuthTokens.h"
#include "Platform/Linux/Loopback/SocketLoopbackListener.h"
#include "Services/Auth/AuthService.h"
#include "Services/HttpClient.h"
#include "Support/FakeDesktop.h"
#include "Support/LogCapture.h"
#include "Support/ManualClock.h"
#include "Support/TcpClient.h"
#include "Support/TestLoop.h"
#include "TokenServer.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

enum class Placement { inlined, threaded };

inline std::string placementName(const testing::TestParamInfo<Placement>& info) {
    return info.param == Placement::inlined ? "inlined" : "threaded";
}

/// The service over real sockets on both sides: a token endpoint on loopback, and clients that come to its
/// port as a browser does. Only the browser's window and the time are the test's own. Every test runs with
/// the service on the main thread and on its own.
class AuthServiceFixture : public testing::TestWithParam<Placement> {
protected:
    using Login = std::expected<void, Error>;
    static constexpr quint16 port = 9876;
    /// The manual clock's own time.
    static constexpr std::uint64_t nowSeconds = 1'772'445'600;

    AuthServiceFixture() {
        // The machine's own proxy is not for loopback.
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
        if (GetParam() == Placement::threaded)
            m_thread.emplace("network");
        EXPECT_TRUE(server.listen());
        http = std::make_unique<HttpClient>(executor(), clock);
        makeService(listeners);
    }
    ~AuthServiceFixture() override {
        service.reset();
        http.reset();
        settleAll();
    }

    void makeService(LoopbackListeners& with) {
        service.reset();
        service = std::make_unique<AuthService>(AuthService::Environment{.executor = executor(),
                                                                         .main = mainExecutor(),
                                                                         .clock = clock,
                                                                         .http = *http,
                                                                         .browser = desktop.browser,
                                                                         .listeners = with,
                                                                         .defaultBaseUrl = server.baseUrl(),
                                                                         .tokenFilePath = path()});
    }

    [[nodiscard]] Executor& executor() { return m_thread ? m_thread->executor() : mainExecutor(); }
    /// Everything that was posted so far has run, on both sides.
    void settleAll() {
        settle();
        complete(executor().call([] {}));
        settle();
    }
    /// As `settleAfter`, for the service's thread as well.
    void pass(std::chrono::nanoseconds time) {
        settleAll();
        clock.advance(time);
        settleAll();
    }

    // The file.
    [[nodiscard]] QString path() const { return m_home.filePath(u".config/corvellan/auth.json"_s); }
    void store(const QByteArray& json) const {
        ASSERT_TRUE(QDir{}.mkpath(QFileInfo{path()}.path()));
        QFile file{path()};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(json);
    }
    void store(const QString& access, std::optional<QString> refresh, std::optional<std::uint64_t> secondsLeft) const {
        store(AuthTokens{.accessToken = access,
                         .refreshToken = std::move(refresh),
                         .expiresAt = secondsLeft ? std::optional{nowSeconds + *secondsLeft} : std::nullopt}
                  .encode());
    }
    /// What the file holds; empty where there is none.
    [[nodiscard]] std::string stored() const {
        QFile file{path()};
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string{};
    }
    static std::string fileOf(const char* access, const char* refresh, std::uint64_t secondsLeft) {
        return R"({"access_token":")" + std::string{access} + R"(","refresh_token":")" + refresh +
               R"(","expires_at":)" + std::to_string(nowSeconds + secondsLeft) + "}";
    }

    // The calls.
    /// "ok", or what the user reads.
    static std::string text(const Login& result) {
        return result ? "ok" : result.error().errorDescription().toStdString();
    }
    /// A sign-in under way.
    struct Attempt {
        std::optional<Login> result;
    };
    std::shared_ptr<Attempt> beginLogin() {
        const auto attempt = std::make_shared<Attempt>();
        keep(service->login(server.baseUrl()), attempt);
        return attempt;
    }
    static std::string end(const std::shared_ptr<Attempt>& attempt) {
        return spinUntil([&] { return attempt->result.has_value(); }) ? text(*attempt->result) : "goes on";
    }
    std::string login() { return end(beginLogin()); }
    std::string validToken() {
        return complete(service->validToken(server.baseUrl())).value_or(u"(none)"_s).toStdString();
    }
    std::string token() { return complete(service->token()).value_or(u"(none)"_s).toStdString(); }
    bool isAuthenticated() { return complete(service->isAuthenticated()); }

    // The browser.
    /// A page was opened and the port answers.
    [[nodiscard]] bool isWaiting(std::size_t pages = 1) {
        const QString line = u"Waiting for OAuth callback on port 9876"_s;
        return spinUntil([&] {
                   return desktop.browser.pages.size() >= pages &&
                          logs.infos().count(line) >= static_cast<qsizetype>(pages);
               }) &&
               (settleAll(), true);
    }
    [[nodiscard]] QString pageItem(const QString& name, std::size_t page = 0) const {
        return QUrlQuery{desktop.browser.pages.at(page)}.queryItemValue(name, QUrl::FullyDecoded);
    }
    /// What a browser sends when it is sent to `target`.
    static QByteArray browserRequest(const QByteArray& target) {
        return "GET " + target +
               " HTTP/1.1\r\nHost: 127.0.0.1:9876\r\nUser-Agent: Mozilla/5.0\r\nAccept: text/html\r\n\r\n";
    }
    /// The answer that a browser gets to see.
    static QByteArray visit(const QByteArray& target) {
        TcpClient client{port};
        client.send(browserRequest(target));
        return client.receivedToTheEnd();
    }

    ManualClock clock;
    FakeDesktop desktop;
    LogCapture logs{u"Auth"_s};
    TokenServer server;
    SocketLoopbackListeners listeners;
    std::unique_ptr<HttpClient> http;
    std::unique_ptr<AuthService> service;

private:
    static QCoro::Task<void> keep(QCoro::Task<Login> task, std::shared_ptr<Attempt> attempt) {
        attempt->result.emplace(co_await task);
    }

    QTemporaryDir m_home;
    std::optional<WorkerThread> m_thread;
};

inline const QByteArray callbackAnswer{
    "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 79\r\nConnection: close\r\n\r\n"
    "<html><body><h2>Authenticated!</h2><p>You can close this tab.</p></body></html>"};

/// A good answer of the token endpoint.
inline const QByteArray goodTokens{R"({"access_token":"new","refresh_token":"next","expires_in":3600})"};

}  // namespace corvellan::test

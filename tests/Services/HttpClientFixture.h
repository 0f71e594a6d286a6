#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Services/HttpClient.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/ManualClock.h"
#include "Support/RawServer.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

/// A whole answer, as a server writes it.
inline QByteArray answer(const QByteArray& statusLine, const QByteArray& body, const QByteArray& headers = {}) {
    return "HTTP/1.1 " + statusLine + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers +
           "\r\n" + body;
}

inline constexpr qint64 maxBodyBytes = 1024 * 1024;

inline HttpRequest get(const QUrl& url) {
    return {.url = url, .maxBodyBytes = maxBodyBytes};
}

/// A client before a server that writes bytes as they are.
class HttpClientTest : public testing::Test {
protected:
    using Result = std::expected<HttpAnswer, Error>;

    HttpClientTest() {
        // The machine's own proxy is not for loopback.
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
    }

    void serve(const QByteArray& bytes) {
        server.onRequest = [bytes](RawServer& raw) { raw.write(bytes); };
        ASSERT_TRUE(server.listen());
    }

    [[nodiscard]] QUrl url() const {
        return server.url(QStringLiteral("http")).resolved(QUrl{QStringLiteral("/page")});
    }

    /// Under way when it returns; `result` holds the end.
    void begin(std::stop_token stop = {}) {
        underWay = keep(client->send(get(url()), std::move(stop)));
        ASSERT_TRUE(spinUntil([this] { return !server.request().isEmpty(); }));
    }
    [[nodiscard]] bool ends() {
        return spinUntil([this] { return result.has_value(); });
    }
    /// Of an answer; what went wrong stands in its place.
    static QByteArray body(QCoro::Task<Result> task) {
        const auto answered = complete(std::move(task));
        return answered ? answered->body : "failed: " + answered.error().errorDescription().toUtf8();
    }
    QCoro::Task<void> keep(QCoro::Task<Result> task) { result.emplace(co_await task); }

    RawServer server;
    ManualClock clock;
    std::unique_ptr<HttpClient> client = std::make_unique<HttpClient>(mainExecutor(), clock);
    std::optional<QCoro::Task<void>> underWay;
    std::optional<Result> result;
};

}  // namespace corvellan::test

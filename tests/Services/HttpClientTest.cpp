#include "Services/HttpClient.h"

#include <gtest/gtest.h>

#include <optional>
#include <QNetworkProxyFactory>

#include "Support/LoopbackHttpServer.h"
#include "Support/ManualClock.h"
#include "Support/RawServer.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

QByteArray answer(const QByteArray& statusLine, const QByteArray& body, const QByteArray& headers = {}) {
    return "HTTP/1.1 " + statusLine + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers +
           "\r\n" + body;
}

constexpr qint64 maxBodyBytes = 1024 * 1024;

HttpRequest get(const QUrl& url) {
    return {.url = url, .maxBodyBytes = maxBodyBytes};
}

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

    [[nodiscard]] QUrl url() const { return server.url(u"http"_s).resolved(QUrl{u"/page"_s}); }

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

}  // namespace

TEST_F(HttpClientTest, getsTheBodyInOneRequest) {
    serve(answer("200 OK", "<rss/>"));
    const auto answered = complete(client->send(get(url()), {}));
    ASSERT_TRUE(answered) << answered.error().errorDescription().toStdString();
    EXPECT_EQ(answered->body, "<rss/>");
    EXPECT_TRUE(server.request().startsWith("GET /page HTTP/1.1\r\n")) << server.request().toStdString();
    EXPECT_FALSE(server.request().toLower().contains("gzip"));
}

TEST_F(HttpClientTest, handsBytesOutAsTheyCome) {
    const QByteArray bytes{"\xFF\0\x80", 3};
    serve(answer("200 OK", bytes));
    EXPECT_EQ(body(client->send(get(url()), {})), bytes);
}

TEST_F(HttpClientTest, takesAnEmptyBody) {
    serve(answer("200 OK", ""));
    EXPECT_EQ(body(client->send(get(url()), {})), QByteArray{});
}

TEST_F(HttpClientTest, unpacksNothing) {
    serve(answer("200 OK", "packed", "Content-Encoding: gzip\r\n"));
    EXPECT_EQ(body(client->send(get(url()), {})), "packed");
}

TEST_F(HttpClientTest, takesAnErrorPageForABody) {
    for (const char* status :
         {"400 Bad Request", "401 Unauthorized", "403 Forbidden", "404 Not Found", "405 Method Not Allowed",
          "409 Conflict", "410 Gone", "418 Teapot", "451 Unavailable", "500 Internal Server Error",
          "501 Not Implemented", "503 Service Unavailable", "599 Unknown"}) {
        RawServer refusing;
        refusing.onRequest = [status](RawServer& raw) { raw.write(answer(status, "a page")); };
        ASSERT_TRUE(refusing.listen());
        const auto answered = complete(client->send(get(refusing.url(u"http"_s)), {}));
        ASSERT_TRUE(answered) << status << ": " << answered.error().errorDescription().toStdString();
        EXPECT_EQ(answered->body, "a page") << status;
    }
}

TEST_F(HttpClientTest, followsARedirect) {
    RawServer first;
    serve(answer("200 OK", "moved here"));
    first.onRequest = [target = url().toEncoded()](RawServer& raw) {
        raw.write(answer("302 Found", "", "Location: " + target + "\r\n"));
    };
    ASSERT_TRUE(first.listen());
    EXPECT_EQ(body(client->send(get(first.url(u"http"_s)), {})), "moved here");
}

TEST_F(HttpClientTest, followsNoRedirectToAFile) {
    serve(answer("302 Found", "", "Location: file:///etc/hostname\r\n"));
    EXPECT_FALSE(complete(client->send(get(url()), {})));
}

TEST_F(HttpClientTest, readsNoFile) {
    const auto answered = complete(client->send(get(QUrl{u"file:///etc/hostname"_s}), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The address does not begin with http:// or https://."_s);
}

TEST_F(HttpClientTest, failsWhereNobodyListens) {
    QTcpServer nobody;
    ASSERT_TRUE(nobody.listen(QHostAddress::LocalHost));
    const QUrl address{u"http://127.0.0.1:%1/page"_s.arg(nobody.serverPort())};
    nobody.close();
    const auto answered = complete(client->send(get(address), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<TransportError>());
    EXPECT_EQ(answered.error().errorDescription(), u"Connection refused"_s);
}

TEST_F(HttpClientTest, failsWhenTheAnswerIsCutShort) {
    for (const char* status : {"200 OK", "404 Not Found"}) {
        RawServer cutting;
        cutting.onRequest = [status](RawServer& raw) {
            raw.write(QByteArray{"HTTP/1.1 "} + status + "\r\nContent-Length: 100\r\n\r\nonly this");
            raw.finish();
        };
        ASSERT_TRUE(cutting.listen());
        const auto answered = complete(client->send(get(cutting.url(u"http"_s)), {}));
        ASSERT_FALSE(answered) << status;
        EXPECT_EQ(answered.error().errorDescription(), u"Connection closed"_s) << status;
    }
}

TEST_F(HttpClientTest, failsOnWhatIsNoHttp) {
    QTcpServer other;
    int visits = 0;
    QObject::connect(&other, &QTcpServer::newConnection, &other, [&] {
        ++visits;
        QTcpSocket* const client = other.nextPendingConnection();
        client->write("SSH-2.0-none\r\n\r\n");
        client->disconnectFromHost();
    });
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    const auto answered = complete(client->send(get(QUrl{u"http://127.0.0.1:%1/page"_s.arg(other.serverPort())}), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<TransportError>());
    // Qt asks again where a connection breaks, but not for ever.
    EXPECT_LE(visits, 10);
}

TEST_F(HttpClientTest, takesABodyOfTheLargestSize) {
    const QByteArray largest(maxBodyBytes, 'x');
    serve(answer("200 OK", largest));
    EXPECT_TRUE(body(client->send(get(url()), {})) == largest);
}

TEST_F(HttpClientTest, refusesAByteMore) {
    serve(answer("200 OK", QByteArray(maxBodyBytes + 1, 'x')));
    const auto answered = complete(client->send(get(url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, leavesABodyThatNeverEnds) {
    server.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\n\r\n"); };
    ASSERT_TRUE(server.listen());
    begin();
    const QByteArray piece(64 * 1024, 'x');
    // The server goes on for as long as anybody reads.
    EXPECT_TRUE(spinUntil([&] {
        if (!server.isGone() && server.bytesToWrite() == 0)
            server.write(piece);
        return result.has_value() && server.isGone();
    }));
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, givesUpAfterAMinute) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    begin();
    settleAfter(clock, 60s - 1ms);
    EXPECT_FALSE(result);
    settleAfter(clock, 1ms);
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().errorDescription(), u"The connection timed out."_s);
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(HttpClientTest, givesUpABodyThatTrickles) {
    server.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n"); };
    ASSERT_TRUE(server.listen());
    begin();
    for (int i = 0; i < 59; ++i) {
        server.write("x");
        settleAfter(clock, 1s);
    }
    EXPECT_FALSE(result);
    settleAfter(clock, 1s);
    ASSERT_TRUE(ends());
    EXPECT_FALSE(*result);
}

TEST_F(HttpClientTest, stopsOnRequest) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    std::stop_source stop;
    begin(stop.get_token());
    stop.request_stop();
    EXPECT_FALSE(result);
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_TRUE(result->error().as<CancelledError>());
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(HttpClientTest, asksNobodyOnceStopped) {
    serve(answer("200 OK", "late"));
    std::stop_source stop;
    stop.request_stop();
    const auto answered = complete(client->send(get(url()), stop.get_token()));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<CancelledError>());
    // Whoever comes next is the first.
    EXPECT_EQ(body(client->send(get(url().resolved(QUrl{u"/next"_s})), {})), "late");
    EXPECT_TRUE(server.request().startsWith("GET /next ")) << server.request().toStdString();
}

TEST_F(HttpClientTest, cancelsWhatIsUnderWayAsItGoes) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    begin();
    client.reset();
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_TRUE(result->error().as<CancelledError>());
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(HttpClientTest, worksOnAThreadOfItsOwn) {
    serve(answer("200 OK", "<rss/>"));
    WorkerThread network{"test-network"};
    HttpClient threaded{network.executor(), clock};
    EXPECT_EQ(body(threaded.send(get(url()), {})), "<rss/>");
}

TEST_F(HttpClientTest, goesThroughTheSystemsProxy) {
    serve(answer("200 OK", "by proxy"));
    qputenv("http_proxy", server.url(u"http"_s).toEncoded());
    EXPECT_EQ(body(client->send(get(QUrl{u"http://coach.invalid/page"_s}), {})), "by proxy");
    qunsetenv("http_proxy");
    EXPECT_TRUE(server.request().startsWith("GET http://coach.invalid/page ")) << server.request().toStdString();
}

// What goes out.

TEST_F(HttpClientTest, sendsMethodHeadersAndBodyAsTheyAre) {
    LoopbackHttpServer http;
    ASSERT_TRUE(http.listen());
    http.answer(201, "made");
    HttpRequest request{.method = "POST",
                        .url = http.url(u"/calls/7/feedback?a=%2F+b"_s),
                        .headers = {{"Authorization", "Bearer t"}, {"Content-Type", "application/json"}},
                        .body = "{\"rating\":1}"};
    const auto answered = complete(client->send(std::move(request), {}));
    ASSERT_TRUE(answered) << answered.error().errorDescription().toStdString();
    EXPECT_EQ(answered->status, 201);
    EXPECT_EQ(answered->body, "made");
    EXPECT_EQ(answered->headers.at(0), (std::pair<QByteArray, QByteArray>{"Content-Length", "4"}));
    ASSERT_EQ(http.requests.size(), 1);
    const auto& seen = http.requests[0];
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.target, "/calls/7/feedback?a=%2F+b");
    EXPECT_EQ(seen.header("Authorization"), "Bearer t");
    EXPECT_EQ(seen.header("Content-Type"), "application/json");
    EXPECT_EQ(seen.body, "{\"rating\":1}");
}

TEST_F(HttpClientTest, aHeaderWithALineBreakSendsNothing) {
    LoopbackHttpServer http;
    ASSERT_TRUE(http.listen());
    for (const auto& value : {QByteArray{"Bearer t\r\nX-More: 1"}, QByteArray{"a\nb"}, QByteArray{"a\0b", 3}}) {
        HttpRequest request = get(http.url());
        request.headers = {{"Authorization", value}};
        const auto answered = complete(client->send(request, {}));
        ASSERT_FALSE(answered);
        EXPECT_EQ(answered.error().errorDescription(), u"A header of the request holds a line break."_s);
    }
    EXPECT_TRUE(http.requests.isEmpty());
}

TEST_F(HttpClientTest, anAddressThatIsNoneFails) {
    for (const auto& address : {u""_s, u"/ext/sensor"_s, u"http://"_s, u"ws://127.0.0.1/"_s, u"http://[bad/"_s}) {
        const auto answered = complete(client->send(get(QUrl{address}), {}));
        ASSERT_FALSE(answered) << address.toStdString();
        EXPECT_TRUE(answered.error().as<TransportError>()) << address.toStdString();
    }
}

TEST_F(HttpClientTest, manyRequestsRunSideBySide) {
    LoopbackHttpServer http;
    ASSERT_TRUE(http.listen());
    http.respond = [](const LoopbackHttpServer::Request& request) {
        return LoopbackHttpServer::reply(200, request.target);
    };
    constexpr int count = 30;
    std::vector<QCoro::Task<Result>> tasks;
    tasks.reserve(count);
    for (int i = 0; i < count; ++i)
        tasks.push_back(client->send(get(http.url(u"/%1"_s.arg(i))), {}));
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(body(std::move(tasks[static_cast<std::size_t>(i)])), "/" + QByteArray::number(i));
}

TEST_F(HttpClientTest, keepsNoCookie) {
    LoopbackHttpServer http;
    ASSERT_TRUE(http.listen());
    http.respond = [](const LoopbackHttpServer::Request&) {
        return LoopbackHttpServer::reply(200, {}, "Set-Cookie: id=1\r\n");
    };
    EXPECT_TRUE(complete(client->send(get(http.url()), {})));
    EXPECT_TRUE(complete(client->send(get(http.url()), {})));
    ASSERT_EQ(http.requests.size(), 2);
    EXPECT_EQ(http.requests[1].header("Cookie"), "");
}

TEST_F(HttpClientTest, aChallengeIsAnAnswerLikeAnyOther) {
    for (const QByteArray challenge : {"Bearer realm=\"x\"", "Basic realm=\"x\""}) {
        LoopbackHttpServer http;
        ASSERT_TRUE(http.listen());
        http.respond = [&](const LoopbackHttpServer::Request&) {
            return LoopbackHttpServer::reply(401, "no", "WWW-Authenticate: " + challenge + "\r\n");
        };
        const auto answered = complete(client->send(get(http.url()), {}));
        ASSERT_TRUE(answered) << answered.error().errorDescription().toStdString();
        EXPECT_EQ(answered->status, 401);
        EXPECT_EQ(answered->body, "no");
    }
}

// Redirects.

class HttpRedirectTest : public HttpClientTest {
protected:
    HttpRedirectTest() {
        EXPECT_TRUE(first.listen());
        EXPECT_TRUE(second.listen());
        second.answer(200, "arrived");
    }

    void redirectTo(const QByteArray& location, int status = 302) {
        first.respond = [=](const LoopbackHttpServer::Request& request) {
            return request.target == "/here"
                       ? LoopbackHttpServer::reply(200, "arrived")
                       : LoopbackHttpServer::reply(status, "gone", "Location: " + location + "\r\n");
        };
    }
    [[nodiscard]] HttpRequest post() const {
        return {.method = "POST",
                .url = first.url(u"/a/b"_s),
                .headers = {{"Authorization", "Bearer t"}, {"Content-Type", "text/plain"}},
                .body = "secret"};
    }

    LoopbackHttpServer first;
    LoopbackHttpServer second;
};

TEST_F(HttpRedirectTest, theTokenGoesAlongWithinTheSameServer) {
    redirectTo("../here");
    EXPECT_EQ(body(client->send(post(), {})), "arrived");
    ASSERT_EQ(first.requests.size(), 2);
    EXPECT_EQ(first.requests[1].target, "/here");
    EXPECT_EQ(first.requests[1].header("Authorization"), "Bearer t");
}

TEST_F(HttpRedirectTest, theTokenGoesToNoOtherServer) {
    redirectTo(second.url(u"/here"_s).toEncoded());
    HttpRequest request = post();
    request.headers[0].first = "authorization";
    EXPECT_EQ(body(client->send(request, {})), "arrived");
    ASSERT_EQ(second.requests.size(), 1);
    EXPECT_EQ(second.requests[0].header("Authorization"), "");
}

TEST_F(HttpRedirectTest, aPostThatMovedIsFetched) {
    for (const int status : {301, 302, 303}) {
        redirectTo("/here", status);
        first.requests.clear();
        EXPECT_EQ(body(client->send(post(), {})), "arrived") << status;
        ASSERT_EQ(first.requests.size(), 2) << status;
        EXPECT_EQ(first.requests[1].method, "GET") << status;
        EXPECT_EQ(first.requests[1].body, "") << status;
        EXPECT_EQ(first.requests[1].header("Content-Type"), "") << status;
    }
}

TEST_F(HttpRedirectTest, aPostIsRepeatedWhereTheServerAsksForThat) {
    for (const int status : {307, 308}) {
        redirectTo("/here", status);
        first.requests.clear();
        EXPECT_EQ(body(client->send(post(), {})), "arrived") << status;
        ASSERT_EQ(first.requests.size(), 2) << status;
        EXPECT_EQ(first.requests[1].method, "POST") << status;
        EXPECT_EQ(first.requests[1].body, "secret") << status;
    }
}

TEST_F(HttpRedirectTest, aCircleEnds) {
    redirectTo("/again");
    const auto answered = complete(client->send(get(first.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server redirects too often."_s);
    EXPECT_EQ(first.requests.size(), 21);
}

TEST_F(HttpRedirectTest, aRedirectToNowhereIsAnAnswer) {
    first.respond = [](const LoopbackHttpServer::Request&) { return LoopbackHttpServer::reply(302, "where?"); };
    const auto answered = complete(client->send(get(first.url()), {}));
    ASSERT_TRUE(answered) << answered.error().errorDescription().toStdString();
    EXPECT_EQ(answered->status, 302);
    EXPECT_EQ(answered->body, "where?");
}

// TLS.

TEST_F(HttpClientTest, aServerWithACertificateThatNobodyTrustsIsRefused) {
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen());
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().errorDescription().contains(u"certificate"_s))
        << answered.error().errorDescription().toStdString();
    EXPECT_TRUE(secure.requests.isEmpty());
}

TEST_F(HttpClientTest, aTrustedCertificateOfAnotherHostIsRefused) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen(QHostAddress{u"127.0.0.2"_s}));
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(secure.requests.isEmpty());
}

TEST_F(HttpClientTest, worksOverTls) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen());
    secure.answer(200, "over TLS");
    EXPECT_EQ(body(client->send(get(secure.url()), {})), "over TLS");
}

TEST_F(HttpClientTest, noRedirectLeadsOutOfTls) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    LoopbackHttpServer plain;
    ASSERT_TRUE(secure.listen());
    ASSERT_TRUE(plain.listen());
    secure.respond = [&](const LoopbackHttpServer::Request&) {
        return LoopbackHttpServer::reply(302, {}, "Location: " + plain.url().toEncoded() + "\r\n");
    };
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server redirects to an address that is not safe."_s);
    EXPECT_TRUE(plain.requests.isEmpty());
}

// Servers that say too much.

TEST_F(HttpClientTest, anAnswerTenMegabytesOverTheBoundIsLeft) {
    constexpr qint64 announced = maxBodyBytes + 10LL * 1024 * 1024;
    server.onRequest = [](RawServer& raw) {
        raw.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(announced) + "\r\n\r\n");
        raw.write(QByteArray(announced, 'x'));
    };
    ASSERT_TRUE(server.listen());
    const auto answered = complete(client->send(get(server.url(u"http"_s)), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, aChunkedAnswerThatBreaksOffFails) {
    server.onRequest = [](RawServer& raw) {
        raw.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n");
        raw.finish();
    };
    ASSERT_TRUE(server.listen());
    EXPECT_FALSE(complete(client->send(get(server.url(u"http"_s)), {})));
}

TEST_F(HttpClientTest, headersThatNeverEndAreLeftUnreadAndThenGivenUp) {
    for (const auto& piece : {QByteArray(64 * 1024, 'x'), QByteArray{"X-Endless: and on it goes\r\n"}.repeated(2000)}) {
        RawServer endless;
        endless.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\nX-Endless: "); };
        ASSERT_TRUE(endless.listen());
        result.reset();
        underWay = keep(client->send(get(endless.url(u"http"_s)), {}));
        ASSERT_TRUE(spinUntil([&] { return !endless.request().isEmpty(); }));
        // More than the system's own buffers hold: whoever takes all of it keeps it in memory.
        constexpr qint64 most = 64LL * 1024 * 1024;
        qint64 written = 0;
        EXPECT_FALSE(spinUntil(
            [&] {
                if (endless.bytesToWrite() == 0) {
                    endless.write(piece);
                    written += piece.size();
                }
                return written >= most;
            },
            1s));
        settleAfter(clock, 60s);
        ASSERT_TRUE(ends());
        ASSERT_FALSE(*result);
        EXPECT_EQ(result->error().errorDescription(), u"The connection timed out."_s);
    }
}

}  // namespace corvellan::test

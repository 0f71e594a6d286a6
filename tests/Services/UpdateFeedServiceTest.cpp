#include "Services/UpdateFeedService.h"

#include <gtest/gtest.h>

#include <optional>
#include <QNetworkProxyFactory>

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

class UpdateFeedServiceTest : public testing::Test {
protected:
    using Result = std::expected<UpdateFeedAnswer, Error>;

    UpdateFeedServiceTest() {
        // The machine's own proxy is not for loopback.
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
    }

    void serve(const QByteArray& bytes) {
        server.onRequest = [bytes](RawServer& raw) { raw.write(bytes); };
        ASSERT_TRUE(server.listen());
    }

    [[nodiscard]] QUrl url() const { return server.url(u"http"_s).resolved(QUrl{u"/appcast.xml"_s}); }

    /// Under way when it returns; `result` holds the end.
    void begin(std::stop_token stop = {}) {
        underWay = keep(service->fetch(url(), std::move(stop)));
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
    std::unique_ptr<UpdateFeedService> service = std::make_unique<UpdateFeedService>(mainExecutor(), clock);
    std::optional<QCoro::Task<void>> underWay;
    std::optional<Result> result;
};

}  // namespace

TEST_F(UpdateFeedServiceTest, getsTheBodyInOneRequest) {
    serve(answer("200 OK", "<rss/>"));
    const auto answered = complete(service->fetch(url(), {}));
    ASSERT_TRUE(answered) << answered.error().errorDescription().toStdString();
    EXPECT_EQ(answered->body, "<rss/>");
    EXPECT_TRUE(server.request().startsWith("GET /appcast.xml HTTP/1.1\r\n")) << server.request().toStdString();
    EXPECT_FALSE(server.request().toLower().contains("gzip"));
}

TEST_F(UpdateFeedServiceTest, handsBytesOutAsTheyCome) {
    const QByteArray bytes{"\xFF\0\x80", 3};
    serve(answer("200 OK", bytes));
    EXPECT_EQ(body(service->fetch(url(), {})), bytes);
}

TEST_F(UpdateFeedServiceTest, takesAnEmptyBody) {
    serve(answer("200 OK", ""));
    EXPECT_EQ(body(service->fetch(url(), {})), QByteArray{});
}

TEST_F(UpdateFeedServiceTest, unpacksNothing) {
    serve(answer("200 OK", "packed", "Content-Encoding: gzip\r\n"));
    EXPECT_EQ(body(service->fetch(url(), {})), "packed");
}

TEST_F(UpdateFeedServiceTest, takesAnErrorPageForABody) {
    for (const char* status :
         {"400 Bad Request", "401 Unauthorized", "403 Forbidden", "404 Not Found", "405 Method Not Allowed",
          "409 Conflict", "410 Gone", "418 Teapot", "451 Unavailable", "500 Internal Server Error",
          "501 Not Implemented", "503 Service Unavailable", "599 Unknown"}) {
        RawServer refusing;
        refusing.onRequest = [status](RawServer& raw) { raw.write(answer(status, "a page")); };
        ASSERT_TRUE(refusing.listen());
        const auto answered = complete(service->fetch(refusing.url(u"http"_s), {}));
        ASSERT_TRUE(answered) << status << ": " << answered.error().errorDescription().toStdString();
        EXPECT_EQ(answered->body, "a page") << status;
    }
}

TEST_F(UpdateFeedServiceTest, followsARedirect) {
    RawServer first;
    serve(answer("200 OK", "moved here"));
    first.onRequest = [target = url().toEncoded()](RawServer& raw) {
        raw.write(answer("302 Found", "", "Location: " + target + "\r\n"));
    };
    ASSERT_TRUE(first.listen());
    EXPECT_EQ(body(service->fetch(first.url(u"http"_s), {})), "moved here");
}

TEST_F(UpdateFeedServiceTest, followsNoRedirectToAFile) {
    serve(answer("302 Found", "", "Location: file:///etc/hostname\r\n"));
    EXPECT_FALSE(complete(service->fetch(url(), {})));
}

TEST_F(UpdateFeedServiceTest, readsNoFile) {
    const auto answered = complete(service->fetch(QUrl{u"file:///etc/hostname"_s}, {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The address does not begin with http:// or https://."_s);
}

TEST_F(UpdateFeedServiceTest, failsWhereNobodyListens) {
    QTcpServer nobody;
    ASSERT_TRUE(nobody.listen(QHostAddress::LocalHost));
    const QUrl address{u"http://127.0.0.1:%1/appcast.xml"_s.arg(nobody.serverPort())};
    nobody.close();
    const auto answered = complete(service->fetch(address, {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<TransportError>());
    EXPECT_EQ(answered.error().errorDescription(), u"Connection refused"_s);
}

TEST_F(UpdateFeedServiceTest, failsWhenTheAnswerIsCutShort) {
    for (const char* status : {"200 OK", "404 Not Found"}) {
        RawServer cutting;
        cutting.onRequest = [status](RawServer& raw) {
            raw.write(QByteArray{"HTTP/1.1 "} + status + "\r\nContent-Length: 100\r\n\r\nonly this");
            raw.finish();
        };
        ASSERT_TRUE(cutting.listen());
        const auto answered = complete(service->fetch(cutting.url(u"http"_s), {}));
        ASSERT_FALSE(answered) << status;
        EXPECT_EQ(answered.error().errorDescription(), u"Connection closed"_s) << status;
    }
}

TEST_F(UpdateFeedServiceTest, failsOnWhatIsNoHttp) {
    QTcpServer other;
    int visits = 0;
    QObject::connect(&other, &QTcpServer::newConnection, &other, [&] {
        ++visits;
        QTcpSocket* const client = other.nextPendingConnection();
        client->write("SSH-2.0-none\r\n\r\n");
        client->disconnectFromHost();
    });
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    const auto answered =
        complete(service->fetch(QUrl{u"http://127.0.0.1:%1/appcast.xml"_s.arg(other.serverPort())}, {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<TransportError>());
    // Qt asks again where a connection breaks, but not for ever.
    EXPECT_LE(visits, 10);
}

TEST_F(UpdateFeedServiceTest, takesABodyOfTheLargestSize) {
    const QByteArray largest(UpdateFeedService::maxBodyBytes, 'x');
    serve(answer("200 OK", largest));
    EXPECT_TRUE(body(service->fetch(url(), {})) == largest);
}

TEST_F(UpdateFeedServiceTest, refusesAByteMore) {
    serve(answer("200 OK", QByteArray(UpdateFeedService::maxBodyBytes + 1, 'x')));
    const auto answered = complete(service->fetch(url(), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(UpdateFeedServiceTest, leavesABodyThatNeverEnds) {
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

TEST_F(UpdateFeedServiceTest, givesUpAfterAMinute) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    begin();
    settleAfter(clock, UpdateFeedService::timeout - 1ms);
    EXPECT_FALSE(result);
    settleAfter(clock, 1ms);
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().errorDescription(), u"The connection timed out."_s);
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(UpdateFeedServiceTest, givesUpABodyThatTrickles) {
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

TEST_F(UpdateFeedServiceTest, stopsOnRequest) {
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

TEST_F(UpdateFeedServiceTest, asksNobodyOnceStopped) {
    serve(answer("200 OK", "late"));
    std::stop_source stop;
    stop.request_stop();
    const auto answered = complete(service->fetch(url(), stop.get_token()));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().as<CancelledError>());
    // Whoever comes next is the first.
    EXPECT_EQ(body(service->fetch(url().resolved(QUrl{u"/next"_s}), {})), "late");
    EXPECT_TRUE(server.request().startsWith("GET /next ")) << server.request().toStdString();
}

TEST_F(UpdateFeedServiceTest, cancelsWhatIsUnderWayAsItGoes) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    begin();
    service.reset();
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_TRUE(result->error().as<CancelledError>());
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(UpdateFeedServiceTest, worksOnAThreadOfItsOwn) {
    serve(answer("200 OK", "<rss/>"));
    WorkerThread network{"test-network"};
    UpdateFeedService threaded{network.executor(), clock};
    EXPECT_EQ(body(threaded.fetch(url(), {})), "<rss/>");
}

TEST_F(UpdateFeedServiceTest, goesThroughTheSystemsProxy) {
    serve(answer("200 OK", "by proxy"));
    qputenv("http_proxy", server.url(u"http"_s).toEncoded());
    EXPECT_EQ(body(service->fetch(QUrl{u"http://coach.invalid/appcast.xml"_s}, {})), "by proxy");
    qunsetenv("http_proxy");
    EXPECT_TRUE(server.request().startsWith("GET http://coach.invalid/appcast.xml ")) << server.request().toStdString();
}

}  // namespace corvellan::test

#include "HttpClientFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

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

}  // namespace corvellan::test

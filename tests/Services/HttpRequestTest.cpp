#include "HttpClientFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

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

}  // namespace corvellan::test

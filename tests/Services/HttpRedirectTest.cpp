#include "HttpClientFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

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

}  // namespace corvellan::test

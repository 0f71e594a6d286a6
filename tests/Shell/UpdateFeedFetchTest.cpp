#include "Shell/UpdateFeed.h"

#include <gtest/gtest.h>

#include "Services/HttpClient.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;

class UpdateFeedFetchTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(server.listen()); }

    auto fetched() { return complete(http.send(updatefeed::request(server.url(u"/appcast.xml"_s)), {})); }

    LoopbackHttpServer server;
    ManualClock clock;
    HttpClient http{mainExecutor(), clock};
};

}  // namespace

TEST_F(UpdateFeedFetchTest, getsTheBodyInOneRequest) {
    server.answer(200, "<rss/>");
    const auto answer = fetched();
    ASSERT_TRUE(answer) << answer.error().errorDescription().toStdString();
    EXPECT_EQ(answer->body, "<rss/>");
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests[0].method, "GET");
    EXPECT_EQ(server.requests[0].target, "/appcast.xml");
}

TEST_F(UpdateFeedFetchTest, takesAnErrorPageForABody) {
    server.answer(404, "a page");
    EXPECT_EQ(fetched().value().body, "a page");
}

TEST_F(UpdateFeedFetchTest, takesABodyOfTheLargestSize) {
    const QByteArray largest(updatefeed::maxBodyBytes, 'x');
    server.answer(200, largest);
    EXPECT_TRUE(fetched().value().body == largest);
}

TEST_F(UpdateFeedFetchTest, refusesAByteMore) {
    server.answer(200, QByteArray(updatefeed::maxBodyBytes + 1, 'x'));
    const auto answer = fetched();
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(UpdateFeedFetchTest, stopsOnRequest) {
    std::stop_source stop;
    stop.request_stop();
    const auto answer = complete(http.send(updatefeed::request(server.url()), stop.get_token()));
    ASSERT_FALSE(answer);
    EXPECT_TRUE(answer.error().as<CancelledError>());
}

}  // namespace corvellan::test

#include "Services/UpdateFeedService.h"

#include <gtest/gtest.h>

#include "Services/HttpClient.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;

class UpdateFeedServiceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(server.listen()); }

    auto fetched() { return complete(service.fetch(server.url(u"/appcast.xml"_s), {})); }

    LoopbackHttpServer server;
    ManualClock clock;
    HttpClient http{mainExecutor(), clock};
    UpdateFeedService service{http};
};

}  // namespace

TEST_F(UpdateFeedServiceTest, getsTheBodyInOneRequest) {
    server.answer(200, "<rss/>");
    const auto answer = fetched();
    ASSERT_TRUE(answer) << answer.error().errorDescription().toStdString();
    EXPECT_EQ(answer->body, "<rss/>");
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests[0].method, "GET");
    EXPECT_EQ(server.requests[0].target, "/appcast.xml");
}

TEST_F(UpdateFeedServiceTest, takesAnErrorPageForABody) {
    server.answer(404, "a page");
    EXPECT_EQ(fetched().value().body, "a page");
}

TEST_F(UpdateFeedServiceTest, takesABodyOfTheLargestSize) {
    const QByteArray largest(UpdateFeedService::maxBodyBytes, 'x');
    server.answer(200, largest);
    EXPECT_TRUE(fetched().value().body == largest);
}

TEST_F(UpdateFeedServiceTest, refusesAByteMore) {
    server.answer(200, QByteArray(UpdateFeedService::maxBodyBytes + 1, 'x'));
    const auto answer = fetched();
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(UpdateFeedServiceTest, stopsOnRequest) {
    std::stop_source stop;
    stop.request_stop();
    const auto answer = complete(service.fetch(server.url(), stop.get_token()));
    ASSERT_FALSE(answer);
    EXPECT_TRUE(answer.error().as<CancelledError>());
}

}  // namespace corvellan::test

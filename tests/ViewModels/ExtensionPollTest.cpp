#include "ExtensionLinkFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

TEST_F(ExtensionLinkTest, thePollAsksTheRestSideWithTheTokenAndSixtySecondsOfPatience) {
    session().setServerURL(u"wss://coach.test/ws"_s);
    poll(status(true));
    ASSERT_EQ(polls(), 1U);
    const auto& request = fixture.http.requests[0];
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, QUrl{u"https://coach.test/ext/sensor"_s});
    EXPECT_EQ(request.headers, (HttpHeaders{{"Authorization", "Bearer to.k+en"}}));
    EXPECT_EQ(request.timeout, 60s);
    EXPECT_TRUE(session().sensorConnected());
}

TEST_F(ExtensionLinkTest, thePollComesAtOnceAndThenEveryThirtySeconds) {
    fixture.http.answer(200, status(true));
    start();
    EXPECT_EQ(polls(), 1U);
    settleAfter(fixture.clock, 29s);
    EXPECT_EQ(polls(), 1U);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(polls(), 2U);
    settleAfter(fixture.clock, 30s);
    EXPECT_EQ(polls(), 3U);
}

TEST_F(ExtensionLinkTest, aPollWithoutATokenAsksNothingAndChangesNothing) {
    auth->accessToken.reset();
    session().setSensorConnected(true);
    poll(status(false));
    EXPECT_EQ(polls(), 0U);
    EXPECT_TRUE(session().sensorConnected());
}

TEST_F(ExtensionLinkTest, aPollThatFailsOrIsRefusedMeansNotConnected) {
    session().setSensorConnected(true);
    fixture.http.fail();
    session().checkSensorStatus();
    settle();
    EXPECT_FALSE(session().sensorConnected());

    session().setSensorConnected(true);
    poll(status(true), 204);
    EXPECT_FALSE(session().sensorConnected());
}

TEST_F(ExtensionLinkTest, aPollsAnswerThatIsNoObjectChangesNothing) {
    session().setSensorConnected(true);
    session().setExtensionCallActive(true);
    for (const char* body : {"", "<html>", "[true]", "true", "{\"sensor_connected\":false"}) {
        poll(body);
        EXPECT_TRUE(session().sensorConnected()) << body;
        EXPECT_TRUE(session().extensionCallActive()) << body;
    }
}

TEST_F(ExtensionLinkTest, aPollWithoutTheFlagMeansNotConnected) {
    session().setSensorConnected(true);
    poll("{}");
    EXPECT_FALSE(session().sensorConnected());
}

TEST_F(ExtensionLinkTest, theLastWriterOfTheConnectedStateWins) {
    fixture.http.gate.close();
    fixture.http.answer(200, status(false));
    start();
    EXPECT_TRUE(session().sensorConnected());
    fixture.http.gate.open();
    settle();
    EXPECT_FALSE(session().sensorConnected());
    listener().close();
    settleAfter(fixture.clock, 5s);
    EXPECT_TRUE(session().sensorConnected());
}

TEST_F(ExtensionLinkTest, aFailedPollDisturbsNoListenerAndTheReverse) {
    start();
    settleAfter(fixture.clock, 30s);
    EXPECT_EQ(listeners(), 1U);
    tell(acme);
    EXPECT_EQ(session().extensionContext(), acme);
    listener().fail(u"gone"_s);
    fixture.http.answer(200, status(true));
    settleAfter(fixture.clock, 30s);
    EXPECT_EQ(polls(), 3U);
}

TEST_F(ExtensionLinkTest, aPollThatKnowsACallSetsItsContextAndCounts) {
    poll(status(true, acme));
    EXPECT_EQ(session().extensionContext(), acme);
    EXPECT_EQ(session().autoStartCountdown(), 3);
    EXPECT_TRUE(session().extensionCallActive());
}

TEST_F(ExtensionLinkTest, aPollsContextWithoutACallIsNotTaken) {
    auto quiet = acme;
    quiet.callActive = false;
    poll(status(true, quiet));
    EXPECT_EQ(session().extensionContext(), std::nullopt);
}

}  // namespace corvellan::test

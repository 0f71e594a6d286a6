#include "ExtensionLinkFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

TEST_F(ExtensionLinkTest, theListenerHasASocketOfItsOwnAtTheServersUrlWithTheToken) {
    const LogCapture log{u"Session"_s};
    session().setServerURL(u"wss://coach.test/ws"_s);
    fixture.http.answer(200, status(true));
    start();
    ASSERT_EQ(listeners(), 1U);
    // As it stands: nothing of the token is encoded.
    EXPECT_EQ(listener().urls.at(0).toString(QUrl::FullyEncoded), u"wss://coach.test/ws?token=to.k+en"_s);
    EXPECT_TRUE(session().sensorConnected());
    EXPECT_TRUE(log.infos().contains(u"Extension WS listener connected"_s));
    EXPECT_FALSE(fixture.did("ws.connect"));
}

TEST_F(ExtensionLinkTest, withoutATokenTheListenerTriesAgainEveryFiveSeconds) {
    auth->accessToken.reset();
    start();
    settleAfter(fixture.clock, 60s);
    EXPECT_EQ(listeners(), 0U);
    EXPECT_EQ(polls(), 0U);
    auth->accessToken = u"late"_s;
    settleAfter(fixture.clock, 4s);
    EXPECT_EQ(listeners(), 0U);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(listeners(), 1U);
}

TEST_F(ExtensionLinkTest, aServerUrlThatIsNoneIsTriedAgainAfterFiveSeconds) {
    session().setServerURL(u"ws://[nowhere"_s);
    start();
    EXPECT_EQ(listeners(), 0U);
    session().setServerURL(u"ws://coach.test/ws"_s);
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(listeners(), 1U);
}

TEST_F(ExtensionLinkTest, aConnectThatFailsIsLoggedAndTriedAgainAfterFiveSeconds) {
    const LogCapture log{u"Session"_s};
    fixture.factory.prepareListener = [](FakeWebSocket& socket) { socket.connectError = FakeHttp::unreachable(); };
    start();
    EXPECT_FALSE(session().sensorConnected());
    EXPECT_EQ(log.errors(), QStringList{u"Extension WS disconnected: The server is out of reach."_s});
    EXPECT_TRUE(fixture.did("listener.disconnect"));
    settleAfter(fixture.clock, 4s);
    EXPECT_EQ(listeners(), 1U);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(listeners(), 2U);
}

TEST_F(ExtensionLinkTest, aStreamThatFailsIsLoggedAndAnotherSocketOpenedAfterFiveSeconds) {
    const LogCapture log{u"Session"_s};
    fixture.http.answer(200, status(true));
    start();
    listener().fail(u"gone"_s);
    settle();
    EXPECT_EQ(log.errors(), QStringList{u"Extension WS disconnected: gone"_s});
    EXPECT_TRUE(fixture.did("listener.disconnect"));
    // The poll alone says that the extension is away.
    EXPECT_TRUE(session().sensorConnected());
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(listeners(), 2U);
    EXPECT_EQ(listener().urls.size(), 1U);
}

TEST_F(ExtensionLinkTest, aStreamThatEndsQuietlyIsOpenedAnewWithoutALine) {
    const LogCapture log{u"Session"_s};
    start();
    listener().close();
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(log.errors(), QStringList{});
    EXPECT_EQ(listeners(), 2U);
}

TEST_F(ExtensionLinkTest, eachTryTakesTheTokenAndTheServerOfItsTime) {
    start();
    auth->accessToken = u"second"_s;
    session().setServerURL(u"ws://other.test/ws"_s);
    listener().close();
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(listener().urls.at(0), QUrl{u"ws://other.test/ws?token=second"_s});
}

TEST_F(ExtensionLinkTest, otherMessagesOfTheListenerChangeNothing) {
    start();
    tell(ServerMsg::Pong{});
    tell(CoachingPayload{.message = u"not for the listener"_s});
    tell(ServerMsg::Failure{u"no"_s});
    EXPECT_EQ(session().coachingMessage(), QString{});
    EXPECT_EQ(session().errorMessage(), std::nullopt);
    tell(acme);
    EXPECT_EQ(session().extensionContext(), acme);
}

TEST_F(ExtensionLinkTest, aContextWithoutACallIsKeptAndStartsNothing) {
    start();
    auto quiet = acme;
    quiet.callActive = false;
    tell(quiet);
    EXPECT_EQ(session().extensionContext(), quiet);
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    EXPECT_FALSE(session().extensionCallActive());
}

TEST_F(ExtensionLinkTest, theListenerSurvivesASession) {
    start();
    fixture.goLive();
    session().stopSession();
    settle();
    EXPECT_FALSE(fixture.did("listener.disconnect"));
    tell(acme);
    EXPECT_EQ(session().extensionContext(), acme);
}

}  // namespace corvellan::test

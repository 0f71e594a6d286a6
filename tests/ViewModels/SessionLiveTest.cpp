#include "SessionPipelineFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

TEST(SessionPipelineTest, theElapsedTimerCountsSeconds) {
    SessionFixture fixture;
    fixture.goLive();
    settleAfter(fixture.clock, 2500ms);
    EXPECT_EQ(fixture.session().elapsedSeconds(), 2);
    settleAfter(fixture.clock, 500ms);
    EXPECT_EQ(fixture.session().elapsedSeconds(), 3);
}

TEST(SessionPipelineTest, aCancelledTimerTakesItsStepAndEnds) {
    SessionFixture fixture;
    fixture.goLive();
    settleAfter(fixture.clock, 2s);
    fixture.session().stopSession();
    settle();
    // An interrupted sleep is no error: the second it slept through counts.
    EXPECT_EQ(fixture.session().elapsedSeconds(), 3);
    settleAfter(fixture.clock, 10s);
    EXPECT_EQ(fixture.session().elapsedSeconds(), 3);
}

TEST(SessionPipelineTest, theOldTimersLastStepNeverCountsInTheNextSession) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.goLive();
    EXPECT_EQ(fixture.session().elapsedSeconds(), 0);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(fixture.session().elapsedSeconds(), 1);
}

TEST(SessionPipelineTest, aSilentSessionEndsItselfAfterALittleMoreThan120Seconds) {
    SessionFixture fixture;
    fixture.goLive();
    const LogCapture system{u"Session"_s};
    settleAfter(fixture.clock, 120s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 0);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_TRUE(system.infos().contains(u"Auto-stopping session — no transcript for 121s"_s));
    // With that the timer has ended.
    settleAfter(fixture.clock, 2s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_EQ(fixture.session().elapsedSeconds(), 121);
}

TEST(SessionPipelineTest, theSilenceBeforeTheSessionDoesNotCount) {
    SessionFixture fixture;
    fixture.session();
    settleAfter(fixture.clock, 1h);
    fixture.goLive();
    settleAfter(fixture.clock, 120s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 0);
}

TEST(SessionPipelineTest, aSessionThatTheComputerSleptThroughEndsItself) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.clock.advanceWallAlone(1h);
    const LogCapture system{u"Session"_s};
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_TRUE(system.infos().contains(u"Auto-stopping session — no transcript for 3601s"_s));
}

TEST(SessionPipelineTest, trainingIsNeverEndedBySilence) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    settleAfter(fixture.clock, 300s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 0);
    EXPECT_TRUE(fixture.session().isSessionActive());
}

TEST(SessionPipelineTest, screenSharingStartsWithTheSessionsIdBaseAndToken) {
    SessionFixture fixture;
    fixture.preferences.setBoolean(u"screenShareEnabled"_s, true);
    fixture.auth->accessToken = u"token"_s;
    fixture.session().startSession();
    settle();
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_TRUE(std::get<ClientMsg::SetScreenShare>(fixture.ws->sent.at(1).value).enabled);
    EXPECT_EQ(fixture.factory.screenShare.sessionId, u"s-1"_s);
    EXPECT_EQ(fixture.factory.screenShare.httpBase, u"http://localhost:3001"_s);
    EXPECT_EQ(fixture.factory.screenShare.authToken, u"token"_s);
    EXPECT_EQ(fixture.factory.screenShare.options, ScreenShareOptions{});
}

TEST(SessionPipelineTest, screenSharingStartsWithoutATokenWhereThereIsNone) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.factory.screenShare.authToken = u"of an earlier start"_s;
    fixture.session().toggleScreenShare();
    settle();
    EXPECT_TRUE(fixture.did("screenShare.start"));
    EXPECT_EQ(fixture.factory.screenShare.authToken, std::nullopt);
}

TEST(SessionPipelineTest, screenSharingGoesToTheSameHostOverHttp) {
    const std::vector<std::pair<QString, QString>> cases{{u"ws://127.0.0.1:3001/ws"_s, u"http://127.0.0.1:3001"_s},
                                                         {u"wss://coach.test/ws"_s, u"https://coach.test"_s},
                                                         {u"wss://coach.test:8443/ws"_s, u"https://coach.test:8443"_s}};
    for (const auto& [server, base] : cases) {
        SessionFixture fixture;
        fixture.auth->accessToken = u"token"_s;
        fixture.session().setServerURL(server);
        fixture.goLive();
        fixture.session().toggleScreenShare();
        settle();
        EXPECT_EQ(fixture.factory.screenShare.httpBase, base);
    }
}

TEST(SessionPipelineTest, switchingScreenSharingOffInACallTellsTheServerAndStops) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().toggleScreenShare();
    settle();
    fixture.log.clear();
    fixture.session().toggleScreenShare();
    settle();
    EXPECT_EQ(fixture.log, (CallLog{"ws.send", "screenShare.stop"}));
    EXPECT_FALSE(std::get<ClientMsg::SetScreenShare>(fixture.ws->sent.back().value).enabled);
}

TEST(SessionPipelineTest, aFailedScreenShareMessageIsLoggedAndTheStepsGoOn) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->sendError = refused;
    const LogCapture system{u"Session"_s};
    fixture.session().toggleScreenShare();
    settle();
    EXPECT_TRUE(system.errors().contains(u"setScreenShare send failed: Connection refused"_s));
    EXPECT_TRUE(fixture.did("screenShare.start"));
}

TEST(SessionPipelineTest, theSessionEndsByItselfWhenEveryStreamHasEnded) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->close();
    settle();
    // A loop that ends alone ends nothing else.
    EXPECT_TRUE(fixture.session().isSessionActive());
    fixture.session().stopSession();
    settle();
    EXPECT_TRUE(fixture.session().isQuiet());
}

}  // namespace
}  // namespace corvellan::test

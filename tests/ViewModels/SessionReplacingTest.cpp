#include "SessionPipelineFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

/// The server lets the call begin that was started last.
void expectToBegin(SessionFixture& fixture) {
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_TRUE(fixture.session().isSessionActive());
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(SessionPipelineTest, aSecondStartWhileConnectingTakesTheFirstOnesPlace) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.ws->connectGate.close();
    session.startSession({.company = u"First"_s});
    settle();
    EXPECT_EQ(session.statusText(), u"Connecting..."_s);
    session.startSession({.company = u"Second"_s});
    settle();
    EXPECT_EQ(session.currentCompany(), u"Second"_s);
    EXPECT_EQ(fixture.ws->urls.size(), 2U);
}

TEST(SessionPipelineTest, theNextStartClosesThePipelineOfTheLastAndItsLateExitLandsInTheNew) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.log.clear();
    QStringList states;
    recordStatus(session, states);
    session.startSession({.company = u"Next"_s});
    EXPECT_EQ(session.lastSummary(), std::nullopt);
    settle();
    // The old task works on the same services: its steps come first, or it would close the new call.
    auto expected = fullCleanup;
    expected.insert(expected.end(), {"ws.connect", "ws.send"});
    EXPECT_EQ(fixture.log, expected);
    EXPECT_EQ(states.mid(0, 2), (QStringList{u"Ready"_s, u"Connecting..."_s}));
    expectToBegin(fixture);
    EXPECT_TRUE(fixture.audio->isRunning());
}

TEST(SessionPipelineTest, theTimeOutOfAnEndedSessionNeverStopsTheNext) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    session.endSession();
    settleAfter(fixture.clock, 1s);
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.goLive();
    settleAfter(fixture.clock, 10s);
    EXPECT_TRUE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Listening..."_s);
}

TEST(SessionPipelineTest, aStartRightAfterAStopWaitsForTheClosing) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    session.stopSession();
    session.startSession();
    settle();
    expectToBegin(fixture);
}

TEST(SessionPipelineTest, ofTwoStartsThatWaitForTheClosingOnlyTheSecondConnects) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    session.startSession({.company = u"First"_s});
    session.startSession({.company = u"Second"_s});
    settle();
    EXPECT_EQ(fixture.ws->urls.size(), 2U) << "the ended call's and one more";
    EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.back().value).company, u"Second"_s);
    expectToBegin(fixture);
}

TEST(SessionPipelineTest, aStartThatIsStoppedWhileItWaitsNeverConnects) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    fixture.stt->disconnectGate.close();
    session.stopSession();
    session.startSession();
    settle();
    EXPECT_TRUE(fixture.did("stt.disconnect"));
    EXPECT_FALSE(fixture.did("ws.disconnect"));
    session.stopSession();
    fixture.stt->disconnectGate.open();
    settle();
    EXPECT_EQ(fixture.ws->urls.size(), 1U);
    EXPECT_FALSE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Ready"_s);
    EXPECT_TRUE(session.isQuiet());
}

TEST(SessionPipelineTest, aStartDuringAHangingSignInDoesNotWaitForIt) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"wss://coach.test/ws"_s);
    fixture.auth->loginGate.close();
    session.startSession();
    settle();
    session.setServerURL(u"ws://localhost:3001/ws"_s);
    session.startSession();
    settle();
    EXPECT_TRUE(session.isSessionActive());
}

}  // namespace
}  // namespace corvellan::test

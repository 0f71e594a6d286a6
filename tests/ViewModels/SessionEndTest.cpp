#include "SessionPipelineFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

TEST(SessionPipelineTest, endingWithoutASessionDoesNothing) {
    SessionFixture fixture;
    fixture.session().endSession();
    settleAfter(fixture.clock, 10s);
    EXPECT_TRUE(fixture.log.empty());
}

TEST(SessionPipelineTest, withoutASummaryTheSessionStopsThreeSecondsAfterItsEndWasAskedFor) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().endSession();
    settleAfter(fixture.clock, 2999ms);
    EXPECT_TRUE(fixture.session().isSessionActive());
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
    settleAfter(fixture.clock, 1ms);
    EXPECT_FALSE(fixture.session().isSessionActive());
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
    for (const auto& step : fullCleanup)
        EXPECT_TRUE(fixture.did(step)) << step;
    EXPECT_TRUE(fixture.session().isQuiet());
}

TEST(SessionPipelineTest, endingTwiceSendsTwoMessagesAndLeavesOneTimeOut) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().endSession();
    settleAfter(fixture.clock, 2s);
    fixture.session().endSession();
    settleAfter(fixture.clock, 2s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 2);
    EXPECT_TRUE(fixture.session().isSessionActive());
    settleAfter(fixture.clock, 1s);
    EXPECT_FALSE(fixture.session().isSessionActive());
}

TEST(SessionPipelineTest, isEndingFromTheAskingToTheSummaryOrTheTimeOut) {
    SessionFixture fixture;
    auto& session = fixture.session();
    EXPECT_FALSE(session.isEnding());
    session.endSession();
    EXPECT_FALSE(session.isEnding()) << "nothing runs that could end";
    fixture.goLive();
    EXPECT_FALSE(session.isEnding());
    session.endSession();
    EXPECT_TRUE(session.isEnding());
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    EXPECT_FALSE(session.isEnding());

    fixture.goLive();
    EXPECT_FALSE(session.isEnding());
    session.endSession();
    settleAfter(fixture.clock, 3s - 1ns);
    EXPECT_TRUE(session.isEnding());
    settleAfter(fixture.clock, 1ns);
    EXPECT_FALSE(session.isEnding());
}

TEST(SessionPipelineTest, aFailedEndMessageIsOnlyLogged) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->sendError = refused;
    const LogCapture system{u"Session"_s};
    fixture.session().endSession();
    settle();
    EXPECT_TRUE(system.errors().contains(u"Failed to send endSession: Connection refused"_s));
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(SessionPipelineTest, aSummaryInTimeDisarmsTheTimeOutAndLeavesThePipelineRunning) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().endSession();
    settle();
    fixture.log.clear();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settleAfter(fixture.clock, 10s);
    EXPECT_FALSE(fixture.session().isSessionActive());
    EXPECT_TRUE(fixture.session().isConnected());
    EXPECT_EQ(fixture.session().statusText(), u"Session ended"_s);
    EXPECT_TRUE(fixture.session().lastSummary());
    EXPECT_TRUE(fixture.audio->isRunning());
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_FALSE(fixture.session().isQuiet());
}

TEST(SessionPipelineTest, aSummaryAfterTheTimeOutIsNoLongerRead) {
    SessionFixture fixture;
    FakeStore store;
    fixture.session().setModelContext(&store);
    fixture.goLive();
    fixture.session().endSession();
    settle();
    // The time-out has struck and its stop is on its way when the summary comes.
    fixture.clock.advance(3s);
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    EXPECT_EQ(fixture.session().lastSummary(), std::nullopt);
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
    EXPECT_TRUE(store.records.empty());
}

TEST(SessionPipelineTest, stoppingClearsTheStateAtOnceAndClosesAfterwards) {
    SessionFixture fixture;
    auto& session = fixture.session();
    fixture.goLive();
    session.setErrorMessage(u"old"_s);
    session.setCrmBrief(u"brief"_s);
    session.setMeddicJustConfirmed(1);
    session.setMeddicEvidence({u"e"_s});
    session.setExtensionCallActive(true);
    session.setIsTtsPlaying(true);
    session.setCounterpartStreamingText(u"text"_s);
    session.setTrainStage(TrainStage::coaching);
    std::vector<bool> activity;
    session.onSessionActiveChanged = [&](bool value) { activity.push_back(value); };

    session.stopSession();
    EXPECT_FALSE(session.isSessionActive());
    EXPECT_FALSE(session.isConnected());
    EXPECT_EQ(session.statusText(), u"Ready"_s);
    EXPECT_EQ(session.currentSessionId(), std::nullopt);
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_EQ(session.crmBrief(), std::nullopt);
    EXPECT_EQ(session.meddicJustConfirmed(), std::nullopt);
    EXPECT_EQ(session.meddicEvidence(), MeddicEvidence{});
    EXPECT_FALSE(session.extensionCallActive());
    EXPECT_FALSE(session.isTtsPlaying());
    EXPECT_EQ(session.counterpartStreamingText(), QString{});
    EXPECT_EQ(session.trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.log, (CallLog{"tts.stop"}));

    settle();
    for (const auto& step : fullCleanup)
        EXPECT_TRUE(fixture.did(step)) << step;
    EXPECT_TRUE(fixture.did("screenShare.stop"));
    EXPECT_EQ(activity, (std::vector{false, false}));
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_TRUE(session.isQuiet());
}

TEST(SessionPipelineTest, stoppingAnIdleSessionStillRunsTheCallback) {
    SessionFixture fixture;
    std::vector<bool> activity;
    fixture.session().onSessionActiveChanged = [&](bool value) { activity.push_back(value); };
    fixture.session().stopSession();
    EXPECT_EQ(activity, (std::vector{false}));
}

}  // namespace
}  // namespace corvellan::test

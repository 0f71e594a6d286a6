#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

const Error refused = TransportError{u"Connection refused"_s};

/// A failure that people and logs hear of in different words.
struct TwoVoices {
    [[nodiscard]] static QString errorDescription() { return u"For people"_s; }
    [[nodiscard]] static QString debugDescription() { return u"For logs"_s; }
};
const CallLog fullCleanup{"audio.stopMic", "stt.disconnect", "systemAudio.stop", "systemStt.disconnect",
                          "ws.disconnect"};

/// Collects what the session's fields read, one change after another.
QStringList recordStatus(SessionViewModel& session, QStringList& into) {
    QObject::connect(&session, &SessionViewModel::statusTextChanged, &session,
                     [&] { into.append(session.statusText()); });
    return into;
}

TEST(SessionPipelineTest, goesThroughItsStatesToTheLivePhase) {
    SessionFixture fixture;
    auto& session = fixture.session();
    QStringList states;
    recordStatus(session, states);
    session.startSession();
    EXPECT_TRUE(states.isEmpty());
    settle();
    EXPECT_EQ(states, (QStringList{u"Connecting..."_s, u"Connected"_s, u"Waiting for session..."_s}));
    EXPECT_TRUE(session.isConnected());
    EXPECT_TRUE(session.isSessionActive());

    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_EQ(states.mid(3), (QStringList{u"Starting STT..."_s, u"Starting mic..."_s, u"Listening..."_s}));
    EXPECT_EQ(session.currentSessionId(), u"s-1"_s);
    EXPECT_EQ(fixture.log, (CallLog{"ws.connect", "ws.send", "ws.send", "screenShare.stop", "stt.connect",
                                    "audio.startMic", "systemStt.connect", "systemAudio.start"}));
    EXPECT_EQ(std::get<ClientMsg::SetScreenShare>(fixture.ws->sent.at(1).value),
              (ClientMsg::SetScreenShare{.enabled = false}));
    EXPECT_EQ(fixture.stt->token, u"mic-token"_s);
    EXPECT_EQ(fixture.stt->url, u"ws://stt.test/mic"_s);
    EXPECT_EQ(fixture.factory.systemStt.token, u"system-token"_s);
    EXPECT_EQ(fixture.factory.systemStt.url, u"ws://stt.test/system"_s);
    EXPECT_EQ(
        fixture.debugLines(),
        (QStringList{u"WS connected"_s, u"Sent StartSession simMode=false"_s,
                     u"SessionStarted id=s-1 token=yes sysToken=yes"_s, u"Connecting STT..."_s, u"STT connected"_s,
                     u"Starting mic..."_s, u"Starting system audio capture..."_s, u"System audio STT connected"_s,
                     u"Pipeline ready — listening"_s, u"STT_EVENTS: listening for events..."_s}));
}

TEST(SessionPipelineTest, aLocalServerNeedsNoSignInAndNoToken) {
    SessionFixture fixture;
    fixture.auth->accessToken = u"never-used"_s;
    fixture.session().setUserEmail(u"anna@corvellan.example"_s);
    fixture.session().startSession();
    settle();
    EXPECT_FALSE(fixture.did("auth.login"));
    EXPECT_EQ(fixture.ws->urls.at(0).toString(), u"ws://localhost:3001/ws"_s);
    EXPECT_EQ(fixture.session().userEmail(), u"anna@corvellan.example"_s);
}

TEST(SessionPipelineTest, aLocalServersQueryStaysAsItIs) {
    SessionFixture fixture;
    fixture.session().setServerURL(u"ws://127.0.0.1:3001/ws?room=1&token=mine"_s);
    fixture.session().startSession();
    settle();
    EXPECT_EQ(fixture.ws->urls.at(0).toString(), u"ws://127.0.0.1:3001/ws?room=1&token=mine"_s);
}

TEST(SessionPipelineTest, aRemoteServerIsReachedWithTheTokenInPlaceOfItsQuery) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"wss://coach.test/ws?old=1&token=stale"_s);
    fixture.auth->accessToken = u"h.eyJzdWIiOiJhbm5hQGNvcnZlbGxhbi5leGFtcGxlIn0.s"_s;
    QStringList states;
    recordStatus(session, states);
    session.startSession();
    settle();
    EXPECT_EQ(states.first(), u"Authenticating..."_s);
    EXPECT_EQ(fixture.auth->baseUrl, u"https://chat.test"_s);
    EXPECT_EQ(fixture.ws->urls.at(0).toString(QUrl::FullyEncoded),
              u"wss://coach.test/ws?token=h.eyJzdWIiOiJhbm5hQGNvcnZlbGxhbi5leGFtcGxlIn0.s"_s);
    EXPECT_EQ(session.userEmail(), u"anna@corvellan.example"_s);
}

TEST(SessionPipelineTest, aTokenIsEncodedForTheQuery) {
    SessionFixture fixture;
    fixture.session().setServerURL(u"wss://coach.test/ws"_s);
    fixture.auth->accessToken = u"a+b&c=d #"_s;
    fixture.session().startSession();
    settle();
    EXPECT_EQ(fixture.ws->urls.at(0).toEncoded(), "wss://coach.test/ws?token=a%2Bb%26c%3Dd%20%23");
}

TEST(SessionPipelineTest, aFailedSignInIsRepeatedOnceAfterALogout) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"wss://coach.test/ws"_s);
    fixture.auth->loginErrors = {refused};
    const LogCapture system{u"Session"_s};
    QStringList states;
    recordStatus(session, states);
    session.startSession();
    settle();
    EXPECT_EQ(states.mid(0, 3), (QStringList{u"Authenticating..."_s, u"Re-authenticating..."_s, u"Connecting..."_s}));
    EXPECT_EQ((CallLog{fixture.log.begin(), fixture.log.begin() + 4}),
              (CallLog{"auth.login", "auth.logout", "auth.login", "ws.connect"}));
    EXPECT_TRUE(system.errors().contains(u"Auth failed, forcing re-login: Connection refused"_s));
    EXPECT_TRUE(session.isSessionActive());
}

TEST(SessionPipelineTest, aSecondFailedSignInFailsTheSessionWithTheFullCleanup) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"wss://coach.test/ws"_s);
    fixture.auth->loginErrors = {refused, TransportError{u"No such host"_s}};
    const LogCapture system{u"Session"_s};
    session.startSession();
    settle();
    EXPECT_EQ(fixture.error(), u"No such host"_s);
    EXPECT_EQ(session.statusText(), u"Ready"_s);
    EXPECT_EQ((CallLog{fixture.log.begin() + 3, fixture.log.end()}), fullCleanup);
    EXPECT_TRUE(system.errors().contains(u"Session error: No such host"_s));
    EXPECT_EQ(fixture.debugLines(), (QStringList{u"ERROR: No such host"_s}));
}

TEST(SessionPipelineTest, aFailureSpeaksToThePersonAndTellsTheLogsMore) {
    SessionFixture fixture;
    fixture.ws->connectError = TwoVoices{};
    const LogCapture system{u"Session"_s};
    fixture.session().startSession();
    settle();
    EXPECT_EQ(fixture.error(), u"For people"_s);
    EXPECT_EQ(system.errors(), QStringList{u"Session error: For logs"_s});
    EXPECT_EQ(fixture.debugLines(), QStringList{u"ERROR: For logs"_s});
}

TEST(SessionPipelineTest, anInvalidUrlTouchesNoService) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"ws://local host:127.0.0.1/ws"_s);
    session.startSession();
    settle();
    EXPECT_EQ(fixture.error(), u"Invalid server URL"_s);
    EXPECT_EQ(session.statusText(), u"Ready"_s);
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_TRUE(session.isQuiet());
}

TEST(SessionPipelineTest, aFailedConnectFailsTheSession) {
    SessionFixture fixture;
    fixture.ws->connectError = refused;
    fixture.session().startSession();
    settle();
    EXPECT_EQ(fixture.error(), u"Connection refused"_s);
    EXPECT_EQ((CallLog{fixture.log.begin() + 1, fixture.log.end()}), fullCleanup);
    EXPECT_FALSE(fixture.session().isSessionActive());
}

TEST(SessionPipelineTest, aFailedStartMessageFailsTheSessionBeforeItIsActive) {
    SessionFixture fixture;
    fixture.ws->sendError = refused;
    std::vector<bool> activity;
    fixture.session().onSessionActiveChanged = [&](bool value) { activity.push_back(value); };
    fixture.session().startSession();
    settle();
    EXPECT_EQ(fixture.error(), u"Connection refused"_s);
    EXPECT_EQ(activity, (std::vector{false}));
    EXPECT_FALSE(fixture.session().isConnected());
}

TEST(SessionPipelineTest, theStartMessageCarriesWhatTheSessionIsAbout) {
    SessionFixture fixture;
    fixture.memoryNote = u"Territory: north"_s;
    fixture.session().setCoachingMode(AudienceType::coldCall);
    fixture.session().startSession({.company = u"Acme"_s,
                                    .hubspotId = u"h1"_s,
                                    .simMode = true,
                                    .scenario = u"cfo"_s,
                                    .discType = DiscType::steady,
                                    .calendarEventId = u"e1"_s,
                                    .callNotes = u" ask for budget "_s,
                                    .goals = std::vector{CallGoal::upsell},
                                    .gameMode = true});
    settle();
    const auto& message = std::get<StartSessionPayload>(fixture.ws->sent.at(0).value);
    EXPECT_EQ(message,
              (StartSessionPayload{.company = u"Acme"_s,
                                   .hubspotId = u"h1"_s,
                                   .simMode = true,
                                   .scenario = u"cfo"_s,
                                   .discType = DiscType::steady,
                                   .calendarEventId = u"e1"_s,
                                   .clientVersion = u"1.2.3"_s,
                                   .audience = AudienceType::coldCall,
                                   .callNotes = u"Rep context:\nTerritory: north\n\nCall prep:\n ask for budget "_s,
                                   .goals = std::vector{CallGoal::upsell},
                                   .gameMode = true}));
    EXPECT_TRUE(fixture.debugLines().contains(u"Sent StartSession simMode=true"_s));
}

TEST(SessionPipelineTest, theMemoryNoteTravelsWithItsFirst2000Characters) {
    SessionFixture fixture;
    // One character of two code points, as some editors write it.
    const auto character = u"e\u0301"_s;
    fixture.memoryNote = character.repeated(2500);
    fixture.session().startSession();
    settle();
    const auto& message = std::get<StartSessionPayload>(fixture.ws->sent.at(0).value);
    const auto expected = u"Rep context:\n"_s + character.repeated(2000);
    EXPECT_EQ(message.callNotes, expected);
}

TEST(SessionPipelineTest, blankCallNotesAddNothing) {
    for (const auto& notes : {u"   "_s, u" \n "_s, QString{}}) {
        SessionFixture fixture;
        fixture.session().startSession({.callNotes = notes});
        settle();
        EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.at(0).value).callNotes, std::nullopt);
    }
}

TEST(SessionPipelineTest, theNoteOfEachStartIsReadAnew) {
    SessionFixture fixture;
    fixture.memoryNote = u"old"_s;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.memoryNote = u"new"_s;
    fixture.session().startSession();
    settle();
    EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.back().value).callNotes, u"Rep context:\nnew"_s);
}

TEST(SessionPipelineTest, anErrorBeforeTheSessionShowsTheServersWordsExactlyAndSkipsTheCleanup) {
    SessionFixture fixture;
    fixture.session().startSession();
    settle();
    fixture.log.clear();
    fixture.ws->deliver(ServerMsg::Value{ServerMsg::Failure{u"Quota used up"_s}});
    settle();
    EXPECT_EQ(fixture.error(), u"Quota used up"_s);
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
    EXPECT_FALSE(fixture.session().isSessionActive());
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_TRUE(fixture.debugLines().contains(u"Server error: Quota used up"_s));
}

TEST(SessionPipelineTest, aSocketThatClosesBeforeTheSessionTellsOfTheMissingToken) {
    SessionFixture fixture;
    fixture.session().startSession();
    settle();
    fixture.log.clear();
    fixture.ws->close();
    settle();
    EXPECT_EQ(fixture.error(), u"Server did not provide ephemeral token"_s);
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_EQ(fixture.debugLines().last(), u"ERROR: no ephemeral token"_s);
}

TEST(SessionPipelineTest, aSocketThatFailsBeforeTheSessionFailsIt) {
    SessionFixture fixture;
    fixture.session().startSession();
    settle();
    fixture.log.clear();
    fixture.ws->fail(u"Connection reset"_s);
    settle();
    EXPECT_EQ(fixture.error(), u"Connection reset"_s);
    EXPECT_EQ(fixture.log, fullCleanup);
}

TEST(SessionPipelineTest, otherMessagesBeforeTheSessionAreDroppedUnread) {
    SessionFixture fixture;
    fixture.session().startSession();
    settle();
    fixture.ws->deliver(ServerMsg::Value{ServerMsg::CrmData{.companyName = u"Acme"_s, .summary = u"big"_s}});
    fixture.ws->deliver(ServerMsg::Value{ServerMsg::Pong{}});
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_EQ(fixture.session().crmBrief(), std::nullopt);
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(SessionPipelineTest, aSessionWithoutAMicTokenIsRefusedAfterItsIdIsKept) {
    SessionFixture fixture;
    fixture.session().startSession();
    settle();
    fixture.log.clear();
    fixture.ws->deliver(ServerMsg::Value{SessionStartedPayload{.sessionId = u"s-9"_s}});
    settle();
    EXPECT_EQ(fixture.session().currentSessionId(), u"s-9"_s);
    EXPECT_EQ(fixture.error(), u"Server did not provide ephemeral token"_s);
    EXPECT_EQ(fixture.log, (CallLog{"ws.send", "screenShare.stop"}));
    EXPECT_TRUE(fixture.debugLines().contains(u"SessionStarted id=s-9 token=nil sysToken=nil"_s));
}

TEST(SessionPipelineTest, aFailedMicrophoneFailsTheSession) {
    SessionFixture fixture;
    fixture.audio->startError = TransportError{u"No microphone was found."_s};
    fixture.session().startSession();
    settle();
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_EQ(fixture.error(), u"No microphone was found."_s);
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
    EXPECT_FALSE(fixture.did("systemAudio.start"));
    EXPECT_TRUE(fixture.did("ws.disconnect"));
}

TEST(SessionPipelineTest, aRefusedSystemCaptureLeavesASessionOnTheMicrophoneAlone) {
    SessionFixture fixture;
    fixture.factory.systemAudio.startError = TwoVoices{};
    fixture.session().startSession();
    settle();
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
    EXPECT_TRUE(fixture.session().isSessionActive());
    EXPECT_EQ(fixture.error(), u"System audio: For people (mic-only mode)"_s);
    EXPECT_TRUE(fixture.debugLines().contains(u"System audio failed (mic-only): For logs"_s));
    EXPECT_FALSE(fixture.did("systemStt.disconnect"));
}

TEST(SessionPipelineTest, withoutASystemTokenTheSystemSideIsSkippedSilently) {
    SessionFixture fixture;
    auto answer = SessionFixture::started();
    answer.openaiEphemeralTokenSystem = std::nullopt;
    fixture.session().startSession();
    settle();
    fixture.ws->deliver(ServerMsg::Value{answer});
    settle();
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
    EXPECT_FALSE(fixture.did("systemStt.connect"));
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(SessionPipelineTest, trainingNeverCapturesTheSystem) {
    SessionFixture fixture;
    fixture.session().startSession({.simMode = true});
    settle();
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_FALSE(fixture.did("systemAudio.start"));
    EXPECT_FALSE(fixture.did("systemStt.connect"));
}

TEST(SessionPipelineTest, startingAnActiveSessionDoesNothingAtAll) {
    SessionFixture fixture;
    fixture.goLive({.company = u"Acme"_s});
    fixture.session().setCoachingMessage(u"keep"_s);
    fixture.session().startSession({.company = u"Other"_s});
    settle();
    EXPECT_EQ(fixture.session().coachingMessage(), u"keep"_s);
    EXPECT_EQ(fixture.session().currentCompany(), u"Acme"_s);
    EXPECT_TRUE(fixture.log.empty());
}

TEST(SessionPipelineTest, startingResetsWhatTheLastSessionLeft) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setErrorMessage(u"old"_s);
    session.setLastSummary(SummaryPayload{});
    session.setSelectedOutcome(CallOutcome::voicemail);
    session.setFeedbackRating(1);
    session.setFeedbackNote(u"n"_s);
    session.setFeedbackSubmitted(true);
    session.setCoachingMessage(u"m"_s);
    session.setCoachingType(CoachingType::listen);
    session.setCoachingUrgency(CoachingUrgency::high);
    session.setProductHint(u"p"_s);
    session.setCallStage(CallStage::closing);
    session.setCallPhase(u"ph"_s);
    session.setMeddicScore({.metrics = true});
    session.setMeddicEvidence({u"e"_s});
    session.setMeddicJustConfirmed(2);
    session.setBuyerDisc({.discType = DiscType::steady});
    session.setSentiment(CustomerSentiment::eager);
    session.setElapsedSeconds(9);
    session.setAudioLevel(1);
    session.setSystemAudioLevel(1);
    session.setCrmBrief(u"b"_s);
    session.setCounterpartStreamingText(u"c"_s);
    session.setTrainStage(TrainStage::coaching);
    session.setUserEmail(u"anna@corvellan.example"_s);
    session.transcriptLines().append({.id = {}, .source = TranscriptSource::mic, .text = u"t"_s, .timestamp = {}});

    session.startSession();
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_EQ(session.lastSummary(), std::nullopt);
    EXPECT_EQ(session.selectedOutcome(), std::nullopt);
    EXPECT_EQ(session.feedbackRating(), std::nullopt);
    EXPECT_EQ(session.feedbackNote(), QString{});
    EXPECT_FALSE(session.feedbackSubmitted());
    EXPECT_EQ(session.transcriptLines().count(), 0);
    EXPECT_EQ(session.coachingMessage(), QString{});
    EXPECT_EQ(session.coachingType(), std::nullopt);
    EXPECT_EQ(session.coachingUrgency(), std::nullopt);
    EXPECT_EQ(session.productHint(), std::nullopt);
    EXPECT_EQ(session.callStage(), CallStage::opening);
    EXPECT_EQ(session.callPhase(), std::nullopt);
    EXPECT_EQ(session.meddicScore(), MeddicScore{});
    EXPECT_EQ(session.meddicEvidence(), MeddicEvidence{});
    EXPECT_EQ(session.meddicJustConfirmed(), std::nullopt);
    EXPECT_EQ(session.buyerDisc(), BuyerDisc{});
    EXPECT_EQ(session.sentiment(), CustomerSentiment::neutral);
    EXPECT_EQ(session.elapsedSeconds(), 0);
    EXPECT_EQ(session.audioLevel(), 0);
    EXPECT_EQ(session.systemAudioLevel(), 0);
    EXPECT_EQ(session.crmBrief(), std::nullopt);
    EXPECT_EQ(session.counterpartStreamingText(), QString{});
    EXPECT_EQ(session.trainStage(), TrainStage::listening);
    EXPECT_EQ(session.userEmail(), u"anna@corvellan.example"_s);
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
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_TRUE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Listening..."_s);
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
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_TRUE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Listening..."_s);
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
    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_TRUE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Listening..."_s);
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

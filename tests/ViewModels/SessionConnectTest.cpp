#include "SessionPipelineFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

/// A failure that people and logs hear of in different words.
struct TwoVoices {
    [[nodiscard]] static QString errorDescription() { return u"For people"_s; }
    [[nodiscard]] static QString debugDescription() { return u"For logs"_s; }
};

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

}  // namespace
}  // namespace corvellan::test

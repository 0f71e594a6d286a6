#include "Base/DebugLog.h"
#include "Models/Briefing.h"
#include "Sandbox/CommandLine.h"
#include "Services/BriefingService.h"
#include "Services/HttpClient.h"
#include "Services/ScreenShare/ScreenShareService.h"
#include "Services/WebSocketService.h"
#include "SignedInFixture.h"
#include "Support/FakeScreenCaptures.h"
#include "Support/SessionSurroundings.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

/// Real sockets, and fakes for what has to do with sound; pictures of the screen are made up, and really sent.
class WireFactory final : public ServiceFactory {
public:
    WireFactory(CallLog& log, Clock& clock, HttpClientProtocol& http, Diagnostics& diagnostics)
        : fakes(log),
          m_clock(clock),
          m_http(http),
          m_diagnostics(diagnostics) {}

    std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override {
        return std::make_unique<ScreenShareService>(ScreenShareService::Environment{.executor = mainExecutor(),
                                                                                    .worker = mainExecutor(),
                                                                                    .clock = m_clock,
                                                                                    .http = m_http,
                                                                                    .captures = captures,
                                                                                    .ownProcessId = 1});
    }
    std::unique_ptr<TtsServiceProtocol> makeTts() override { return fakes.makeTts(); }
    std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override { return fakes.makeSystemAudio(); }
    std::unique_ptr<SttServiceProtocol> makeStt() override { return fakes.makeStt(); }
    std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override {
        return std::make_unique<WebSocketService>(mainExecutor(), m_clock, m_diagnostics);
    }

    FakeFactory fakes;
    FakeScreenCaptures captures;

private:
    Clock& m_clock;
    HttpClientProtocol& m_http;
    Diagnostics& m_diagnostics;
};

/// The program's session with its real clients, signed in, on the sandbox's address for servers elsewhere.
class SessionAgainstSandboxTest : public SignedInFixture {
protected:
    void SetUp() override {
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
        start();
        briefings =
            std::make_unique<BriefingService>(http, u"http://127.0.0.2:%1"_s.arg(box->chatPort()), around.debugLog);
        around.preferences.setString(u"serverMode"_s, u"production"_s);
        const auto base = around.environment(factory, u"1.2.3"_s);
        given.auth->accessToken = tokenFor();
        auto webSocket = factory.makeWebSocket();
        auto audio = given.takeAudio();
        auto stt = given.takeStt();
        auto auth = given.takeAuth();
        session =
            std::make_unique<SessionViewModel>(SessionEnvironment{.main = base.main,
                                                                  .pumps = base.pumps,
                                                                  .clock = base.clock,
                                                                  .preferences = base.preferences,
                                                                  .debugLog = base.debugLog,
                                                                  .diagnostics = base.diagnostics,
                                                                  .services = base.services,
                                                                  .http = http,
                                                                  .briefings = *briefings,
                                                                  .productionUrl = coachUrl(u"127.0.0.2"_s).toString(),
                                                                  .chatUrl = base.chatUrl,
                                                                  .clientVersion = base.clientVersion,
                                                                  .tokenFilePath = base.tokenFilePath,
                                                                  .loadMemoryNote = base.loadMemoryNote},
                                               std::move(webSocket), std::move(audio), std::move(stt), std::move(auth));
        session->setModelContext(&store);
    }
    void TearDown() override {
        session->stopSensorPolling();
        session->cancelAutoStart();
        session->stopSession();
        EXPECT_TRUE(spinUntil([&] {
            settleAfter(around.clock, 10s);
            return session->isQuiet();
        }));
        session->setModelContext(nullptr);
        session.reset();
    }

    CallLog calls;
    SessionSurroundings around;
    HttpClient http{mainExecutor(), around.clock};
    std::unique_ptr<BriefingService> briefings;
    WireFactory factory{calls, around.clock, http, around.diagnostics};
    FakeGivenServices given{calls};
    FakeStore store;
    std::unique_ptr<SessionViewModel> session;
};

}  // namespace

TEST_F(SessionAgainstSandboxTest, fetchesTheUpcomingMeetings) {
    session->fetchUpcomingMeetings();
    ASSERT_TRUE(spinUntil([&] { return session->upcomingMeetings().size() == 5; }));
    EXPECT_EQ(session->upcomingMeetings().at(0).summary, u"Halden Freight: discovery"_s);
    EXPECT_FALSE(session->calendarError());
}

TEST_F(SessionAgainstSandboxTest, theCalendarSaysWhenTheSignInIsOver) {
    box->accounts().revoke(*given.auth->accessToken);
    session->fetchUpcomingMeetings();
    ASSERT_TRUE(spinUntil([&] { return session->calendarError().has_value(); }));
    EXPECT_EQ(session->calendarError(), u"Authentication expired"_s);
}

TEST_F(SessionAgainstSandboxTest, importsTheCallsOfAnotherComputerOnce) {
    const QString first = holdCall();
    const QString second =
        holdCall(R"({"type":"start_session","sim_mode":true,"scenario":"cold_call","audience":"cold_call"})");
    for (int round = 0; round < 2; ++round) {
        session->syncHistory();
        ASSERT_TRUE(spinUntil([&] { return !session->isSyncingHistory(); }));
        ASSERT_EQ(store.records.size(), 2U);
    }
    EXPECT_EQ(store.records[0].callId, second);
    EXPECT_TRUE(store.records[0].wasTrainMode);
    EXPECT_EQ(store.records[0].scenario, u"cold_call"_s);
    EXPECT_EQ(store.records[1].callId, first);
    EXPECT_EQ(store.records[1].companyName, u"Halden Freight"_s);
    EXPECT_TRUE(store.records[1].meddic().identifyPain);
    EXPECT_EQ(store.saves, 1);
}

TEST_F(SessionAgainstSandboxTest, reportsOnACallAfterIt) {
    SessionRecord record;
    record.callId = holdCall();
    session->sendFeedback(1, u"well done"_s, record);
    session->sendOutcome(CallOutcome::demoBooked, record);
    const auto& call = box->calls().calls().front();
    ASSERT_TRUE(spinUntil([&] { return !call.feedback.empty() && call.outcome; }));
    EXPECT_EQ(call.feedback[0].rating, 1);
    EXPECT_EQ(call.feedback[0].note, u"well done"_s);
    EXPECT_EQ(call.outcome, CallOutcome::demoBooked);
}

TEST_F(SessionAgainstSandboxTest, hearsOfTheExtensionsCallOverItsSocket) {
    session->startSensorPolling();
    // Not by `sensorConnected`: the poll says the contrary, and either may come last.
    ASSERT_TRUE(spinUntil([&] { return logs(u"#1 connected"_s); }));
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"call_start","company_name":"Northwind"})"});
    ASSERT_TRUE(spinUntil([&] { return session->autoStartCountdown().has_value(); }));
    EXPECT_EQ(session->extensionContext()->hubspotCompanyId, u"55310021"_s);
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"call_end"})"});
    ASSERT_TRUE(spinUntil([&] { return !session->autoStartCountdown(); }));
    EXPECT_FALSE(session->extensionCallActive());
}

TEST_F(SessionAgainstSandboxTest, hearsOfTheExtensionsCallByThePoll) {
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"call_start","company_name":"Northwind"})"});
    session->checkSensorStatus();
    ASSERT_TRUE(spinUntil([&] { return session->extensionCallActive(); }));
    EXPECT_TRUE(session->sensorConnected());
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"disconnect"})"});
    session->checkSensorStatus();
    ASSERT_TRUE(spinUntil([&] { return !session->extensionCallActive(); }));
    EXPECT_FALSE(session->sensorConnected());
}

TEST_F(SessionAgainstSandboxTest, isStartedAndEndedByTheExtensionFromTheShell) {
    const auto play = [this](const QStringList& arguments) {
        auto command = sandbox::parseCommandLine(QStringList{u"extension"_s} + arguments +
                                                 QStringList{u"--coach-port"_s, QString::number(box->coachPort())});
        EXPECT_TRUE(command);
        return sandbox::run(std::get<sandbox::ExtensionCommand>(*command));
    };
    EXPECT_EQ(play({u"context"_s, u"--company"_s, u"Northwind"_s}),
              u"Reported. Nobody listens now; who polls hears of it within half a minute.\n"_s);
    session->startSensorPolling();
    ASSERT_TRUE(spinUntil([&] { return logs(u"#1 connected"_s); }));
    EXPECT_EQ(play({u"call-start"_s, u"--company"_s, u"Halden Freight"_s, u"--contact"_s, u"Tom Berg"_s}),
              u"Reported, and one program was told at once.\n"_s);
    ASSERT_TRUE(spinUntil([&] { return session->autoStartCountdown() == 3; }));
    ASSERT_TRUE(spinUntil([&] {
        settleAfter(around.clock, 1s);
        return session->isSessionActive();
    }));
    ASSERT_TRUE(spinUntil([&] { return !box->calls().calls().empty(); }));
    EXPECT_EQ(box->calls().calls().front().start.company, u"Halden Freight"_s);
    EXPECT_EQ(box->calls().calls().front().start.hubspotId, u"90210447"_s);
    EXPECT_EQ(play({u"call-end"_s}), u"Reported, and one program was told at once.\n"_s);
    ASSERT_TRUE(spinUntil([&] { return box->calls().calls().front().endedAt.has_value(); }));
    EXPECT_TRUE(box->calls().calls().front().hasSummary);
}

TEST_F(SessionAgainstSandboxTest, connectsWithItsToken) {
    session->startSession({.company = u"Halden Freight"_s});
    ASSERT_TRUE(spinUntil([&] { return session->isSessionActive(); }));
    ASSERT_TRUE(spinUntil([&] { return logs(u"start_session with Halden Freight"_s); }));
    EXPECT_FALSE(logs(*given.auth->accessToken));
}

TEST_F(SessionAgainstSandboxTest, getsNoSessionWithATokenThatIsOver) {
    box->accounts().revoke(*given.auth->accessToken);
    session->startSession({});
    ASSERT_TRUE(spinUntil([&] { return session->errorMessage().has_value(); }));
    EXPECT_FALSE(session->isSessionActive());
    EXPECT_TRUE(logs(u"refused a connection: its token is not good"_s));
}

TEST_F(SessionAgainstSandboxTest, sharesTheScreenWhileThatIsSwitchedOn) {
    QImage screen{640, 480, QImage::Format_RGB32};
    screen.fill(Qt::darkGreen);
    factory.captures.desktop->picture = screen;
    session->setIsScreenShareEnabled(true);
    session->startSession({.company = u"Halden Freight"_s});
    ASSERT_TRUE(spinUntil([&] {
        settleAfter(around.clock, 1s);
        return logs(u"bytes, hash 0000000000000000"_s);
    }));
    EXPECT_FALSE(logs(u"though this session shares no screen"_s));
    EXPECT_FALSE(logs(u"refused one"_s));
    const auto frame = rest({.path = "/sandbox/frames/" + session->currentSessionId().value_or(QString{}).toLatin1()});
    EXPECT_EQ(QImage::fromData(frame.body, "jpeg").size(), screen.size());

    session->toggleScreenShare();
    settleAfter(around.clock, 1s);
    const auto pictured = factory.captures.desktop->pictured.size();
    settleAfter(around.clock, 60s);
    EXPECT_EQ(factory.captures.desktop->pictured.size(), pictured);
}

TEST_F(SessionAgainstSandboxTest, aTrainingIsHeldWithTheSandboxsBuyerAndKeptAsOne) {
    session->startSession(
        {.simMode = true, .scenario = u"cold_call"_s, .discType = DiscType::dominant, .gameMode = true});
    QStringList replies;
    const auto hasReplies = [&](int count) {
        return spinUntil([&] {
            settleAfter(clock, 20ms);
            replies.clear();
            for (const auto& line : session->transcriptLines().lines())
                if (line.source == TranscriptSource::system)
                    replies.append(line.text);
            return replies.size() >= count;
        });
    };
    ASSERT_TRUE(hasReplies(1));
    EXPECT_TRUE(replies.at(0).endsWith(u"I am in the middle of the roster for next week."_s));
    EXPECT_TRUE(spinUntil([&] { return given.audio->isRunning(); }));
    EXPECT_FALSE(std::ranges::find(calls, "systemAudio.start") != calls.end());

    given.stt->deliverFinal(u"What annoys you most?"_s);
    ASSERT_TRUE(spinUntil([&] { return session->coachingMessage() == u"Open question on pain: +10. Score 10."_s; }));
    EXPECT_EQ(session->trainStage(), TrainStage::coaching);
    ASSERT_TRUE(hasReplies(2));
    EXPECT_TRUE(replies.at(1).contains(u"I redo the roster three times a week"_s)) << qPrintable(replies.at(1));
    ASSERT_TRUE(spinUntil([&] { return session->meddicScore().identifyPain; }));
    EXPECT_EQ(session->callPhase(), u"Score 10"_s);

    // Shorter ones are not kept.
    settleAfter(clock, 60s);
    session->endSession();
    ASSERT_TRUE(spinUntil([&] { return store.records.size() == 1; }));
    EXPECT_TRUE(store.records[0].wasTrainMode);
    EXPECT_EQ(store.records[0].scenario, u"cold_call"_s);
    EXPECT_TRUE(store.records[0].meddic().identifyPain);
}

TEST_F(SessionAgainstSandboxTest, theScenariosAreAList) {
    const HttpRequest request{.url = QUrl{u"http://127.0.0.2:%1/scenarios"_s.arg(box->coachPort())},
                              .headers = {{"Authorization", "Bearer " + given.auth->accessToken->toUtf8()}}};
    const auto answer = complete(http.send(request, {}));
    ASSERT_TRUE(answer);
    const auto scenarios = ScenariosResponse::decode(answer->body);
    ASSERT_TRUE(scenarios) << scenarios.error().errorDescription().toStdString();
    EXPECT_EQ(scenarios->scenarios.at(0).key, u"haulier_spreadsheets"_s);
}

}  // namespace corvellan::test

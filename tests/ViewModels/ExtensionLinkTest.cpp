#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

namespace {

const ExtensionContextPayload acme{.entityType = u"contact"_s,
                                   .entityId = u"7"_s,
                                   .displayName = u"Dana Moor"_s,
                                   .companyName = u"Acme"_s,
                                   .hubspotCompanyId = u"h-9"_s,
                                   .callActive = true};

/// The poll's answer, as a server writes it.
QByteArray status(bool isConnected, const std::optional<ExtensionContextPayload>& context = std::nullopt) {
    QJsonObject root{{u"sensor_connected"_s, isConnected}};
    if (context) {
        QJsonObject object{{u"call_active"_s, context->callActive},
                           {u"entity_type"_s, context->entityType},
                           {u"entity_id"_s, context->entityId}};
        if (context->displayName)
            object[u"display_name"_s] = *context->displayName;
        if (context->companyName)
            object[u"company_name"_s] = *context->companyName;
        if (context->hubspotCompanyId)
            object[u"hubspot_company_id"_s] = *context->hubspotCompanyId;
        root[u"context"_s] = object;
    }
    return QJsonDocument{root}.toJson();
}

class ExtensionLinkTest : public testing::Test {
protected:
    ExtensionLinkTest() { auth->accessToken = u"to.k+en"_s; }

    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] FakeWebSocket& listener() const { return *fixture.factory.listeners.back(); }
    [[nodiscard]] std::size_t listeners() const { return fixture.factory.listeners.size(); }
    [[nodiscard]] std::size_t polls() const { return fixture.http.requests.size(); }

    void start() {
        session().startSensorPolling();
        settle();
    }
    void poll(const QByteArray& body, int code = 200) {
        fixture.http.answer(code, body);
        session().checkSensorStatus();
        settle();
    }
    void tell(ServerMsg::Value message) {
        listener().deliver(std::move(message));
        settle();
    }
    /// The start messages of sessions so far.
    [[nodiscard]] int starts() const { return fixture.ws->countSent<ClientMsg::StartSession>(); }

    SessionFixture fixture;
    FakeAuth* auth = fixture.auth;
};

}  // namespace

// MARK: - The listener

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

// MARK: - The poll

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

// MARK: - Starting and stopping the link

TEST_F(ExtensionLinkTest, startingAnewReplacesBothChannels) {
    fixture.http.answer(200, status(true));
    start();
    start();
    EXPECT_EQ(listeners(), 2U);
    EXPECT_EQ(polls(), 2U);
    EXPECT_EQ(std::ranges::count(fixture.log, "listener.disconnect"), 1);
    settleAfter(fixture.clock, 30s);
    EXPECT_EQ(listeners(), 2U);
    EXPECT_EQ(polls(), 3U);
}

TEST_F(ExtensionLinkTest, stoppingEndsBothChannels) {
    fixture.http.answer(200, status(true));
    start();
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(fixture.did("listener.disconnect"));
    EXPECT_TRUE(session().isQuiet());
    settleAfter(fixture.clock, 120s);
    EXPECT_EQ(listeners(), 1U);
    EXPECT_EQ(polls(), 1U);
}

TEST_F(ExtensionLinkTest, stoppingGivesUpAPollUnderWay) {
    fixture.http.gate.close();
    start();
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(session().isQuiet());
}

TEST_F(ExtensionLinkTest, aRunningLinkLeavesTheSessionQuiet) {
    start();
    EXPECT_TRUE(session().isQuiet());
}

TEST_F(ExtensionLinkTest, stoppingWhatNeverRanIsHarmless) {
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(session().isQuiet());
}

// MARK: - The countdown

TEST_F(ExtensionLinkTest, aCallIsCountedDownAndThenCoached) {
    const LogCapture log{u"Session"_s};
    start();
    tell(acme);
    EXPECT_EQ(log.infos().last(), u"Extension call detected: Acme (type: contact, id: 7)"_s);
    for (const int count : {3, 2, 1}) {
        EXPECT_EQ(session().autoStartCountdown(), count);
        EXPECT_EQ(starts(), 0);
        settleAfter(fixture.clock, 1s);
    }
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    ASSERT_EQ(starts(), 1);
    const auto& start = std::get<ClientMsg::StartSession>(fixture.ws->sent.at(0).value);
    EXPECT_EQ(start, (StartSessionPayload{.company = u"Acme"_s, .hubspotId = u"h-9"_s, .clientVersion = u"1.2.3"_s}));
}

TEST_F(ExtensionLinkTest, aCallWithoutACompanyIsCalledByTheContactsName) {
    auto contact = acme;
    contact.companyName.reset();
    contact.hubspotCompanyId.reset();
    start();
    tell(contact);
    settleAfter(fixture.clock, 3s);
    EXPECT_EQ(session().currentCompany(), u"Dana Moor"_s);
}

TEST_F(ExtensionLinkTest, aCallWithoutAnyNameIsCoachedAllTheSame) {
    const LogCapture log{u"Session"_s};
    start();
    tell(ExtensionContextPayload{.entityType = u"company"_s, .entityId = u"77"_s, .callActive = true});
    EXPECT_EQ(log.infos().last(), u"Extension call detected: nil (type: company, id: 77)"_s);
    settleAfter(fixture.clock, 3s);
    EXPECT_EQ(starts(), 1);
    EXPECT_EQ(session().currentCompany(), std::nullopt);
}

TEST_F(ExtensionLinkTest, withAutoStartOffTheContextIsUpdatedAndNothingElseHappens) {
    session().setAutoStartOnCall(false);
    start();
    tell(acme);
    EXPECT_EQ(session().extensionContext(), acme);
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    EXPECT_FALSE(session().extensionCallActive());
    settleAfter(fixture.clock, 10s);
    EXPECT_EQ(starts(), 0);
}

TEST_F(ExtensionLinkTest, duringASessionADetectedCallChangesTheContextAlone) {
    fixture.goLive();
    start();
    tell(acme);
    EXPECT_EQ(session().extensionContext(), acme);
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    EXPECT_FALSE(session().extensionCallActive());
}

TEST_F(ExtensionLinkTest, aSecondReportOfTheSameCallStartsTheCountdownAnew) {
    start();
    tell(acme);
    settleAfter(fixture.clock, 2500ms);
    EXPECT_EQ(session().autoStartCountdown(), 1);
    poll(status(true, acme));
    EXPECT_EQ(session().autoStartCountdown(), 3);
    settleAfter(fixture.clock, 2900ms);
    EXPECT_EQ(starts(), 0);
    settleAfter(fixture.clock, 100ms);
    EXPECT_EQ(starts(), 1);
}

TEST_F(ExtensionLinkTest, theEndOfTheCallDuringTheCountdownStartsNoSession) {
    start();
    tell(acme);
    settleAfter(fixture.clock, 1s);
    tell(ServerMsg::ExtensionCallEnded{});
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    EXPECT_FALSE(session().extensionCallActive());
    settleAfter(fixture.clock, 10s);
    EXPECT_EQ(starts(), 0);
}

TEST_F(ExtensionLinkTest, afterTheUsersCancelTheNextPollOfTheSameCallCountsAgain) {
    start();
    tell(acme);
    session().cancelAutoStart();
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    settleAfter(fixture.clock, 20s);
    EXPECT_EQ(starts(), 0);
    fixture.http.answer(200, status(true, acme));
    settleAfter(fixture.clock, 10s);
    EXPECT_EQ(session().autoStartCountdown(), 3);
    settleAfter(fixture.clock, 3s);
    EXPECT_EQ(starts(), 1);
}

TEST_F(ExtensionLinkTest, onceTheSessionRunsALaterReportOfTheCallCountsNoMore) {
    start();
    tell(acme);
    settleAfter(fixture.clock, 3s);
    ASSERT_TRUE(session().isSessionActive());
    poll(status(true, acme));
    EXPECT_EQ(session().autoStartCountdown(), std::nullopt);
    EXPECT_TRUE(session().extensionCallActive());
}

// MARK: - The end of a call

TEST_F(ExtensionLinkTest, aPollWithoutAContextEndsTheCallAndItsSession) {
    const LogCapture log{u"Session"_s};
    fixture.goLive();
    session().setExtensionCallActive(true);
    poll(status(true));
    EXPECT_FALSE(session().extensionCallActive());
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_TRUE(log.infos().contains(u"Extension call ended — ending coaching session"_s));
}

TEST_F(ExtensionLinkTest, aPollWithAnInactiveContextEndsTheCallToo) {
    session().setExtensionCallActive(true);
    auto quiet = acme;
    quiet.callActive = false;
    poll(status(true, quiet));
    EXPECT_FALSE(session().extensionCallActive());
}

TEST_F(ExtensionLinkTest, aPollWithoutAContextEndsNoSessionThatTheExtensionDoesNotKnow) {
    fixture.goLive();
    poll(status(true));
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 0);
}

TEST_F(ExtensionLinkTest, aPollThatEndsTheCallLeavesTheCountdownAlone) {
    start();
    tell(acme);
    poll(status(true));
    EXPECT_FALSE(session().extensionCallActive());
    EXPECT_EQ(session().autoStartCountdown(), 3);
    settleAfter(fixture.clock, 3s);
    EXPECT_EQ(starts(), 1);
}

TEST_F(ExtensionLinkTest, theMessageEndsASessionThatWasStartedByHand) {
    const LogCapture log{u"Session"_s};
    start();
    fixture.goLive();
    ASSERT_FALSE(session().extensionCallActive());
    tell(ServerMsg::ExtensionCallEnded{});
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_TRUE(log.infos().contains(u"Extension call ended — ending coaching session"_s));
}

}  // namespace corvellan::test

#include "ExtensionLinkFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

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

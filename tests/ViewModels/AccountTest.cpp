#include <gtest/gtest.h>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

// {"sub":"anna@corvellan.example"} and {"email":"anna@corvellan.example"}.
const auto tokenOfAnna = u"h.eyJzdWIiOiJhbm5hQGNvcnZlbGxhbi5leGFtcGxlIn0.s"_s;
const auto tokenOfNobody = u"h.eyJlbWFpbCI6ImFubmFAY29ydmVsbGFuLmV4YW1wbGUifQ.s"_s;

class AccountTest : public testing::Test {
protected:
    AccountTest() {
        fixture.preferences.setString(u"serverMode"_s, u"production"_s);
        fixture.auth->accessToken = tokenOfAnna;
        QObject::connect(&session(), &SessionViewModel::statusTextChanged, &watcher,
                         [this] { statusTexts.append(session().statusText()); });
    }

    SessionViewModel& session() { return fixture.session(); }
    void login() {
        session().login();
        settle();
    }
    static Error failure(const QString& text) { return TransportError{text}; }

    SessionFixture fixture;
    FakeAuth* auth = fixture.auth;
    QStringList statusTexts;
    QObject watcher;
};

}  // namespace

TEST_F(AccountTest, signingInNamesTheUserAndFetchesTheMeetings) {
    login();
    EXPECT_EQ(statusTexts, (QStringList{u"Logging in..."_s, u"Logged in"_s}));
    EXPECT_EQ(session().userEmail(), u"anna@corvellan.example"_s);
    EXPECT_EQ(auth->baseUrl, u"https://chat.test"_s);
    EXPECT_EQ(fixture.log, CallLog{"auth.login"});
    EXPECT_EQ(fixture.briefings.tokens, QStringList{tokenOfAnna});
    EXPECT_EQ(session().errorMessage(), std::nullopt);
}

TEST_F(AccountTest, signingInIsDoneInTheBackground) {
    session().login();
    EXPECT_EQ(session().statusText(), u"Ready"_s);
    EXPECT_EQ(fixture.log, CallLog{});
}

TEST_F(AccountTest, aTokenWithoutASubjectLeavesTheUserUnnamedAndTheLoginSuccessful) {
    auth->accessToken = tokenOfNobody;
    session().setUserEmail(u"old@corvellan.example"_s);
    login();
    EXPECT_EQ(session().userEmail(), std::nullopt);
    EXPECT_EQ(session().statusText(), u"Logged in"_s);
}

TEST_F(AccountTest, withoutATokenInMemoryTheNameStays) {
    auth->accessToken.reset();
    session().setUserEmail(u"old@corvellan.example"_s);
    login();
    EXPECT_EQ(session().userEmail(), u"old@corvellan.example"_s);
    EXPECT_EQ(session().statusText(), u"Logged in"_s);
}

TEST_F(AccountTest, aFailedLoginDropsTheTokensAndTriesOnceMore) {
    const LogCapture log{u"Session"_s};
    auth->loginErrors = {failure(u"first"_s)};
    login();
    EXPECT_EQ(fixture.log, (CallLog{"auth.login", "auth.logout", "auth.login"}));
    EXPECT_EQ(statusTexts, (QStringList{u"Logging in..."_s, u"Re-authenticating..."_s, u"Logged in"_s}));
    EXPECT_EQ(log.errors(), QStringList{u"Login failed, forcing re-login: first"_s});
    EXPECT_EQ(session().userEmail(), u"anna@corvellan.example"_s);
    EXPECT_EQ(session().errorMessage(), std::nullopt);
    EXPECT_EQ(fixture.briefings.tokens.size(), 1);
}

TEST_F(AccountTest, theSecondFailureIsShown) {
    auth->loginErrors = {failure(u"first"_s), failure(u"second"_s)};
    login();
    EXPECT_EQ(statusTexts, (QStringList{u"Logging in..."_s, u"Re-authenticating..."_s, u"Login failed"_s}));
    EXPECT_EQ(session().errorMessage(), u"Login: second"_s);
    EXPECT_EQ(session().userEmail(), std::nullopt);
    EXPECT_EQ(fixture.briefings.tokens.size(), 0);
    EXPECT_EQ(std::ranges::count(fixture.log, "auth.login"), 2);
}

TEST_F(AccountTest, signingInToALocalServerFetchesNoMeetings) {
    session().setServerURL(u"ws://localhost:3001/ws"_s);
    login();
    EXPECT_EQ(session().statusText(), u"Logged in"_s);
    EXPECT_EQ(fixture.briefings.tokens.size(), 0);
}

TEST_F(AccountTest, signingOutEndsTheSessionAndForgetsTheUser) {
    fixture.goLive();
    session().setErrorMessage(u"old"_s);
    session().logoutAction();
    settle();
    EXPECT_EQ(fixture.log.front(), "auth.logout");
    EXPECT_FALSE(session().isSessionActive());
    EXPECT_EQ(session().userEmail(), std::nullopt);
    EXPECT_EQ(session().errorMessage(), std::nullopt);
}

TEST_F(AccountTest, signingOutSaysSo) {
    login();
    session().setUpcomingMeetings({{.id = u"e"_s}});
    session().logoutAction();
    settle();
    EXPECT_EQ(session().statusText(), u"Logged out"_s);
    EXPECT_EQ(session().userEmail(), std::nullopt);
    EXPECT_FALSE(session().isLoggedIn());
    EXPECT_EQ(session().upcomingMeetings().size(), 1U);
}

}  // namespace corvellan::test

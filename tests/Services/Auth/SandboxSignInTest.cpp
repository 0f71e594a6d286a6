#include <algorithm>
#include <QRegularExpression>
#include <QUrl>

#include "AuthServiceFixture.h"
#include "Sandbox/EventLog.h"
#include "Sandbox/Sandbox.h"
#include "Support/PlainHttp.h"

namespace corvellan::test {

namespace {

/// The service against the sandbox's real authorization server, with a user who presses the page's button.
class SandboxSignInTest : public AuthServiceFixture {
protected:
    void start(sandbox::AccountSettings accounts = {}, sandbox::Faults faults = {}) {
        sandbox::SandboxOptions options;
        options.coachPort = options.chatPort = options.providerPort = 0;
        options.accounts = std::move(accounts);
        options.faults = faults;
        auto started = sandbox::Sandbox::start(std::move(options), clock, log);
        ASSERT_TRUE(started);
        box = std::move(*started);
    }
    [[nodiscard]] QString base() const { return u"http://127.0.0.1:%1"_s.arg(box->chatPort()); }

    std::shared_ptr<Attempt> begin() {
        const auto attempt = std::make_shared<Attempt>();
        keep(service->login(base()), attempt);
        return attempt;
    }
    /// What a browser does: shows the page, sends its form, and goes where it is sent.
    void press(const QByteArray& user, const QByteArray& decision = "allow", std::size_t page = 0) {
        ASSERT_TRUE(isWaiting(page + 1));
        const QUrl url = desktop.browser.pages[page];
        const auto shown = plainHttp(box->chatPort(), "GET", url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority));
        ASSERT_EQ(shown.status, 200) << shown.body.constData();
        static const QRegularExpression pattern{u"name=\"ticket\" value=\"([^\"]+)\""_s};
        const QByteArray ticket = pattern.match(QString::fromUtf8(shown.body)).captured(1).toLatin1();
        const auto sent = plainHttp(box->chatPort(), "POST", "/api/oauth/authorize",
                                    "ticket=" + ticket + "&user=" + user + "&decision=" + decision);
        ASSERT_EQ(sent.status, 303) << sent.body.constData();
        const QByteArray location = sent.headers.value("location");
        const QByteArray origin = "http://127.0.0.1:9876";
        ASSERT_TRUE(location.startsWith(origin)) << location.constData();
        EXPECT_EQ(visit(location.sliced(origin.size())), callbackAnswer);
    }
    std::string signIn() {
        const auto attempt = begin();
        press("anna%40fernhill.example", "allow", desktop.browser.pages.size());
        return end(attempt);
    }
    std::string validTokenHere() { return complete(service->validToken(base())).value_or(u"(none)"_s).toStdString(); }
    /// Whose token the service holds, as the server sees it.
    std::string holder() {
        const auto held = complete(service->token());
        return box->accounts().userOf(held.value_or(QString{})).value_or(u"(nobody)"_s).toStdString();
    }
    [[nodiscard]] bool logged(const QString& text) const {
        return std::ranges::any_of(lines, [&](const QString& line) { return line.contains(text); });
    }

    QStringList lines;
    sandbox::EventLog log{clock, [this](const QString& line) { lines.append(line); }};
    std::unique_ptr<sandbox::Sandbox> box;

private:
    static QCoro::Task<void> keep(QCoro::Task<Login> task, std::shared_ptr<Attempt> attempt) {
        attempt->result.emplace(co_await task);
    }
};

}  // namespace

TEST_P(SandboxSignInTest, signsInByThePressOfAButton) {
    start();
    const auto attempt = begin();
    press("ben%40fernhill.example");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(holder(), "ben@fernhill.example");
    EXPECT_EQ(jwtSubject(complete(service->token()).value_or(QString{})), u"ben@fernhill.example"_s);
    EXPECT_TRUE(isAuthenticated());
    // Another service finds the file.
    makeService(listeners);
    EXPECT_EQ(text(complete(service->login(base()))), "ok");
    EXPECT_EQ(holder(), "ben@fernhill.example");
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(SandboxSignInTest, refreshesAgainAndAgain) {
    start();
    ASSERT_EQ(signIn(), "ok");
    std::string last = validTokenHere();
    for (int i = 0; i < 3; ++i) {
        pass(3540s);
        const std::string next = validTokenHere();
        EXPECT_NE(next, last);
        EXPECT_EQ(holder(), "anna@fernhill.example");
        last = next;
    }
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(SandboxSignInTest, refreshesWithOneTokenThatStaysGood) {
    start({.refreshTokens = sandbox::RefreshTokens::keep});
    ASSERT_EQ(signIn(), "ok");
    for (int i = 0; i < 3; ++i) {
        pass(3540s);
        std::ignore = validTokenHere();
        EXPECT_EQ(holder(), "anna@fernhill.example");
    }
}

TEST_P(SandboxSignInTest, overlappingRefreshesLeaveAGoodToken) {
    start();
    ASSERT_EQ(signIn(), "ok");
    pass(3540s);
    auto one = service->validToken(base());
    auto other = service->validToken(base());
    const auto first = complete(std::move(one));
    const auto second = complete(std::move(other));
    EXPECT_EQ(holder(), "anna@fernhill.example");
    // Both asked, and the server refused the slower one.
    EXPECT_TRUE(logged(u"refused: invalid_grant"_s));
    EXPECT_TRUE(first && box->accounts().userOf(*first)) << "the first";
    EXPECT_TRUE(second && box->accounts().userOf(*second)) << "the second";
}

TEST_P(SandboxSignInTest, asksTheUserAgainAfterTheSignInWasRevoked) {
    start();
    ASSERT_EQ(signIn(), "ok");
    ASSERT_TRUE(box->accounts().revoke(complete(service->token()).value_or(QString{})));
    pass(3540s);
    // The stale token, which the server refuses.
    EXPECT_NE(validTokenHere(), "(none)");
    EXPECT_EQ(holder(), "(nobody)");
    complete(service->invalidateToken());
    EXPECT_EQ(signIn(), "ok");
    EXPECT_EQ(holder(), "anna@fernhill.example");
}

TEST_P(SandboxSignInTest, waitsOnWhereTheUserCancels) {
    start();
    const auto attempt = begin();
    press("anna%40fernhill.example", "deny");
    settleAll();
    EXPECT_FALSE(attempt->result);
    // The page can be opened again while the port is open.
    press("anna%40fernhill.example");
    EXPECT_EQ(end(attempt), "ok");
}

TEST_P(SandboxSignInTest, asksTwiceWhereTheServerRefusesTheCode) {
    start({}, {.refuseCode = true});
    const auto attempt = begin();
    press("anna%40fernhill.example", "allow", 0);
    press("anna%40fernhill.example", "allow", 1);
    EXPECT_EQ(end(attempt),
              R"(Token exchange failed: {"error":"invalid_grant","error_description":"as --fault refuse-code asks"})");
}

TEST_P(SandboxSignInTest, aCodeThatWasNotForThisSignInIsRefused) {
    start();
    const auto attempt = begin();
    ASSERT_TRUE(isWaiting());
    // Another's code, with another challenge, slipped in by somebody else on this machine.
    const QString foreign =
        box->accounts().issueCode({.clientId = u"corvellan-tui"_s,
                                   .redirectUri = u"http://127.0.0.1:9876/callback"_s,
                                   .codeChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s,
                                   .scope = u"openid"_s,
                                   .state = {}},
                                  u"eve@x.example"_s);
    visit("/callback?code=" + foreign.toLatin1());
    press("anna%40fernhill.example", "allow", 1);
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(holder(), "anna@fernhill.example");
    EXPECT_TRUE(logged(u"the code_verifier does not belong to the code_challenge"_s));
}

INSTANTIATE_TEST_SUITE_P(Placements, SandboxSignInTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

}  // namespace corvellan::test

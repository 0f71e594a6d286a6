#include "AuthServiceFixture.h"
#include "Services/Auth/Pkce.h"

namespace corvellan::test {

namespace {

class AuthLoginTest : public AuthServiceFixture {
protected:
    /// In whatever words the connection's own error has.
    static bool failsInTransport(const std::shared_ptr<Attempt>& attempt) {
        return end(attempt) != "goes on" && !*attempt->result && attempt->result->error().as<TransportError>();
    }
};

/// Has no resources for a listener.
class NoListeners final : public LoopbackListeners {
public:
    std::expected<std::unique_ptr<LoopbackListener>, Error> make() override {
        return std::unexpected(Error{TransportError{u"Too many open files"_s}});
    }
};

}  // namespace

TEST_P(AuthLoginTest, usesAValidFileWithoutNetworkOrBrowser) {
    store(u"kept"_s, u"refresh"_s, 61);
    EXPECT_EQ(login(), "ok");
    EXPECT_EQ(token(), "kept");
    EXPECT_TRUE(isAuthenticated());
    EXPECT_EQ(server.count(), 0U);
    EXPECT_TRUE(desktop.browser.pages.empty());
    EXPECT_EQ(logs.infos(), QStringList{u"Using cached access token"_s});
}

TEST_P(AuthLoginTest, usesAFileWithAnAccessTokenAlone) {
    store(R"({"access_token":"alone"})");
    EXPECT_EQ(login(), "ok");
    EXPECT_EQ(token(), "alone");
    EXPECT_EQ(server.count(), 0U);
}

TEST_P(AuthLoginTest, refreshesAnExpiredFile) {
    store(u"old"_s, u"refresh"_s, 60);
    server.answer(goodTokens);
    EXPECT_EQ(login(), "ok");
    EXPECT_EQ(token(), "new");
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
    EXPECT_TRUE(desktop.browser.pages.empty());
    ASSERT_EQ(server.count(), 1U);
    EXPECT_EQ(server.requests()[0].line, "POST /api/oauth/token HTTP/1.1");
    EXPECT_TRUE(server.requests()[0].head.toLower().contains("content-type: application/x-www-form-urlencoded\r\n"));
    EXPECT_EQ(server.lastBody(), "grant_type=refresh_token&client_id=corvellan-tui&refresh_token=refresh");
    EXPECT_EQ(logs.infos(), QStringList{u"Token expired, trying refresh"_s});
}

TEST_P(AuthLoginTest, signsInThroughTheBrowser) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    EXPECT_TRUE(desktop.browser.pages[0].toString().startsWith(server.baseUrl() + u"/api/oauth/authorize?"_s));
    server.answer(goodTokens);
    EXPECT_EQ(visit("/callback?code=the-code"), callbackAnswer);
    EXPECT_EQ(end(attempt), "ok");

    ASSERT_EQ(server.count(), 1U);
    const QByteArray body = server.lastBody();
    const QByteArray start =
        "grant_type=authorization_code&client_id=corvellan-tui&code=the-code"
        "&redirect_uri=http://127.0.0.1:9876/callback&code_verifier=";
    ASSERT_TRUE(body.startsWith(start)) << body.constData();
    EXPECT_EQ(Pkce::challengeOf(body.sliced(start.size())), pageItem(u"code_challenge"_s).toLatin1());
    EXPECT_EQ(token(), "new");
    EXPECT_TRUE(isAuthenticated());
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
    EXPECT_EQ(logs.infos(), (QStringList{u"Starting OAuth flow — opening browser"_s,
                                         u"Waiting for OAuth callback on port 9876"_s, u"OAuth flow completed"_s}));
    EXPECT_TRUE(logs.errors().isEmpty());
}

TEST_P(AuthLoginTest, freesThePortBeforeTheCodeIsRedeemed) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.hold();
    EXPECT_EQ(visit("/callback?code=c"), callbackAnswer);
    ASSERT_TRUE(spinUntil([this] { return server.count() == 1; }));
    EXPECT_FALSE(TcpClient{port}.isConnected());
    server.release(goodTokens);
    EXPECT_EQ(end(attempt), "ok");
}

TEST_P(AuthLoginTest, opensTheBrowserWhereNoAddressIsGiven) {
    const auto attempt = std::make_shared<Attempt>();
    auto task = service->login();
    ASSERT_TRUE(isWaiting());
    EXPECT_TRUE(desktop.browser.pages[0].toString().startsWith(server.baseUrl()));
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(text(complete(std::move(task))), "ok");
}

TEST_P(AuthLoginTest, opensTheBrowserAfterARefusedRefresh) {
    store(u"old"_s, u"refresh"_s, 0);
    server.answer("{}", "400 Bad Request");
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    // Nothing is left of what was refused.
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(token(), "(none)");
    EXPECT_EQ(logs.errors(), QStringList{u"Refresh failed: Token refresh failed"_s});
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(token(), "new");
}

TEST_P(AuthLoginTest, opensTheBrowserAfterARefreshThatMadeNoSense) {
    store(u"old"_s, u"refresh"_s, 0);
    server.answer("<html>");
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    ASSERT_EQ(logs.errors().size(), 1);
    EXPECT_TRUE(logs.errors()[0].startsWith(u"Refresh failed: "_s));
    service.reset();
    EXPECT_EQ(end(attempt), "The operation was cancelled");
}

TEST_P(AuthLoginTest, opensTheBrowserWhereAnExpiredFileHasNoRefreshToken) {
    store(u"old"_s, {}, 0);
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    EXPECT_EQ(server.count(), 0U);
    EXPECT_EQ(stored(), "");
}

TEST_P(AuthLoginTest, replacesATornFile) {
    store(R"({"access_token":"to)");
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
}

TEST_P(AuthLoginTest, keepsTokensInMemoryWhereTheFolderCannotBeWritten) {
    // A file stands where a folder should be.
    ASSERT_TRUE(QDir{}.mkpath(QFileInfo{QFileInfo{path()}.path()}.path()));
    QFile file{QFileInfo{path()}.path()};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(validToken(), "new");
    EXPECT_EQ(server.count(), 1U);
}

TEST_P(AuthLoginTest, givesUpOnTheBrowserAfterTwoMinutes) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    pass(120s - 1ms);
    EXPECT_FALSE(attempt->result);
    pass(1ms);
    EXPECT_EQ(end(attempt), "Authentication cancelled");
    // No second round, and the port is free.
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
    EXPECT_FALSE(TcpClient{port}.isConnected());
    EXPECT_EQ(token(), "(none)");
}

TEST_P(AuthLoginTest, startsOverOnceWhereTheServerRefusesTheCode) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(R"({"error":"invalid_grant"})", "400 Bad Request");
    visit("/callback?code=first");
    ASSERT_TRUE(isWaiting(2));
    EXPECT_EQ(logs.errors(), QStringList{u"OAuth token exchange failed, retrying: {\"error\":\"invalid_grant\"}"_s});
    EXPECT_NE(pageItem(u"code_challenge"_s, 0), pageItem(u"code_challenge"_s, 1));
    server.answer(goodTokens);
    visit("/callback?code=second");
    EXPECT_EQ(end(attempt), "ok");
    const QByteArray verifier = server.lastBody().sliced(server.lastBody().lastIndexOf('=') + 1);
    EXPECT_EQ(Pkce::challengeOf(verifier), pageItem(u"code_challenge"_s, 1).toLatin1());
    EXPECT_EQ(token(), "new");
}

TEST_P(AuthLoginTest, tellsTheServersWordsWhereItRefusesTwice) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer("first no", "403 Forbidden");
    visit("/callback?code=first");
    ASSERT_TRUE(isWaiting(2));
    server.answer("second no", "500 Internal Server Error");
    visit("/callback?code=second");
    EXPECT_EQ(end(attempt), "Token exchange failed: second no");
    EXPECT_EQ(server.count(), 2U);
    EXPECT_EQ(desktop.browser.pages.size(), 2U);
    EXPECT_EQ(stored(), "");
    EXPECT_FALSE(isAuthenticated());
}

TEST_P(AuthLoginTest, aRefusalThatIsNoTextHasNoWords) {
    const auto attempt = beginLogin();
    for (const std::size_t round : {1U, 2U}) {
        ASSERT_TRUE(isWaiting(round));
        server.answer("\xFF\xFE", "400 Bad Request");
        visit("/callback?code=c");
    }
    EXPECT_EQ(end(attempt), "Token exchange failed: ");
}

TEST_P(AuthLoginTest, anyOtherStatusThan200IsARefusal) {
    const auto attempt = beginLogin();
    for (const std::size_t round : {1U, 2U}) {
        ASSERT_TRUE(isWaiting(round));
        server.answer(goodTokens, "201 Created");
        visit("/callback?code=c");
    }
    EXPECT_EQ(end(attempt), "Token exchange failed: " + goodTokens.toStdString());
}

TEST_P(AuthLoginTest, passesALostServerOnWithoutASecondRound) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answerWith([](QTcpSocket& socket) { socket.abort(); });
    // Qt asks once more by itself where a kept connection breaks.
    server.answerWith([](QTcpSocket& socket) { socket.abort(); });
    visit("/callback?code=c");
    EXPECT_TRUE(failsInTransport(attempt));
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(AuthLoginTest, passesAnAnswerThatIsNoTokensOnWithoutASecondRound) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(R"({"token":"x"})");
    visit("/callback?code=c");
    EXPECT_NE(end(attempt), "ok");
    EXPECT_FALSE(attempt->result->error().as<AuthError>());
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
    EXPECT_EQ(stored(), "");
}

TEST_P(AuthLoginTest, givesUpOnTheTokenEndpointAfterAMinute) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.hold();
    visit("/callback?code=c");
    ASSERT_TRUE(spinUntil([this] { return server.count() == 1; }));
    pass(60s - 1ms);
    EXPECT_FALSE(attempt->result);
    pass(1ms);
    EXPECT_TRUE(failsInTransport(attempt));
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(AuthLoginTest, cutsAnAnswerWithoutEndOff) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    // Many times what is taken; a connection that is cut off takes no more.
    server.answerWith([](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\n\r\n{\"access_token\":\"");
        for (int i = 0; i < 64; ++i)
            socket.write(QByteArray(128 * 1024, 'a'));
    });
    visit("/callback?code=c");
    EXPECT_TRUE(failsInTransport(attempt));
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(AuthLoginTest, aTokenWithoutExpiryStaysValid) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(R"({"access_token":"forever"})");
    visit("/callback?code=c");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(stored(), R"({"access_token":"forever"})");
    clock.advanceWallAlone(std::chrono::years{100});
    EXPECT_TRUE(isAuthenticated());
    EXPECT_EQ(validToken(), "forever");
    EXPECT_EQ(server.count(), 1U);
}

TEST_P(AuthLoginTest, saysThatThePortIsInUseAfterASecondTry) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost, port));
    EXPECT_EQ(login(), "Token exchange failed: Listener failed: Address already in use");
    settleAll();
    EXPECT_EQ(desktop.browser.pages.size(), 2U);
    EXPECT_EQ(logs.errors(),
              QStringList{u"OAuth token exchange failed, retrying: Listener failed: Address already in use"_s});
}

TEST_P(AuthLoginTest, passesOnThatThereIsNoListenerAtAll) {
    NoListeners none;
    makeService(none);
    EXPECT_EQ(login(), "Too many open files");
    EXPECT_TRUE(logs.errors().isEmpty());
    service.reset();
}

TEST_P(AuthLoginTest, saysThatNoBrowserShowsThePage) {
    desktop.browser.failure = Error{TransportError{u"xdg-open is not installed (package xdg-utils)."_s}};
    EXPECT_EQ(login(), "xdg-open is not installed (package xdg-utils).");
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
    EXPECT_FALSE(TcpClient{port}.isConnected());
}

TEST_P(AuthLoginTest, doesNotWaitForTheBrowserToBeOpen) {
    desktop.browser.gate.close();
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(end(attempt), "ok");
    // What becomes known only now changes nothing.
    desktop.browser.failure = Error{TransportError{u"closed"_s}};
    desktop.browser.gate.open();
    settleAll();
    EXPECT_EQ(token(), "new");
}

TEST_P(AuthLoginTest, refusesAnAddressThatIsNone) {
    EXPECT_EQ(text(complete(service->login(u"nowhere"_s))), "Invalid OAuth URL");
    EXPECT_TRUE(desktop.browser.pages.empty());
}

TEST_P(AuthLoginTest, theSecondOfTwoSignInsFindsThePortInUse) {
    const auto first = beginLogin();
    ASSERT_TRUE(isWaiting());
    EXPECT_EQ(login(), "Token exchange failed: Listener failed: Address already in use");
    EXPECT_FALSE(first->result);
    server.answer(goodTokens);
    visit("/callback?code=c");
    EXPECT_EQ(end(first), "ok");
}

TEST_P(AuthLoginTest, endsAsCancelledWithTheService) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    service.reset();
    EXPECT_FALSE(TcpClient{port}.isConnected());
    EXPECT_EQ(end(attempt), "The operation was cancelled");
}

TEST_P(AuthLoginTest, endsAsCancelledWithTheServiceWhileTheCodeIsRedeemed) {
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.hold();
    visit("/callback?code=c");
    ASSERT_TRUE(spinUntil([this] { return server.count() == 1; }));
    service.reset();
    EXPECT_EQ(end(attempt), "The operation was cancelled");
    EXPECT_EQ(stored(), "");
}

TEST_P(AuthLoginTest, noTokenReachesTheLog) {
    store(u"SECRET-old"_s, u"SECRET-refresh"_s, 0);
    server.answer("{}", "401 Unauthorized");
    const auto attempt = beginLogin();
    ASSERT_TRUE(isWaiting());
    server.answer(R"({"access_token":"SECRET-new","refresh_token":"SECRET-next"})");
    visit("/callback?code=SECRET-code");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(validToken(), "SECRET-new");
    complete(service->invalidateToken());
    complete(service->logout());
    const QString all = (logs.infos() + logs.errors() + logs.debugs()).join(u'\n');
    EXPECT_FALSE(all.contains(u"SECRET"_s)) << all.toStdString();
    EXPECT_FALSE(all.contains(pageItem(u"code_challenge"_s)));
}

INSTANTIATE_TEST_SUITE_P(Placements, AuthLoginTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

}  // namespace corvellan::test

#include "AuthServiceFixture.h"

namespace corvellan::test {

namespace {

/// What comes to the port while a sign-in waits for the browser.
class AuthCallbackTest : public AuthServiceFixture {
protected:
    void SetUp() override {
        attempt = beginLogin();
        ASSERT_TRUE(isWaiting());
        server.answer(goodTokens);
    }
    void TearDown() override { attempt.reset(); }

    /// The sign-in ends well with this code.
    void expectCode(const QByteArray& code) {
        EXPECT_EQ(end(attempt), "ok");
        EXPECT_TRUE(server.lastBody().contains("&code=" + code + "&redirect_uri=")) << server.lastBody().constData();
    }

    std::shared_ptr<Attempt> attempt;
};

const std::string noCode = "No authorization code in callback";

}  // namespace

TEST_P(AuthCallbackTest, aConnectionWithoutACodeGetsThePageAndTheWaitGoesOn) {
    EXPECT_EQ(visit("/favicon.ico"), callbackAnswer);
    EXPECT_FALSE(attempt->result);
    EXPECT_EQ(visit("/callback?code=abc&state=x"), callbackAnswer);
    expectCode("abc");
}

TEST_P(AuthCallbackTest, anErrorOfTheServerIsNotRead) {
    EXPECT_EQ(visit("/callback?error=access_denied"), callbackAnswer);
    EXPECT_EQ(visit("/callback?code"), callbackAnswer);
    EXPECT_FALSE(attempt->result);
    visit("/callback?code=abc");
    expectCode("abc");
}

TEST_P(AuthCallbackTest, anEmptyCodeCompletesTheWait) {
    EXPECT_EQ(visit("/callback?code="), callbackAnswer);
    expectCode("");
}

TEST_P(AuthCallbackTest, aCodeIsDecodedAndGoesOnAsItIs) {
    visit("/anywhere?x=1&code=4%2Fa%3D");
    expectCode("4/a=");
}

TEST_P(AuthCallbackTest, onlyTheFirstCodeCounts) {
    TcpClient late{port};
    visit("/callback?code=first");
    late.send(browserRequest("/callback?code=second"));
    expectCode("first");
    EXPECT_EQ(server.count(), 1U);
}

TEST_P(AuthCallbackTest, takesLessThan64BytesFromAClientThatThenCloses) {
    TcpClient client{port};
    client.send("GET /?code=short HTTP/1.1\r\n\r\n");
    settleAll();
    EXPECT_FALSE(attempt->result);
    client.finish();
    EXPECT_EQ(client.receivedToTheEnd(), callbackAnswer);
    expectCode("short");
}

TEST_P(AuthCallbackTest, aClientThatGoesWithoutAByteEndsTheWait) {
    TcpClient{port}.close();
    EXPECT_EQ(end(attempt), noCode);
    EXPECT_EQ(desktop.browser.pages.size(), 1U);
}

TEST_P(AuthCallbackTest, aClientThatResetsWithoutAByteEndsTheWait) {
    TcpClient{port}.reset();
    EXPECT_EQ(end(attempt), noCode);
}

TEST_P(AuthCallbackTest, bytesThatAreNoTextEndTheWaitWithoutAnAnswer) {
    TcpClient client{port};
    client.send(QByteArray(4096, '\xFF'));
    EXPECT_EQ(client.receivedToTheEnd(), "");
    EXPECT_EQ(end(attempt), noCode);
}

TEST_P(AuthCallbackTest, fourThousandBytesOfJunkTextChangeNothing) {
    TcpClient client{port};
    client.send(QByteArray(4096, 'j'));
    EXPECT_EQ(client.receivedToTheEnd(), callbackAnswer);
    EXPECT_FALSE(attempt->result);
    visit("/callback?code=abc");
    expectCode("abc");
}

TEST_P(AuthCallbackTest, aRequestWithManyHeadersStillGetsItsPage) {
    TcpClient client{port};
    client.send("GET /callback?code=abc HTTP/1.1\r\nCookie: " + QByteArray(20'000, 'c') + "\r\n\r\n");
    EXPECT_EQ(client.receivedToTheEnd(), callbackAnswer);
    EXPECT_EQ(client.error(), 0);
    expectCode("abc");
}

TEST_P(AuthCallbackTest, aSlowClientKeepsNobodyWaiting) {
    TcpClient slow{port};
    slow.send("GET /callback?code=sl");
    settleAll();
    EXPECT_EQ(visit("/callback?code=quick"), callbackAnswer);
    expectCode("quick");
    EXPECT_EQ(slow.receivedToTheEnd(), "");
}

TEST_P(AuthCallbackTest, aSlowClientDoesNotProlongTheWait) {
    TcpClient slow{port};
    for (int i = 0; i < 12; ++i) {
        slow.send("G");
        pass(10s);
    }
    EXPECT_EQ(end(attempt), "Authentication cancelled");
    EXPECT_EQ(slow.receivedToTheEnd(), "");
}

TEST_P(AuthCallbackTest, manyIdleConnectionsKeepNobodyOut) {
    std::vector<TcpClient> idle;
    for (int i = 0; i < 300; ++i) {
        idle.emplace_back(port);
        if (i % 100 == 0)
            settleAll();
    }
    EXPECT_EQ(visit("/callback?code=abc"), callbackAnswer);
    expectCode("abc");
}

INSTANTIATE_TEST_SUITE_P(Placements, AuthCallbackTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

}  // namespace corvellan::test

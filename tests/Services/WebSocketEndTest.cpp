#include "WebSocketServiceFixture.h"

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;

TEST_P(WebSocketServiceTest, disconnectClosesWith1000AndEndsTheReaderNormally) {
    connectRaw();
    Reader reader{coach->receive()};
    complete(coach->disconnect());
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_FALSE(reader.failure());
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
    EXPECT_EQ(log.infos().last(), u"Disconnected"_s);
    drain();
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(WebSocketServiceTest, theSecondDisconnectOnlyLogs) {
    connect();
    complete(coach->disconnect());
    complete(coach->disconnect());
    EXPECT_EQ(log.infos().sliced(1), (QStringList{u"Disconnected"_s, u"Disconnected"_s}));
}

TEST_P(WebSocketServiceTest, disconnectBeforeTheHandshakeGivesTheAttemptUp) {
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    complete(coach->connect(raw.url()));
    Reader reader{coach->receive()};
    auto sending = coach->send({ClientMsg::Ping{}});
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    complete(coach->disconnect());
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_FALSE(reader.failure());
    EXPECT_FALSE(complete(std::move(sending)).has_value());
    EXPECT_TRUE(spinUntil([&] { return raw.isGone(); }));
}

TEST_P(WebSocketServiceTest, aServerThatClosesProperlyEndsTheStreamNormally) {
    connect();
    Reader reader{coach->receive()};
    server.say(pong);
    server.close();
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(reader.values().size(), 1U);
    EXPECT_FALSE(reader.failure());
    EXPECT_EQ(sendFailure(), u"The server closed the connection."_s);
}

TEST_P(WebSocketServiceTest, aCloseFrameWithoutACodeEndsTheStreamNormally) {
    connectRaw();
    Reader reader{coach->receive()};
    raw.write(RawServer::frame(RawServer::closeOpcode, {}));
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_FALSE(reader.failure());
}

TEST_P(WebSocketServiceTest, anyOtherCloseIsAFailureThatTellsCodeAndReason) {
    connect();
    Reader reader{coach->receive()};
    server.close(QWebSocketProtocol::CloseCodeGoingAway, u"restarting"_s);
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(reader.failure(), u"The connection was closed with code 1001: restarting"_s);
}

TEST_P(WebSocketServiceTest, aLossWithoutCloseFrameIsAFailureAndMessagesBeforeItArrive) {
    connectRaw();
    Reader reader{coach->receive()};
    raw.write(RawServer::frame(RawServer::textOpcode, R"({"type":"pong"})"));
    raw.finish();
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(reader.values().size(), 1U);
    EXPECT_EQ(reader.failure(), u"The remote host closed the connection"_s);
}

TEST_P(WebSocketServiceTest, aDeadConnectionFailsSendsWithTheTransportsErrorUntilDisconnect) {
    connectRaw();
    Reader reader{coach->receive()};
    raw.reset();
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(sendFailure(), u"The remote host closed the connection"_s);
    // The stream that ended is still the one of this connection.
    Reader again{coach->receive()};
    ASSERT_TRUE(again.waitForEnd());
    EXPECT_EQ(again.failure(), u"The remote host closed the connection"_s);
    complete(coach->disconnect());
    EXPECT_EQ(sendFailure(), u"WebSocket not connected"_s);
}

TEST_P(WebSocketServiceTest, aRefusedConnectionFailsTheFirstSendAndTheStream) {
    const QUrl nobody = server.url();
    server.stopListening();
    ASSERT_TRUE(complete(coach->connect(nobody)).has_value());
    Reader reader{coach->receive()};
    EXPECT_EQ(sendFailure(), u"The server does not answer (Connection refused)."_s);
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(reader.failure(), u"The server does not answer (Connection refused)."_s);
    EXPECT_EQ(log.infos(), QStringList{u"Connected to "_s + nobody.toString()});
}

TEST_P(WebSocketServiceTest, anUnreachableHostFailsTheStreamAndNotConnect) {
    ASSERT_TRUE(complete(coach->connect(QUrl{u"ws://255.255.255.255:9/"_s})).has_value());
    Reader reader{coach->receive()};
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_TRUE(reader.failure());
}

TEST_P(WebSocketServiceTest, aRefusedUpgradeTellsItsStatus) {
    raw.onRequest = [](RawServer& self) { self.write("HTTP/1.1 401 Unauthorized\r\n\r\n"); };
    ASSERT_TRUE(raw.listen());
    complete(coach->connect(raw.url()));
    Reader reader{coach->receive()};
    EXPECT_EQ(sendFailure(), u"The server refused the connection: 401 (Unauthorized)."_s);
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_EQ(reader.failure(), u"The server refused the connection: 401 (Unauthorized)."_s);
}

TEST_P(WebSocketServiceTest, connectClosesAnAbandonedConnectionWith1000) {
    connectRaw();
    Reader abandoned{coach->receive()};
    connect();
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
    ASSERT_TRUE(abandoned.waitForEnd());
    EXPECT_FALSE(abandoned.failure());

    Reader reader{coach->receive()};
    server.say(pong);
    ASSERT_TRUE(reader.waitFor(1));
    EXPECT_FALSE(server.last().isGone);
    EXPECT_EQ(sendFailure(), u"sent"_s);
}

TEST_P(WebSocketServiceTest, aReaderThatStopsEndsItsStreamAndNotTheConnection) {
    connect();
    {
        Reader reader{coach->receive()};
        settle();
    }
    server.say(pong);
    ASSERT_TRUE(spinUntil([&] { return diagnostics.messagesReceived == 1U; }));
    EXPECT_EQ(sendFailure(), u"sent"_s);
}

TEST_P(WebSocketServiceTest, aServiceThatGoesEndsItsStreamAndItsConnection) {
    connectRaw();
    Reader reader{coach->receive()};
    coach.reset();
    ASSERT_TRUE(reader.waitForEnd());
    EXPECT_FALSE(reader.failure());
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.closePayload(), std::nullopt);
}

TEST_P(WebSocketServiceTest, aServiceThatGoesFailsTheSendThatWaits) {
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    complete(coach->connect(raw.url()));
    auto sending = coach->send({ClientMsg::Ping{}});
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    coach.reset();
    EXPECT_FALSE(complete(std::move(sending)).has_value());
}

}  // namespace
}  // namespace corvellan::test

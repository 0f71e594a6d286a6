#include <QJsonDocument>

#include "WebSocketServiceFixture.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

INSTANTIATE_TEST_SUITE_P(Both, WebSocketServiceTest, testing::Values(Where::inlineOnMain, Where::onWorker),
                         [](const auto& info) {
                             return info.param == Where::inlineOnMain ? std::string{"Inline"} : std::string{"Threaded"};
                         });

TEST_P(WebSocketServiceTest, connectReturnsBeforeTheHandshake) {
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    // Nothing ever answers the request, and still it returns.
    EXPECT_TRUE(complete(coach->connect(raw.url())).has_value());
    EXPECT_EQ(log.infos(), QStringList{u"Connected to "_s + raw.url().toString()});
    EXPECT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    EXPECT_FALSE(raw.isGone());
}

TEST_P(WebSocketServiceTest, theTokenReachesTheServerAndNotTheLog) {
    connect();
    EXPECT_EQ(server.last().request.url().query(), u"token=secret"_s);
    EXPECT_TRUE(server.last().request.rawHeader("Authorization").isEmpty());
    EXPECT_EQ(log.infos(), QStringList{u"Connected to "_s + server.url(u"/ws?token=***"_s).toString()});
}

TEST_P(WebSocketServiceTest, aMessageLeavesAsOneJsonTextFrame) {
    connect();
    EXPECT_TRUE(complete(coach->send({ClientMsg::Transcript{AudioSourceTag::system, u"Gr\u00fc\u00df \U0001F600"_s}}))
                    .has_value());
    ASSERT_TRUE(spinUntil([&] { return server.texts().size() == 1; }));
    const QByteArray expected =
        "{\"type\":\"transcript\",\"source\":\"system\",\"text\":\"Gr\u00fc\u00df \U0001F600\"}";
    EXPECT_EQ(QJsonDocument::fromJson(server.texts().first().toUtf8()), QJsonDocument::fromJson(expected));
    EXPECT_TRUE(server.last().binaries.isEmpty());
}

TEST_P(WebSocketServiceTest, messagesLeaveInTheOrderOfTheCallsEvenBeforeTheHandshake) {
    std::vector<QCoro::Task<std::expected<void, Error>>> sends;
    auto connecting = coach->connect(server.url());
    for (int i = 0; i < 20; ++i)
        sends.push_back(coach->send({ClientMsg::Transcript{AudioSourceTag::mic, QString::number(i)}}));
    complete(std::move(connecting));
    for (auto& sending : sends)
        EXPECT_TRUE(complete(std::move(sending)).has_value());
    ASSERT_TRUE(spinUntil([&] { return server.texts().size() == 20; }));
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(server.texts().at(i).contains(u"\"%1\""_s.arg(i)));
}

TEST_P(WebSocketServiceTest, sendFailsWithNotConnectedBeforeConnectAndAfterDisconnect) {
    for (int round = 0; round < 2; ++round) {
        const auto sent = complete(coach->send({ClientMsg::EndSession{}}));
        ASSERT_FALSE(sent.has_value());
        ASSERT_NE(sent.error().as<WebSocketError>(), nullptr);
        EXPECT_EQ(sent.error().as<WebSocketError>()->kind, WebSocketError::Kind::notConnected);
        EXPECT_EQ(sent.error().errorDescription(), u"WebSocket not connected"_s);
        connect();
        complete(coach->disconnect());
    }
}

TEST_P(WebSocketServiceTest, theErrorsSayWhatTheyMean) {
    EXPECT_EQ((WebSocketError{WebSocketError::Kind::notConnected}.errorDescription()), u"WebSocket not connected"_s);
    EXPECT_EQ((WebSocketError{WebSocketError::Kind::encodingFailed}.errorDescription()), u"Failed to encode message"_s);
}

TEST_P(WebSocketServiceTest, receiveFailsWithNotConnectedBeforeConnectAndAfterDisconnect) {
    for (int round = 0; round < 2; ++round) {
        Reader reader{coach->receive()};
        ASSERT_TRUE(reader.waitForEnd());
        EXPECT_EQ(reader.failure(), u"WebSocket not connected"_s);
        connect();
        complete(coach->disconnect());
    }
}

TEST_P(WebSocketServiceTest, everyReceiveGivesTheStreamOfThisConnection) {
    connect();
    server.say(pong);
    server.say(u"{\"type\":\"error\",\"message\":\"x\"}"_s);
    auto first =
        complete([](AsyncStream<ReceivedServerMsg> stream) -> QCoro::Task<AsyncStream<ReceivedServerMsg>::Next> {
            co_return co_await stream.next();
        }(coach->receive()));
    ASSERT_TRUE(first.has_value() && first->has_value());
    EXPECT_EQ((**first).message, ServerMsg{ServerMsg::Pong{}});
    Reader reader{coach->receive()};
    ASSERT_TRUE(reader.waitFor(1));
    EXPECT_EQ(reader.values().front().message, ServerMsg{ServerMsg::Failure{u"x"_s}});
}

TEST_P(WebSocketServiceTest, messagesThatCameBeforeTheReaderAreKept) {
    connect();
    for (int i = 0; i < 100; ++i)
        server.say(u"{\"type\":\"counterpart_token\",\"delta\":\"%1\"}"_s.arg(i));
    ASSERT_TRUE(spinUntil([&] { return diagnostics.messagesReceived == 100U; }));
    Reader reader{coach->receive()};
    ASSERT_TRUE(reader.waitFor(100));
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(reader.values().at(i).message, ServerMsg{ServerMsg::CounterpartToken{QString::number(i)}});
}

TEST_P(WebSocketServiceTest, aBinaryFrameIsDeliveredLikeATextFrame) {
    connect();
    Reader reader{coach->receive()};
    server.sayBinary(R"({"type":"error","message":"as bytes"})");
    ASSERT_TRUE(reader.waitFor(1));
    EXPECT_EQ(reader.values().front().message, ServerMsg{ServerMsg::Failure{u"as bytes"_s}});
}

TEST_P(WebSocketServiceTest, aFrameThatDoesNotDecodeIsLoggedAndLostAndLaterOnesArrive) {
    connect();
    Reader reader{coach->receive()};
    server.say(u"{\"type\":\"brand_new\"}"_s);
    server.say(u"no json"_s);
    server.sayBinary("\xff\xfe");
    server.say(pong);
    ASSERT_TRUE(reader.waitFor(1));
    EXPECT_EQ(reader.values().front().message, ServerMsg{ServerMsg::Pong{}});
    EXPECT_EQ(diagnostics.messagesReceived, 1U);
    EXPECT_EQ(diagnostics.messagesDropped, 3U);
    ASSERT_EQ(log.errors().size(), 3);
    const auto reason = ServerMsg::decode(R"({"type":"brand_new"})").error().errorDescription();
    EXPECT_EQ(log.errors().first(), u"Decode error: "_s + reason);
    EXPECT_FALSE(reader.hasEnded());
    EXPECT_EQ(sendFailure(), u"sent"_s);
}

TEST_P(WebSocketServiceTest, aMessageKnowsWhenItsFrameArrived) {
    connect();
    clock.advance(5s);
    const auto arrival = clock.now();
    server.say(pong);
    ASSERT_TRUE(spinUntil([&] { return diagnostics.messagesReceived == 1U; }));
    clock.advance(5s);
    Reader reader{coach->receive()};
    ASSERT_TRUE(reader.waitFor(1));
    EXPECT_EQ(reader.values().front().arrivedAt, arrival);
}

TEST_P(WebSocketServiceTest, aMessageThatArrivesWithTheHandshakeIsDelivered) {
    raw.onRequest = [](RawServer& self) {
        self.write(self.upgradeReply() + RawServer::frame(RawServer::textOpcode, R"({"type":"pong"})"));
    };
    ASSERT_TRUE(raw.listen());
    complete(coach->connect(raw.url()));
    Reader reader{coach->receive()};
    EXPECT_TRUE(reader.waitFor(1));
}

}  // namespace
}  // namespace corvellan::test

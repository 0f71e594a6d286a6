#include "Services/WebSocketService.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "Support/LogCapture.h"
#include "Support/LoopbackServer.h"
#include "Support/RawServer.h"
#include "Support/StreamReader.h"
#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

enum class Where { inlineOnMain, onWorker };

using Reader = StreamReader<ReceivedServerMsg>;

class WebSocketServiceTest : public testing::TestWithParam<Where> {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.listen());
        if (GetParam() == Where::onWorker)
            worker = std::make_unique<WorkerThread>("live");
        coach = std::make_unique<WebSocketService>(executor(), clock, diagnostics);
    }

    void TearDown() override {
        coach.reset();
        worker.reset();
        settle();
    }

    Executor& executor() { return worker ? worker->executor() : mainExecutor(); }

    /// Returns when everything that was handed to the service's executor so far has run.
    void drain() {
        settle();
        complete(executor().call([] {}));
        settle();
    }

    /// As `settleAfter`, for both threads.
    void drainAfter(std::chrono::nanoseconds step) {
        const auto end = clock.now() + step;
        drain();
        while (const auto next = clock.nextDeadline()) {
            if (*next > end)
                break;
            clock.advance(*next - clock.now());
            drain();
        }
        clock.advance(end - clock.now());
        drain();
    }

    /// Connected, with the handshake done.
    void connect() {
        const auto before = server.count();
        ASSERT_TRUE(complete(coach->connect(server.url(u"/ws?token=secret"_s))).has_value());
        ASSERT_TRUE(spinUntil([&] { return server.count() == before + 1; }));
    }

    /// Connected to `raw`, with the handshake done.
    void connectRaw() {
        ASSERT_TRUE(raw.listen());
        ASSERT_TRUE(complete(coach->connect(raw.url())).has_value());
        ASSERT_TRUE(complete(coach->send({ClientMsg::Ping{}})).has_value());
    }

    /// How a send ends now; "sent" when it does not fail.
    QString sendFailure() {
        const auto sent = complete(coach->send({ClientMsg::Ping{}}));
        return sent ? u"sent"_s : sent.error().errorDescription();
    }

    static inline const QString pong = u"{\"type\":\"pong\"}"_s;

    ManualClock clock;
    LogCapture log{u"WebSocket"_s};
    LoopbackServer server;
    RawServer raw;
    Diagnostics diagnostics;
    std::unique_ptr<WorkerThread> worker;
    std::unique_ptr<WebSocketService> coach;
};

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

TEST_P(WebSocketServiceTest, pingsEvery20SecondsAsControlFrames) {
    connectRaw();
    drainAfter(20s - 1ns);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    drainAfter(1ns);
    EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 1; }));
    for (int expected = 2; expected <= 4; ++expected) {
        drainAfter(20s);
        EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == expected; }));
    }
    EXPECT_EQ(raw.count(RawServer::textOpcode), 1);  // The one of `connectRaw`.
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(WebSocketServiceTest, aFailedPingIsLoggedAndEndsNothing) {
    raw.answersPings = false;
    connectRaw();
    Reader reader{coach->receive()};
    drainAfter(20s);
    ASSERT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 1; }));
    drainAfter(60s - 1ns);
    EXPECT_TRUE(log.errors().isEmpty());
    drainAfter(1ns);
    EXPECT_EQ(log.errors(), QStringList{u"Ping failed: The connection timed out."_s});
    EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 4; }));
    EXPECT_FALSE(reader.hasEnded());
    EXPECT_EQ(sendFailure(), u"sent"_s);
}

TEST_P(WebSocketServiceTest, pingsGoOnFailingOnADeadConnection) {
    connectRaw();
    Reader reader{coach->receive()};
    raw.reset();
    ASSERT_TRUE(reader.waitForEnd());
    drainAfter(40s);
    EXPECT_EQ(log.errors(), (QStringList{u"Ping failed: The remote host closed the connection"_s,
                                         u"Ping failed: The remote host closed the connection"_s}));
}

TEST_P(WebSocketServiceTest, pingsEndWithDisconnect) {
    connectRaw();
    complete(coach->disconnect());
    drainAfter(1h);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    EXPECT_TRUE(log.errors().isEmpty());
    EXPECT_FALSE(clock.nextDeadline());
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

TEST_P(WebSocketServiceTest, aReplacedConnectionIsPingedNoMore) {
    connectRaw();
    drainAfter(10s);
    connect();
    drainAfter(19s);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    EXPECT_TRUE(log.errors().isEmpty());
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

#include "ClientSocketFixture.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

// Sending.

TEST_F(ClientSocketTest, whatIsSentBeforeTheHandshakeLeavesAfterItInOrder) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    std::vector<QCoro::Task<ClientSocket::Result>> sends;
    for (int i = 0; i < 5; ++i)
        sends.push_back(socket->send(QString::number(i)));
    EXPECT_FALSE(socket->isOpen());
    for (auto& sending : sends)
        EXPECT_TRUE(complete(std::move(sending)).has_value());
    ASSERT_TRUE(spinUntil([&] { return server.texts().size() == 5; }));
    EXPECT_EQ(server.texts(), (QStringList{u"0"_s, u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
}

TEST_F(ClientSocketTest, aSendThatTheSystemTakesAtOnceDoesNotWait) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen(); }));
    const auto sending = socket->send(u"now"_s);
    EXPECT_TRUE(sending.isReady());
}

TEST_F(ClientSocketTest, whatWaitsForTheHandshakeFailsWithIt) {
    ASSERT_TRUE(server.listen());
    const QUrl nobody = server.url();
    server.stopListening();
    open(nobody);
    auto first = socket->send(u"a"_s);
    auto second = socket->send(u"b"_s);
    auto ping = socket->ping();
    for (auto* waiting : {&first, &second, &ping}) {
        const auto result = complete(std::move(*waiting));
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error().errorDescription(), u"The server does not answer (Connection refused)."_s);
    }
}

TEST_F(ClientSocketTest, sendsInFlightCompleteEachWhenItsBytesAreWritten) {
    openRaw();
    raw.stopReading();
    QStringList completed;
    const auto send = [&](QString name, QString text) -> QCoro::Task<void> {
        const auto sent = co_await socket->send(std::move(text));
        if (sent)
            completed.append(name);
    };
    constexpr qsizetype more = 12 * 1024 * 1024;  // Than the system takes without a reader.
    auto first = send(u"first"_s, u"small"_s);
    auto second = send(u"second"_s, QString(more, u'x'));
    auto third = send(u"third"_s, QString(more, u'y'));
    auto fourth = send(u"fourth"_s, u"small"_s);
    settle();
    EXPECT_EQ(completed, QStringList{u"first"_s});

    raw.resumeReading();
    complete(std::move(fourth));
    EXPECT_EQ(completed, (QStringList{u"first"_s, u"second"_s, u"third"_s, u"fourth"_s}));
    EXPECT_TRUE(spinUntil([&] { return raw.bytesCounted() > 2 * more; }));
}

TEST_F(ClientSocketTest, sendsInFlightFailWhenTheConnectionIsLost) {
    openRaw();
    raw.stopReading();
    auto first = socket->send(QString(12 * 1024 * 1024, u'x'));
    auto second = socket->send(u"end"_s);
    raw.reset();
    EXPECT_FALSE(complete(std::move(first)).has_value());
    EXPECT_FALSE(complete(std::move(second)).has_value());
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, writingThatStandsStillFor60SecondsIsAFailure) {
    openRaw();
    raw.stopReading();
    auto first = socket->send(QString(12 * 1024 * 1024, u'x'));
    settleAfter(clock, 60s - 1ns);
    EXPECT_FALSE(seen.end);
    // What is queued behind it is no progress. The system may still take some bytes late, which is.
    for (int i = 0; i < 12 && !seen.end; ++i) {
        auto more = socket->send(u"more"_s);
        settleAfter(clock, 10s);
    }
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.reason(), "The connection timed out.");
    EXPECT_FALSE(complete(std::move(first)).has_value());
}

TEST_F(ClientSocketTest, anyTextArrivesAsItWasSent) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    const QStringList texts{u""_s, u"\u00e4\U0001F600\n"_s, QString(600'000, u'\u20ac')};
    for (const QString& text : texts)
        EXPECT_TRUE(complete(socket->send(text)).has_value());
    ASSERT_TRUE(spinUntil([&] { return server.texts().size() == 3; }));
    EXPECT_TRUE(server.texts() == texts);
}

// Receiving.

TEST_F(ClientSocketTest, aMessageInPiecesIsPutTogether) {
    openRaw();
    raw.write(QByteArray{"\x01\x04\xf0\x9f\x98\x80", 6});
    raw.write(RawServer::frame(RawServer::pingOpcode, "between"));
    raw.write(QByteArray{"\x00\x00", 2});
    raw.write(QByteArray{"\x80\x01!", 3});
    ASSERT_TRUE(spinUntil([&] { return seen.texts.size() == 1 || seen.end; }));
    EXPECT_EQ(seen.texts, QStringList{u"\U0001F600!"_s}) << seen.reason();
    EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pongOpcode) == 1; }));
}

TEST_F(ClientSocketTest, framesAreKeptUntilSomeoneReads) {
    ASSERT_TRUE(server.listen());
    const auto unread = ClientSocket::open(mainExecutor(), clock, server.url());
    ASSERT_TRUE(spinUntil([&] { return unread->isOpen() && server.count() == 1; }));
    server.say(u"one"_s);
    server.sayBinary("two");
    server.close();
    ASSERT_TRUE(spinUntil([&] { return !unread->isOpen(); }));
    settle();
    unread->read({.text = [&](const QString& text) { seen.texts.append(text); },
                  .binary = [&](const QByteArray& bytes) { seen.binaries.append(bytes); },
                  .ended = [&](const SocketEnd& end) { seen.end = end; }});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.texts, QStringList{u"one"_s});
    EXPECT_EQ(seen.binaries, QList<QByteArray>{"two"});
    EXPECT_TRUE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, aMessageOf16MebibytesIsTaken) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen() && server.count() == 1; }));
    server.sayBinary(QByteArray(16 * 1024 * 1024, 'x'));
    ASSERT_TRUE(spinUntil([&] { return seen.binaries.size() == 1; }));
    EXPECT_EQ(seen.binaries.first().size(), 16 * 1024 * 1024);
}

TEST_F(ClientSocketTest, aSingleFrameOf16MebibytesIsTaken) {
    openRaw();
    QByteArray frame{"\x82\x7f\x00\x00\x00\x00\x01\x00\x00\x00", 10};
    raw.write(frame + QByteArray(16 * 1024 * 1024, 'x'));
    ASSERT_TRUE(spinUntil([&] { return seen.binaries.size() == 1 || seen.end; }));
    EXPECT_FALSE(seen.end) << seen.reason();
}

TEST_F(ClientSocketTest, aLargerMessageEndsTheConnection) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen() && server.count() == 1; }));
    server.sayBinary(QByteArray(16 * 1024 * 1024 + 1, 'x'));
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.reason().starts_with("The connection was closed with code 1009")) << seen.reason();
    EXPECT_TRUE(seen.binaries.isEmpty());
}

TEST_F(ClientSocketTest, aFrameThatOnlyClaimsToBeHugeEndsTheConnection) {
    openRaw();
    raw.write(QByteArray{"\x82\x7f\x00\x00\x00\xff\x00\x00\x00\x00", 10});
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.reason().starts_with("The connection was closed with code 1009")) << seen.reason();
}

// Pings.

TEST_F(ClientSocketTest, aPingIsAControlFrameAndCompletesWithItsPong) {
    openRaw();
    EXPECT_TRUE(complete(socket->ping()).has_value());
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 1);
    EXPECT_EQ(raw.count(RawServer::textOpcode), 0);
}

TEST_F(ClientSocketTest, aPongThatNobodyAskedForMeansNothing) {
    raw.answersPings = false;
    openRaw();
    auto ping = socket->ping();
    raw.write(RawServer::frame(RawServer::pongOpcode, "other"));
    raw.write(RawServer::frame(RawServer::textOpcode, "behind"));
    ASSERT_TRUE(spinUntil([&] { return seen.texts.size() == 1; }));
    EXPECT_FALSE(ping.isReady());
    raw.write(RawServer::frame(RawServer::pongOpcode, raw.frames().last().payload));
    EXPECT_TRUE(complete(std::move(ping)).has_value());
}

TEST_F(ClientSocketTest, aPingWithoutPongFailsAfter60SecondsAndEndsNothing) {
    raw.answersPings = false;
    openRaw();
    auto ping = socket->ping();
    settleAfter(clock, 60s - 1ns);
    EXPECT_FALSE(ping.isReady());
    settleAfter(clock, 1ns);
    const auto result = complete(std::move(ping));
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().errorDescription(), u"The connection timed out."_s);
    EXPECT_FALSE(seen.end);
    EXPECT_TRUE(complete(socket->send(u"still open"_s)).has_value());
}

// Closing.

TEST_F(ClientSocketTest, closeSendsCode1000WithoutReason) {
    openRaw();
    socket->close();
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    ASSERT_EQ(raw.count(RawServer::closeOpcode), 1);
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
    ASSERT_TRUE(waitForEnd());
    EXPECT_NE(seen.end->error.as<CancelledError>(), nullptr);
}

TEST_F(ClientSocketTest, whatWasSentBeforeCloseArrives) {
    ASSERT_TRUE(server.listen());
    open(server.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen(); }));
    const auto sending = socket->send(QString(100'000, u'x'));
    socket->close();
    ASSERT_TRUE(spinUntil([&] { return server.count() == 1 && server.last().isGone; }));
    EXPECT_EQ(server.texts().size(), 1);
}

TEST_F(ClientSocketTest, closeBeforeTheHandshakeGivesUp) {
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    auto waiting = socket->send(u"never"_s);
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    socket->close();
    const auto result = complete(std::move(waiting));
    ASSERT_FALSE(result.has_value());
    EXPECT_NE(result.error().as<CancelledError>(), nullptr);
    EXPECT_TRUE(spinUntil([&] { return raw.isGone(); }));
}

TEST_F(ClientSocketTest, whatIsUnderWayFailsAsCancelled) {
    raw.answersPings = false;
    openRaw();
    auto ping = socket->ping();
    socket->close();
    const auto result = complete(std::move(ping));
    ASSERT_FALSE(result.has_value());
    EXPECT_NE(result.error().as<CancelledError>(), nullptr);
}

TEST_F(ClientSocketTest, aSocketThatGoesReportsNothingAndSendsNoCloseFrame) {
    openRaw();
    socket.reset();
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    settle();
    EXPECT_EQ(raw.count(RawServer::closeOpcode), 0);
    EXPECT_EQ(seen.ends, 0);
}

}  // namespace
}  // namespace corvellan::test

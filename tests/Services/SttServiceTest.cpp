#include "SttServiceFixture.h"
#include "Support/RawServer.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

INSTANTIATE_TEST_SUITE_P(Both, SttServiceTest, testing::Values(Where::inlineOnMain, Where::onWorker),
                         [](const auto& info) {
                             return info.param == Where::inlineOnMain ? std::string{"Inline"} : std::string{"Threaded"};
                         });

TEST_P(SttServiceTest, connectSendsTheSessionUpdateAndNothingElse) {
    connect();
    drain();
    ASSERT_EQ(provider.texts().size(), 1);
    const QJsonObject update = QJsonDocument::fromJson(provider.texts().first().toUtf8()).object();
    EXPECT_EQ(update["type"_L1].toString(), u"transcription_session.update"_s);
    EXPECT_TRUE(provider.texts().first().contains(u"\"threshold\":0.6,"_s));
    EXPECT_TRUE(provider.last().binaries.isEmpty());
}

TEST_P(SttServiceTest, theTokenTravelsInAHeaderAndNeverInTheUrl) {
    connect();
    const QNetworkRequest& request = provider.last().request;
    EXPECT_EQ(request.rawHeader("Authorization"), "Bearer ek_mic");
    EXPECT_EQ(request.rawHeader("OpenAI-Beta"), "realtime=v1");
    EXPECT_EQ(request.url().path(), u"/v1/realtime"_s);
    EXPECT_EQ(request.url().query(), u"intent=transcription"_s);
    for (const QString& line : log.infos())
        EXPECT_FALSE(line.contains(u"ek_mic"_s));
}

TEST_P(SttServiceTest, withoutAnAddressTheDefaultOneIsUsed) {
    complete(stt->connect(u"t"_s, std::nullopt));
    ASSERT_TRUE(spinUntil([&] { return provider.count() == 1; }));
    EXPECT_EQ(provider.last().request.url().path(), u"/default"_s);
}

TEST_P(SttServiceTest, connectLogsTheAddress) {
    connect();
    const QString address = provider.url(u"/v1/realtime?intent=transcription"_s).toString();
    EXPECT_EQ(log.infos(), QStringList{u"STT connected to "_s + address});
}

TEST_P(SttServiceTest, aTokenInTheAddressIsMaskedInTheLog) {
    complete(stt->connect(u"t"_s, provider.url(u"/v1/realtime?intent=transcription&token=secret"_s).toString()));
    const QString masked = provider.url(u"/v1/realtime?intent=transcription&token=***"_s).toString();
    EXPECT_EQ(log.infos(), QStringList{u"STT connected to "_s + masked});
}

TEST_P(SttServiceTest, anAddressThatIsNoUrlIsLoggedAndNothingElseHappens) {
    const auto reader = listen();
    complete(stt->connect(u"t"_s, u"not a url"_s));
    EXPECT_EQ(log.errors(), QStringList{u"Invalid Realtime URL: not a url"_s});
    EXPECT_TRUE(log.infos().isEmpty());
    send(audio(10ms));
    EXPECT_EQ(side.bytesLost, 480U);
    settle();
    EXPECT_TRUE(reader->values().empty());
    EXPECT_FALSE(reader->hasEnded());
}

TEST_P(SttServiceTest, anEmptyAddressIsInvalidToo) {
    complete(stt->connect(u"t"_s, QString{}));
    EXPECT_EQ(log.errors(), QStringList{u"Invalid Realtime URL: "_s});
}

TEST_P(SttServiceTest, aTokenWithALineBreakCannotAddHeaders) {
    const auto reader = listen();
    complete(stt->connect(u"a\r\nX-Evil: 1"_s, provider.url().toString()));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values().front(), failure(u"A header of the request holds a line break."_s));
    EXPECT_EQ(provider.count(), 0U);
}

TEST_P(SttServiceTest, audioBeforeConnectIsDroppedAndNotKept) {
    clock.advance(1s);
    send(audio(10ms, 1));
    connect();
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 2; }));
    EXPECT_EQ(appended(provider.texts()), QList{audio(10ms, 2)});
    EXPECT_EQ(side.bytesLost, 480U);
    EXPECT_EQ(side.bytesAccepted, 480U);
}

TEST_P(SttServiceTest, audioAfterDisconnectIsDroppedAndNotKept) {
    connect();
    complete(stt->disconnect());
    send(audio(10ms, 1));
    connect();
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 2; }));
    EXPECT_EQ(appended(provider.texts()), QList{audio(10ms, 2)});
}

TEST_P(SttServiceTest, chunks40MsApartLeaveInBatchesOfThreeAfterAFirstOne) {
    connect();
    for (char i = 0; i < 7; ++i) {
        send(audio(40ms, i));
        clock.advance(40ms);
    }
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 4; }));
    const QList expected{audio(40ms, 0), audio(40ms, 1) + audio(40ms, 2) + audio(40ms, 3),
                         audio(40ms, 4) + audio(40ms, 5) + audio(40ms, 6)};
    EXPECT_EQ(appended(provider.texts()), expected);
}

TEST_P(SttServiceTest, exactly100MsSendAndJustBelowDoNot) {
    connect();
    send(audio(10ms, 0));
    clock.advance(100ms - 1ns);
    send(audio(10ms, 1));
    drain();
    EXPECT_EQ(side.framesSent, 1U);
    clock.advance(1ns);
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 3; }));
    EXPECT_EQ(appended(provider.texts()).last(), audio(10ms, 1) + audio(10ms, 2));
}

TEST_P(SttServiceTest, theFirstChunkWaitsWithin100MsOfConstruction) {
    complete(stt->connect(u"t"_s, std::nullopt));
    clock.advance(99ms);
    send(audio(10ms, 1));
    EXPECT_EQ(side.framesSent, 0U);
    clock.advance(1ms);
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 2; }));
    EXPECT_EQ(appended(provider.texts()), QList{audio(10ms, 1) + audio(10ms, 2)});
}

TEST_P(SttServiceTest, keepsPendingAudioUntilTheNextChunk) {
    connect();
    send(audio(10ms, 0));
    send(audio(10ms, 1));
    settleAfter(clock, 1h);
    drain();
    EXPECT_EQ(side.framesSent, 1U);
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 3; }));
    EXPECT_EQ(appended(provider.texts()).last(), audio(10ms, 1) + audio(10ms, 2));
}

TEST_P(SttServiceTest, disconnectSendsPendingAudioAndThenClosesWith1000) {
    RawServer raw;
    connectRaw(raw);
    send(audio(10ms, 0));
    send(audio(10ms, 1));
    complete(stt->disconnect());
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(appended(raw.texts()), (QList{audio(10ms, 0), audio(10ms, 1)}));
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
    EXPECT_EQ(log.infos().last(), u"STT disconnected"_s);
}

TEST_P(SttServiceTest, aLastBatchThatCantLeaveHoldsTheDisconnectUpForASecond) {
    RawServer raw;
    ASSERT_TRUE(raw.listen());
    complete(stt->connect(u"t"_s, raw.url().toString()));
    clock.advance(1s);
    raw.stopReading();
    // More than the system's buffers take.
    auto sending = stt->sendAudio({.pcm = QByteArray(24 * 1024 * 1024, '\1')});
    send(audio(10ms));
    const auto reader = listen();

    auto disconnecting = stt->disconnect();
    drain();
    clock.advance(999ms);
    drain();
    EXPECT_FALSE(disconnecting.isReady());
    clock.advance(1ms);
    complete(std::move(disconnecting));

    EXPECT_TRUE(reader->waitForEnd());
    EXPECT_EQ(log.infos().last(), u"STT disconnected"_s);
    complete(std::move(sending));
    EXPECT_EQ(side.framesSent, 0U);
    EXPECT_EQ(side.bytesLost, 24U * 1024 * 1024 + 480);
}

TEST_P(SttServiceTest, disconnectWithNothingPendingOnlyCloses) {
    RawServer raw;
    connectRaw(raw);
    complete(stt->disconnect());
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.texts().size(), 1);
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
}

TEST_P(SttServiceTest, disconnectEndsTheEventStreamWithoutAnError) {
    connect();
    const auto reader = listen();
    complete(stt->disconnect());
    ASSERT_TRUE(reader->waitForEnd());
    EXPECT_TRUE(reader->values().empty());
    EXPECT_FALSE(reader->failure());
}

TEST_P(SttServiceTest, theReadThatFailsAfterDisconnectIsLoggedAndYieldsNoEvent) {
    connect();
    const auto before = listen();
    complete(stt->disconnect());
    const auto after = listen();
    ASSERT_TRUE(spinUntil([&] { return log.errors().size() == 1; }));
    EXPECT_TRUE(log.errors().first().startsWith(u"STT readLoop failure: "_s));
    drain();
    settle();
    EXPECT_TRUE(before->values().empty());
    EXPECT_TRUE(after->values().empty());
}

TEST_P(SttServiceTest, disconnectIsHarmlessWhenIdle) {
    complete(stt->disconnect());
    complete(stt->disconnect());
    EXPECT_EQ(log.infos(), (QStringList{u"STT disconnected"_s, u"STT disconnected"_s}));
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(SttServiceTest, isReusableAfterDisconnect) {
    connect();
    complete(stt->disconnect());
    connect();
    ASSERT_EQ(provider.count(), 2U);
    EXPECT_EQ(eventsOf({completed(u"again"_s)}), std::vector{final(u"again"_s)});
}

TEST_P(SttServiceTest, connectClosesTheConnectionThatItReplaces) {
    RawServer raw;
    connectRaw(raw);
    connect();
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.closePayload(), RawServer::normalClose);
    EXPECT_EQ(eventsOf({}), std::vector<SttEvent>{});
}

TEST_P(SttServiceTest, aReplacedConnectionIsLoggedAndYieldsNoEvent) {
    connect();
    const auto reader = listen();
    connect();
    ASSERT_TRUE(spinUntil([&] { return log.errors().size() == 1; }));
    provider.say(completed(u"from the new one"_s));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{final(u"from the new one"_s)});
}

TEST_P(SttServiceTest, aLostConnectionIsLoggedAndIsAnEvent) {
    RawServer raw;
    ASSERT_TRUE(raw.listen());
    complete(stt->connect(u"t"_s, raw.url().toString()));
    const auto reader = listen();
    raw.reset();
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The remote host closed the connection"_s)});
    EXPECT_EQ(log.errors(), QStringList{u"STT readLoop failure: The remote host closed the connection"_s});
    EXPECT_FALSE(reader->hasEnded());
}

TEST_P(SttServiceTest, aProviderThatClosesProperlyFailsTheReadToo) {
    connect();
    const auto reader = listen();
    provider.close();
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The server closed the connection."_s)});
}

TEST_P(SttServiceTest, theProvidersReasonForClosingIsTold) {
    connect();
    const auto reader = listen();
    provider.close(QWebSocketProtocol::CloseCodePolicyViolated, u"token expired"_s);
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The connection was closed with code 1008: token expired"_s)});
}

TEST_P(SttServiceTest, audioAfterALostConnectionIsLostUntilTheNextConnect) {
    connect();
    const auto reader = listen();
    provider.close();
    ASSERT_TRUE(reader->waitFor(1));
    send(audio(10ms, 1));
    EXPECT_EQ(side.bytesLost, 480U);
    EXPECT_EQ(side.bytesAccepted, 480U);
    EXPECT_EQ(side.framesSent, 0U);
    complete(stt->disconnect());
    ASSERT_TRUE(reader->waitForEnd());

    clock.advance(1s);
    connect();
    send(audio(10ms, 2));
    ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 2; }));
    EXPECT_EQ(appended(provider.texts()), QList{audio(10ms, 2)});
}

TEST_P(SttServiceTest, aRefusedConnectionIsLoggedAndIsAnEvent) {
    const QUrl nobody = provider.url();
    provider.stopListening();
    const auto reader = listen();
    complete(stt->connect(u"t"_s, nobody.toString()));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The server does not answer (Connection refused)."_s)});
    EXPECT_EQ(log.infos(), QStringList{u"STT connected to "_s + nobody.toString()});
    EXPECT_EQ(log.errors(), QStringList{u"STT readLoop failure: The server does not answer (Connection refused)."_s});
}

TEST_P(SttServiceTest, aRefusedTokenIsLoggedAndIsAnEvent) {
    RawServer raw;
    raw.onRequest = [](RawServer& server) { server.write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n"); };
    ASSERT_TRUE(raw.listen());
    const auto reader = listen();
    complete(stt->connect(u"t"_s, raw.url().toString()));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The server refused the connection: 401 (Unauthorized)."_s)});
}

TEST_P(SttServiceTest, aHandshakeThatHangsFailsAfter60Seconds) {
    RawServer raw;
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    const auto reader = listen();
    auto connecting = stt->connect(u"t"_s, raw.url().toString());
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    clock.advance(60s - 1ms);
    drain();
    settle();
    EXPECT_TRUE(reader->values().empty());
    clock.advance(1ms);
    complete(std::move(connecting));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"The connection timed out."_s)});
}

TEST_P(SttServiceTest, framesThatComeWithTheHandshakeAreRead) {
    RawServer raw;
    const QByteArray frame = R"({"type":"error","error":{"message":"early"}})";
    raw.onRequest = [&](RawServer& server) {
        server.write(server.upgradeReply() + RawServer::frame(RawServer::textOpcode, frame));
    };
    ASSERT_TRUE(raw.listen());
    const auto reader = listen();
    complete(stt->connect(u"t"_s, raw.url().toString()));
    ASSERT_TRUE(reader->waitFor(1));
    EXPECT_EQ(reader->values(), std::vector{failure(u"early"_s)});
}

TEST_P(SttServiceTest, countsWhatItTakesAndWhatLeaves) {
    connect();
    send(audio(10ms));
    send(audio(10ms));
    EXPECT_EQ(side.bytesAccepted, 960U);
    EXPECT_EQ(side.bytesSent, 480U);
    EXPECT_EQ(side.framesSent, 1U);
    complete(stt->disconnect());
    EXPECT_EQ(side.bytesSent, 960U);
    EXPECT_EQ(side.framesSent, 2U);
    EXPECT_EQ(side.bytesLost, 0U);
}

TEST_P(SttServiceTest, measuresTheChunkThatMadeABatchLeave) {
    connect();
    const auto delivered = clock.now();
    clock.advance(3ms);
    complete(stt->sendAudio({.pcm = audio(10ms), .deliveredAt = delivered}));
    complete(stt->sendAudio({.pcm = audio(10ms), .deliveredAt = delivered}));  // Waits: not measured.
    clock.advance(100ms);
    complete(stt->sendAudio({.pcm = audio(10ms)}));  // Nobody knows when it was delivered.
    const auto figures = side.overhead.figures();
    EXPECT_EQ(figures.count, 1U);
    EXPECT_NEAR(figures.maxMs, 3.0, 0.1);
}

TEST_P(SttServiceTest, aServiceThatGoesEndsItsStreamAndItsConnection) {
    RawServer raw;
    connectRaw(raw);
    const auto reader = listen();
    stt.reset();
    ASSERT_TRUE(reader->waitForEnd());
    ASSERT_TRUE(spinUntil([&] { return raw.isGone(); }));
    EXPECT_EQ(raw.closePayload(), std::nullopt);
}

TEST_P(SttServiceTest, aServiceThatGoesWhileItConnectsLeavesNothingBehind) {
    RawServer raw;
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    auto connecting = stt->connect(u"t"_s, raw.url().toString());
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    stt.reset();
    complete(std::move(connecting));
    EXPECT_TRUE(spinUntil([&] { return raw.isGone(); }));
}

TEST_P(SttServiceTest, longAudioIsNeitherLostNorReordered) {
    connect();
    QByteArray spoken;
    std::vector<QCoro::Task<void>> sends;
    for (int i = 0; i < 500; ++i) {
        const QByteArray chunk = audio(20ms, static_cast<char>(i));
        spoken += chunk;
        sends.push_back(stt->sendAudio({.pcm = chunk}));
        clock.advance(20ms);
    }
    for (auto& sending : sends)
        complete(std::move(sending));
    complete(stt->disconnect());
    ASSERT_TRUE(spinUntil([&] { return provider.last().isGone; }));
    EXPECT_EQ(appended(provider.texts()).join(), spoken);
    EXPECT_EQ(side.bytesSent, static_cast<std::uint64_t>(spoken.size()));
}

}  // namespace
}  // namespace corvellan::test

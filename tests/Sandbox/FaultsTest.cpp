#include "GeneratedAudio.h"
#include "SandboxFixture.h"

namespace corvellan::test {

namespace {

class FaultsTest : public SandboxFixture {
protected:
    void startWith(const QStringList& faults) {
        sandbox::SandboxOptions options;
        for (const auto& fault : faults)
            ASSERT_TRUE(options.faults.add(fault));
        start(std::move(options));
    }
};

constexpr const char* plainStart = R"({"type":"start_session"})";
constexpr const char* said = R"({"type":"transcript","source":"system","text":"It is a real problem for us."})";

}  // namespace

TEST_F(FaultsTest, unknownEnumComesAmongGoodTips) {
    startWith({u"unknown-enum"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(said);
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    const auto bad = client.next();
    EXPECT_EQ(bad[u"coaching_type"_s], u"telepathy"_s);
    EXPECT_EQ(bad[u"state"_s].toObject()[u"meddic_score"_s].toInt(), 1);
    const auto good = client.next();
    EXPECT_EQ(good[u"coaching_type"_s], u"data_point"_s);
}

TEST_F(FaultsTest, refuseTokenHitsTheProviderOnly) {
    startWith({u"refuse-token"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto started = client.next();
    WireClient provider{QUrl{started[u"openai_realtime_url"_s].toString()},
                        started[u"openai_ephemeral_token"_s].toString()};
    EXPECT_FALSE(provider.connects());
    EXPECT_TRUE(logs(u"as --fault refuse-token asks"_s));
}

TEST_F(FaultsTest, noTokenStartsTheSessionAllTheSame) {
    startWith({u"no-token"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto started = client.next();
    EXPECT_EQ(started.keys(), (QStringList{u"session_id"_s, u"type"_s}));
}

TEST_F(FaultsTest, closeAtStepClosesBehindThatMessage) {
    startWith({u"close-at-step-2:1001"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(said);
    ASSERT_TRUE(client.closes());
    EXPECT_EQ(client.closeCode(), 1001);
    ASSERT_EQ(client.messages().size(), 2);
    EXPECT_EQ(client.messages()[1][u"type"_s], u"coaching"_s);
}

TEST_F(FaultsTest, closeAtStepZeroClosesInPlaceOfTheFirst) {
    startWith({u"close-at-step-0:1000"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    ASSERT_TRUE(client.closes());
    EXPECT_EQ(client.closeCode(), 1000);
    EXPECT_TRUE(client.messages().isEmpty());
}

TEST_F(FaultsTest, silenceTakesEverythingAndAnswersNothing) {
    startWith({u"silence"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(said);
    client.send(R"({"type":"ping"})");
    ASSERT_TRUE(spinUntil([&] { return logs(u"tip (data_point"_s); }));
    // Only the protocol's own ping gets its answer, which comes behind all others.
    bool hasPong = false;
    QObject::connect(&client.socket(), &QWebSocket::pong, &client.socket(), [&] { hasPong = true; });
    client.socket().ping();
    ASSERT_TRUE(spinUntil([&] { return hasPong; }));
    EXPECT_TRUE(client.messages().isEmpty());
    EXPECT_FALSE(client.isClosed());
}

TEST_F(FaultsTest, errorBeforeStartRefusesTheSession) {
    startWith({u"error-before-start"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto error = client.next();
    EXPECT_EQ(error[u"type"_s], u"error"_s);
    EXPECT_FALSE(error.contains(u"session_id"_s));
    EXPECT_TRUE(box->calls().calls().empty());
}

TEST_F(FaultsTest, slowSummaryComesAfterItsTime) {
    startWith({u"slow-summary:3000"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    client.send(R"({"type":"end_session"})");
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
    settleAfter(clock, std::chrono::milliseconds{2999});
    EXPECT_TRUE(client.messages().isEmpty());
    settleAfter(clock, std::chrono::milliseconds{1});
    const auto summary = client.next();
    EXPECT_EQ(summary[u"type"_s], u"summary"_s);
    EXPECT_EQ(summary[u"duration_secs"_s].toInt(), 0);
}

TEST_F(FaultsTest, providerErrorComesWithTheFirstAudioAndEndsNothing) {
    startWith({u"provider-error"_s});
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto started = client.next();
    WireClient provider{QUrl{started[u"openai_realtime_url"_s].toString()},
                        started[u"openai_ephemeral_token"_s].toString()};
    provider.send(appendFrame(GeneratedAudio{}.silence(0.1).pcm()));
    provider.send(appendFrame(GeneratedAudio{}.tone(1).silence(0.6).pcm()));
    EXPECT_EQ(provider.next(u"error"_s)[u"error"_s].toObject()[u"message"_s], u"The server had an error."_s);
    EXPECT_EQ(provider.next(u"conversation.item.input_audio_transcription.completed"_s)[u"transcript"_s],
              u"(1.0 s of speech)"_s);
}

}  // namespace corvellan::test

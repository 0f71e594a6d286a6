#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include "Platform/Linux/Speech/DesktopSpeech.h"
#include "PrivateSpeechDaemon.h"
#include "Services/Audio/AudioService.h"
#include "Services/Speech/TtsService.h"
#include "Services/SttService.h"
#include "SpeechFixture.h"
#include "Support/LoopbackServer.h"
#include "Support/SessionSurroundings.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

/// Fakes, but for a voice that is heard.
class SpeakingFactory final : public ServiceFactory {
public:
    SpeakingFactory(CallLog& log, SpeechSynthesizer& synthesizer) : fakes(log), m_synthesizer(synthesizer) {}

    std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override { return fakes.makeScreenShare(); }
    std::unique_ptr<TtsServiceProtocol> makeTts() override {
        return std::make_unique<TtsService>(mainExecutor(), m_synthesizer);
    }
    std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override { return fakes.makeSystemAudio(); }
    std::unique_ptr<SttServiceProtocol> makeStt() override { return fakes.makeStt(); }
    std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override { return fakes.makeWebSocket(); }

    FakeFactory fakes;

private:
    SpeechSynthesizer& m_synthesizer;
};

/// A training session with the real microphone service, pumps and transcription client, in a room where the
/// microphone hears the loudspeaker.
class SpeechInSessionTest : public SpeechFixture, public testing::WithParamInterface<bool> {
protected:
    SpeechInSessionTest() {
        if (!GetParam())
            daemon.kill();
    }

    void SetUp() override {
        ASSERT_TRUE(provider.listen());
        around.pumps = &live.executor();
        const auto base = around.environment(factory, u"1.2.3"_s);
        auto audio = std::make_unique<AudioService>(live.executor(), clock, inputs, around.diagnostics.mic);
        auto stt =
            std::make_unique<SttService>(live.executor(), clock, around.diagnostics.mic, provider.url().toString());
        session = std::make_unique<SessionViewModel>(SessionEnvironment{.main = base.main,
                                                                        .pumps = base.pumps,
                                                                        .clock = clock,
                                                                        .preferences = base.preferences,
                                                                        .debugLog = base.debugLog,
                                                                        .diagnostics = base.diagnostics,
                                                                        .services = base.services,
                                                                        .http = base.http,
                                                                        .briefings = base.briefings,
                                                                        .productionUrl = base.productionUrl,
                                                                        .chatUrl = base.chatUrl,
                                                                        .clientVersion = base.clientVersion,
                                                                        .tokenFilePath = base.tokenFilePath,
                                                                        .loadMemoryNote = base.loadMemoryNote},
                                                     given.takeWebSocket(), std::move(audio), std::move(stt),
                                                     given.takeAuth());

        session->startSession({.simMode = true});
        ASSERT_TRUE(spinUntil([&] { return !given.ws->sent.empty(); }));
        auto started = SessionSurroundings::started();
        started.openaiRealtimeUrl = provider.url().toString();
        given.ws->deliver(ServerMsg::Value{started});
        ASSERT_TRUE(spinUntil([&] { return appends() > 3; })) << "the microphone is transcribed";
    }

    void TearDown() override {
        session->stopSession();
        EXPECT_TRUE(spinUntil([&] { return session->isQuiet(); }));
        session.reset();
    }

    [[nodiscard]] qsizetype appends() const { return provider.texts().size() - 1; }

    /// The loudest sample that the provider has got.
    [[nodiscard]] float loudestTranscribed() const {
        float highest = 0;
        for (const QString& text : provider.texts()) {
            const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
            const QByteArray pcm = QByteArray::fromBase64(message.value(u"audio"_s).toString().toLatin1());
            for (qsizetype at = 0; at + 1 < pcm.size(); at += 2)
                highest = std::max(
                    highest, std::abs(static_cast<float>(qFromLittleEndian<qint16>(pcm.constData() + at))) / 32'768.0F);
        }
        return highest;
    }

    /// The microphone hears what the loudspeaker plays, as on a desk.
    PrivatePulse pulse{PrivatePulse::usual() +
                       "load-module module-loopback source=spk.monitor sink=micfeed "
                       "latency_msec=20\n"};
    PrivateSpeechDaemon daemon;
    CallLog log;
    SessionSurroundings around;
    WorkerThread live{"live"};
    PulseAudioInputs inputs{clock, ownSpeech};
    DesktopSpeech synthesizer{clock, ownSpeech, keepFailure(), SpeechDaemon::Start::never};
    SpeakingFactory factory{log, synthesizer};
    FakeGivenServices given{log};
    LoopbackServer provider;
    std::unique_ptr<SessionViewModel> session;
};

TEST_P(SpeechInSessionTest, noneOfTheVoiceReachesTheProviderThoughTheMicrophoneHearsIt) {
    Loudness microphone;
    const auto listening = listen(ears, AudioInputKind::microphone, microphone);
    given.ws->deliver(ServerMsg::Value{ServerMsg::CounterpartToken{u"Hello there, I am your customer today. "_s}});
    given.ws->deliver(ServerMsg::Value{ServerMsg::CounterpartToken{u"What do you want to sell me"_s}});
    given.ws->deliver(ServerMsg::Value{ServerMsg::CounterpartDone{1}});
    ASSERT_TRUE(spinUntil([&] { return session->isTtsPlaying(); }));
    ASSERT_TRUE(spinUntil([&] { return microphone.wasAudible(); }, 30s));
    EXPECT_EQ(session->trainStage(), TrainStage::counterpartSpeaking);
    ASSERT_TRUE(spinUntil([&] { return !session->isTtsPlaying(); }, 30s));
    ASSERT_TRUE(spinUntil([&] { return session->trainStage() == TrainStage::listening; }));
    EXPECT_EQ(synthesizer.usesDispatcher(), GetParam());

    const auto before = appends();
    ASSERT_TRUE(spinUntil([&] { return appends() > before + 10; })) << "the microphone is transcribed again";
    EXPECT_GT(microphone.loudest(), 0.1F);
    EXPECT_LT(loudestTranscribed(), Loudness::audible);
    std::printf("the microphone heard %.3f, the provider %.5f\n", static_cast<double>(microphone.loudest()),
                static_cast<double>(loudestTranscribed()));

    // What the user says does arrive.
    const auto speaking = pulse.play(u"micfeed"_s, chirp(0.5, 44'100), 44'100);
    ASSERT_TRUE(speaking->finish());
    EXPECT_TRUE(spinUntil([&] { return loudestTranscribed() > 0.1F; }));
}

TEST_P(SpeechInSessionTest, skippingTheVoiceSilencesItAndTheUserIsHeardAtOnce) {
    const auto listening = hearOutput();
    given.ws->deliver(ServerMsg::Value{ServerMsg::CounterpartToken{
        u"This is a rather long sentence that takes its time so that it can be cut off in the middle. "_s}});
    ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }, 30s));
    ASSERT_TRUE(waitForBlocks(heard, 10));
    const auto before = appends();

    const auto skip = std::chrono::steady_clock::now();
    session->interruptTts();
    EXPECT_FALSE(session->isTtsPlaying());
    EXPECT_EQ(session->trainStage(), TrainStage::listening);
    ASSERT_TRUE(spinUntil([&] { return appends() > before; }));
    ASSERT_TRUE(waitForBlocks(heard, 100));
    EXPECT_LT(*heard.lastAudible() - skip, 500ms);
    tell("silent", *heard.lastAudible() - skip);
}

INSTANTIATE_TEST_SUITE_P(Engines, SpeechInSessionTest, testing::Bool(),
                         [](const auto& engine) { return engine.param ? "speechDispatcher" : "espeak"; });

}  // namespace
}  // namespace corvellan::test

#include <bit>
#include <cstring>

#include "Base/Diagnostics.h"
#include "Base/Log.h"
#include "PulseFixture.h"
#include "Services/Audio/AudioService.h"
#include "Services/Audio/SystemAudioService.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

/// Both services on their own thread, as the program runs them.
class PulseServicesTest : public PulseFixture {
protected:
    using Stream = AsyncStream<AudioChunk>;

    PulseServicesTest() {
        setLogSink([](const LogLine&) {});
    }
    ~PulseServicesTest() override { setLogSink({}); }

    /// Reads on the main thread until the stream ends or `stop` is requested.
    static QCoro::Task<void> gather(Stream stream, std::stop_token stop, std::vector<float>& samples) {
        while (true) {
            auto next = stream.next(stop);
            const auto chunk = co_await next;
            if (!chunk || !*chunk)
                co_return;
            const QByteArray& pcm = (**chunk).pcm;
            for (qsizetype i = 0; i + 1 < pcm.size(); i += 2) {
                const auto low = static_cast<unsigned char>(pcm[i]);
                const auto high = static_cast<unsigned char>(pcm[i + 1]);
                samples.push_back(static_cast<float>(static_cast<std::int16_t>(low | high << 8)) / 32768.0F);
            }
        }
    }

    static bool waitForMore(const std::vector<float>& samples, std::size_t count) {
        const auto enough = samples.size() + count;
        return spinUntil([&] { return samples.size() > enough; });
    }

    Diagnostics diagnostics;
    WorkerThread live{"live"};
    AudioService audio{live.executor(), clock, inputs, diagnostics.mic};
    SystemAudioService systemAudio{live.executor(), clock, inputs, diagnostics.system};
};

TEST_F(PulseServicesTest, turnBothSidesIntoChunksAtOnce) {
    PrivatePulse pulse;
    auto mic = complete(audio.startMic());
    auto system = complete(systemAudio.start());
    ASSERT_TRUE(mic && system);
    std::vector<float> fromMic;
    std::vector<float> fromSystem;
    std::stop_source stop;
    auto readingMic = gather(*mic, stop.get_token(), fromMic);
    auto readingSystem = gather(*system, stop.get_token(), fromSystem);
    ASSERT_TRUE(waitForMore(fromMic, 2400) && waitForMore(fromSystem, 2400));

    const auto spoken = chirp(1.5, 24'000, 200, 3000);
    const auto played = chirp(1.5, 24'000, 3000, 300);
    const auto speaking = pulse.play(u"micfeed"_s, spoken, 24'000);
    const auto playing = pulse.play(u"spk"_s, played, 24'000);
    ASSERT_TRUE(speaking->finish() && playing->finish());
    ASSERT_TRUE(waitForMore(fromMic, 12'000) && waitForMore(fromSystem, 12'000));
    EXPECT_GE(complete(audio.audioLevel()), 0.0F);

    stop.request_stop();
    complete(std::move(readingMic));
    complete(std::move(readingSystem));
    complete(audio.stopMic());
    const auto mine = find(spoken, fromMic);
    const auto theirs = find(played, fromSystem);
    EXPECT_GT(mine.correlation, 0.95);
    EXPECT_GT(theirs.correlation, 0.95);
    // Each on its side alone.
    EXPECT_LT(find(played, fromMic).correlation, 0.3);
    EXPECT_LT(find(spoken, fromSystem).correlation, 0.3);
    RecordProperty("correlation_mic", std::to_string(mine.correlation));
    RecordProperty("correlation_system", std::to_string(theirs.correlation));
    EXPECT_GE(diagnostics.mic.bytesCaptured, 2 * fromMic.size());
    EXPECT_EQ(diagnostics.mic.reopenings, 0U);
    EXPECT_EQ(diagnostics.system.framesCaptured % 960, 0U);
}

TEST_F(PulseServicesTest, keepTheirStreamsThroughALostServerAndAnotherMicrophone) {
    PrivatePulse pulse;
    auto mic = complete(audio.startMic());
    auto system = complete(systemAudio.start());
    ASSERT_TRUE(mic && system);
    std::vector<float> fromMic;
    std::vector<float> fromSystem;
    std::stop_source stop;
    auto readingMic = gather(*mic, {}, fromMic);
    auto readingSystem = gather(*system, stop.get_token(), fromSystem);
    ASSERT_TRUE(waitForMore(fromMic, 2400) && waitForMore(fromSystem, 2400));

    testing::internal::CaptureStderr();
    pulse.kill();
    pulse.configure(PrivatePulse::speakers() + PrivatePulse::microphone("headset", 16'000, 1) +
                    "set-default-source headset\n");
    pulse.start();
    ASSERT_TRUE(spinUntil([&] { return diagnostics.mic.reopenings == 1U && diagnostics.system.reopenings == 1U; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "SCStream stopped: Connection terminated\n");

    const auto spoken = chirp(1.0, 24'000, 200, 3000);
    fromMic.clear();
    fromSystem.clear();
    const auto speaking = pulse.play(u"headsetfeed"_s, spoken, 24'000);
    const auto playing = pulse.play(u"spk"_s, spoken, 24'000);
    ASSERT_TRUE(speaking->finish() && playing->finish());
    ASSERT_TRUE(waitForMore(fromMic, 12'000) && waitForMore(fromSystem, 12'000));
    EXPECT_GT(find(spoken, fromMic).correlation, 0.95);
    EXPECT_GT(find(spoken, fromSystem).correlation, 0.95);

    complete(audio.stopMic());
    complete(std::move(readingMic));
    EXPECT_EQ(complete(audio.audioLevel()), 0.0F);
    stop.request_stop();
    complete(std::move(readingSystem));
}

TEST_F(PulseServicesTest, failWithASentenceWhereThereIsNothing) {
    PrivatePulse pulse{""};
    const auto mic = complete(audio.startMic());
    ASSERT_FALSE(mic);
    EXPECT_EQ(mic.error().errorDescription(),
              u"No microphone was found. Plug one in or choose one in the sound settings, then start again."_s);
    const auto system = complete(systemAudio.start());
    ASSERT_FALSE(system);
    EXPECT_EQ(system.error().errorDescription(), u"No display found for audio capture"_s);
}

}  // namespace
}  // namespace corvellan::test

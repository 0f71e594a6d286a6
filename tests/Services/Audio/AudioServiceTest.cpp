#include "Services/Audio/AudioService.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "AudioServiceFixture.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

class AudioServiceTest : public AudioServiceFixture {
protected:
    Stream start() {
        auto result = complete(service.startMic());
        if (!result)
            throw std::runtime_error(qPrintable(result.error().errorDescription()));
        return std::move(*result);
    }
    float level() {
        settleService();
        return complete(service.audioLevel());
    }

    AudioService service{executor(), clock, inputs, counters};
    const std::vector<float> loud = std::vector<float>(9600, 0.5F);
};

INSTANTIATE_TEST_SUITE_P(Placements, AudioServiceTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

TEST_P(AudioServiceTest, isIdleAtFirst) {
    EXPECT_EQ(level(), 0.0F);
    EXPECT_FALSE(complete(service.isMuted()));
    EXPECT_TRUE(log().isEmpty());
}

TEST_P(AudioServiceTest, opensTheMicrophoneInItsOwnFormatAndSaysSo) {
    inputs.format = {.sampleRateHertz = 44'100, .channels = 2};
    const auto stream = start();
    ASSERT_EQ(inputs.devices.size(), 1U);
    EXPECT_EQ(inputs.devices[0]->kind, AudioInputKind::microphone);
    EXPECT_EQ(log(), QStringList{u"Audio|info|Mic started: 44100.000000Hz → 24kHz"_s});
}

TEST_P(AudioServiceTest, yieldsOneChunkPerBufferScaledByTheRates) {
    const auto stream = start();
    clock.advance(3s);
    // The first buffer is short by the filter's lag; the capacity bounds every one.
    inputs.devices[0]->deliver(loud);
    inputs.devices[0]->deliver(loud);
    const auto first = read(stream);
    const auto second = read(stream);
    ASSERT_TRUE(first && *first && second && *second);
    EXPECT_LT((*first)->pcm.size(), 9600);
    EXPECT_GT((*first)->pcm.size(), 7000);
    EXPECT_LE((*second)->pcm.size(), 9600);
    EXPECT_GT((*second)->pcm.size(), 9000);
    EXPECT_EQ((*first)->deliveredAt, clock.now());
    EXPECT_EQ(counters.framesCaptured, 19'200U);
    EXPECT_EQ(counters.bytesCaptured, static_cast<std::uint64_t>((*first)->pcm.size() + (*second)->pcm.size()));
}

TEST_P(AudioServiceTest, measuresTheFirstChannelAndMixesBoth) {
    inputs.format = {.sampleRateHertz = 24'000, .channels = 2};
    const auto stream = start();
    std::vector<float> frames;
    for (int i = 0; i < 24'000; ++i)
        frames.insert(frames.end(), {0.25F, -0.25F});
    inputs.devices[0]->deliver(frames);
    EXPECT_EQ(level(), 0.25F);
    const auto chunk = read(stream);
    ASSERT_TRUE(chunk && *chunk);
    EXPECT_EQ((*chunk)->pcm, QByteArray((*chunk)->pcm.size(), '\0'));
    EXPECT_EQ(counters.framesCaptured, 24'000U);
}

TEST_P(AudioServiceTest, ignoresEmptyBuffersAndIncompleteFrames) {
    inputs.format = {.sampleRateHertz = 48'000, .channels = 2};
    const auto stream = start();
    inputs.devices[0]->deliver(std::vector<float>(9600, 0.5F));
    EXPECT_EQ(level(), 0.5F);
    inputs.devices[0]->deliver({});
    inputs.devices[0]->deliver(std::vector{0.9F});
    EXPECT_EQ(level(), 0.5F);
    EXPECT_EQ(counters.framesCaptured, 4800U);
}

TEST_P(AudioServiceTest, stopIsHarmlessWithoutAStart) {
    complete(service.stopMic());
    EXPECT_EQ(level(), 0.0F);
    EXPECT_EQ(log(), QStringList{u"Audio|info|Mic stopped"_s});
    complete(service.stopMic());
    EXPECT_EQ(log().size(), 2);
}

TEST_P(AudioServiceTest, stopEndsTheStreamAfterWhatWasQueued) {
    const auto stream = start();
    inputs.devices[0]->deliver(loud);
    inputs.devices[0]->deliver(loud);
    complete(service.stopMic());

    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_EQ(level(), 0.0F);
    auto next = read(stream);
    EXPECT_TRUE(next && *next);
    next = read(stream);
    EXPECT_TRUE(next && *next);
    next = read(stream);
    ASSERT_TRUE(next);
    EXPECT_FALSE(*next);
    EXPECT_EQ(log().last(), u"Audio|info|Mic stopped"_s);
}

TEST_P(AudioServiceTest, mutingSetsTheLevelToZeroUntilTheNextBufferAndKeepsTheChunksComing) {
    const auto stream = start();
    inputs.devices[0]->deliver(loud);
    EXPECT_EQ(level(), 0.5F);

    complete(service.setMuted(true));
    EXPECT_TRUE(complete(service.isMuted()));
    EXPECT_EQ(level(), 0.0F);

    inputs.devices[0]->deliver(loud);
    EXPECT_EQ(level(), 0.5F);
    EXPECT_TRUE(*read(stream));
    EXPECT_TRUE(*read(stream));

    complete(service.setMuted(false));
    EXPECT_FALSE(complete(service.isMuted()));
    // Only muting touches the level.
    EXPECT_EQ(level(), 0.5F);
}

TEST_P(AudioServiceTest, stopKeepsTheMute) {
    complete(service.setMuted(true));
    const auto stream = start();
    complete(service.stopMic());
    EXPECT_TRUE(complete(service.isMuted()));
}

TEST_P(AudioServiceTest, clearsTheLevelUntilTheNextBuffer) {
    const auto stream = start();
    inputs.devices[0]->deliver(loud);
    EXPECT_EQ(level(), 0.5F);
    complete(service.clearAudioLevel());
    EXPECT_EQ(level(), 0.0F);
    EXPECT_FALSE(complete(service.isMuted()));
    inputs.devices[0]->deliver(loud);
    EXPECT_EQ(level(), 0.5F);
}

TEST_P(AudioServiceTest, failsWithThePlatformsError) {
    inputs.failure = Error{AudioInputError{AudioInputError::Kind::noDevice, u"No microphone was found."_s}};
    const auto result = complete(service.startMic());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().errorDescription(), u"No microphone was found."_s);
    EXPECT_TRUE(log().isEmpty());
    // And a later start works.
    inputs.failure.reset();
    const auto stream = start();
    EXPECT_TRUE(inputs.devices[0]->isOpen());
}

TEST_P(AudioServiceTest, failsWhereNoConverterCanBeMade) {
    inputs.format = {.sampleRateHertz = 0, .channels = 1};
    const auto result = complete(service.startMic());
    ASSERT_FALSE(result);
    ASSERT_TRUE(result.error().as<AudioError>());
    EXPECT_EQ(result.error().errorDescription(), u"Failed to create audio converter"_s);
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_TRUE(log().isEmpty());
}

TEST(AudioErrorTest, speaksToTheUser) {
    EXPECT_EQ(AudioError{AudioError::Kind::formatCreationFailed}.errorDescription(),
              u"Failed to create audio format"_s);
    EXPECT_EQ(AudioError{AudioError::Kind::converterCreationFailed}.errorDescription(),
              u"Failed to create audio converter"_s);
}

TEST_P(AudioServiceTest, aNewStartCarriesNothingOver) {
    const auto first = start();
    inputs.devices[0]->deliver(loud);
    complete(service.stopMic());
    const auto second = start();
    ASSERT_EQ(inputs.devices.size(), 2U);
    inputs.devices[1]->deliver(loud);
    const auto a = read(first);
    const auto b = read(second);
    // The same lag as at the first start: the resampler is new.
    EXPECT_EQ((*a)->pcm, (*b)->pcm);
}

TEST_P(AudioServiceTest, aStartWhileCapturingEndsTheOldCaptureAndLeavesItsStreamOpen) {
    const auto first = start();
    const auto second = start();
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_TRUE(inputs.devices[1]->isOpen());
    std::stop_source stop;
    std::optional<Stream::Next> end;
    auto reading = [](Stream from, std::stop_token token, std::optional<Stream::Next>& next) -> QCoro::Task<void> {
        next = co_await from.next(token);
    }(first, stop.get_token(), end);
    inputs.devices[1]->deliver(loud);
    EXPECT_TRUE(*read(second));
    complete(service.stopMic());
    EXPECT_FALSE(*read(second));
    EXPECT_FALSE(end);
    stop.request_stop();
    complete(std::move(reading));
}

TEST_P(AudioServiceTest, followsAnotherDevicesFormatWithoutEndingTheStream) {
    const auto stream = start();
    inputs.devices[0]->deliver(loud);
    EXPECT_TRUE(*read(stream));

    inputs.devices[0]->interrupt(TransportError{u"Entity killed"_s});
    inputs.devices[0]->reopen();
    const AudioFormat headset{.sampleRateHertz = 16'000, .channels = 2};
    const auto before = counters.bytesCaptured.load();
    for (int i = 0; i < 10; ++i)
        inputs.devices[0]->deliver(std::vector<float>(2 * 3200, 0.25F), headset);

    EXPECT_TRUE(*read(stream));
    // 2 s at the output's rate, less the new resampler's lag.
    EXPECT_NEAR(static_cast<double>(counters.bytesCaptured - before), 96'000, 6'000);
    EXPECT_EQ(level(), 0.25F);
    EXPECT_EQ(counters.reopenings, 1U);
    EXPECT_EQ(counters.framesCaptured, 9600U + 32'000U);
}

TEST_P(AudioServiceTest, staysSilentOnADeviceThatItCantConvertAndRecovers) {
    const auto stream = start();
    inputs.devices[0]->deliver(loud, {.sampleRateHertz = 0, .channels = 1});
    EXPECT_EQ(counters.bytesCaptured, 0U);
    inputs.devices[0]->deliver(loud);
    EXPECT_GT(counters.bytesCaptured, 0U);
    EXPECT_TRUE(*read(stream));
}

TEST_P(AudioServiceTest, aSlowReaderLosesNothing) {
    const auto stream = start();
    std::thread audio{[&] {
        for (int i = 0; i < 100; ++i)
            inputs.devices[0]->deliver(std::vector<float>(480, 0.5F));
    }};
    audio.join();
    complete(service.stopMic());
    std::uint64_t bytes = 0;
    while (auto next = *read(stream))
        bytes += static_cast<std::uint64_t>(next->pcm.size());
    EXPECT_EQ(bytes, counters.bytesCaptured);
    EXPECT_EQ(counters.framesCaptured, 48'000U);
    EXPECT_GT(bytes, 2U * (24'000U - 1200U));
}

TEST_P(AudioServiceTest, aLateLevelOfAnEndedCaptureIsNotTaken) {
    const auto stream = start();
    std::atomic<bool> isDelivering = true;
    std::thread audio{[&, device = inputs.devices[0]] {
        while (isDelivering && device->deliver(loud)) {
        }
    }};
    ASSERT_TRUE(spinUntil([&] { return counters.framesCaptured > 100'000; }));
    complete(service.stopMic());
    EXPECT_EQ(level(), 0.0F);
    isDelivering = false;
    audio.join();
    EXPECT_EQ(level(), 0.0F);
}

TEST_P(AudioServiceTest, endsCaptureAndStreamWhenItGoes) {
    auto shortLived = std::make_unique<AudioService>(executor(), clock, inputs, counters);
    auto result = complete(shortLived->startMic());
    ASSERT_TRUE(result);
    shortLived.reset();
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_FALSE(*read(*result));
}

TEST_P(AudioServiceTest, givesUpAnOpeningThatIsUnderWayWhenItGoes) {
    inputs.isHeld = true;
    auto shortLived = std::make_unique<AudioService>(executor(), clock, inputs, counters);
    auto starting = shortLived->startMic();
    settleService();
    shortLived.reset();
    const auto result = complete(std::move(starting));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().as<CancelledError>());
    EXPECT_TRUE(inputs.devices.empty());
}

}  // namespace
}  // namespace corvellan::test

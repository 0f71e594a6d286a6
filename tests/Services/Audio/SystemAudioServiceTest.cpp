#include "Services/Audio/SystemAudioService.h"

#include <gmock/gmock.h>

#include "AudioServiceFixture.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

class SystemAudioServiceTest : public AudioServiceFixture {
protected:
    Stream start() {
        auto result = complete(service.start());
        if (!result)
            throw std::runtime_error(qPrintable(result.error().errorDescription()));
        return std::move(*result);
    }
    float level() {
        settleService();
        return complete(service.audioLevel());
    }

    SystemAudioService service{executor(), clock, inputs, counters};
    const std::vector<float> block = std::vector<float>(960, 0.5F);
};

INSTANTIATE_TEST_SUITE_P(Placements, SystemAudioServiceTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

TEST_P(SystemAudioServiceTest, startsAtTheOutputsOwnRateAndSaysSo) {
    inputs.format = {.sampleRateHertz = 44'100, .channels = 2};
    const auto stream = start();
    EXPECT_EQ(inputs.devices.at(0)->kind, AudioInputKind::systemOutput);
    EXPECT_EQ(log(), QStringList{u"SystemAudio|info|System audio started: 44100.000000Hz → 24kHz"_s});
}

TEST_P(SystemAudioServiceTest, yieldsOneChunkPerBlock) {
    const auto stream = start();
    clock.advance(5s);
    inputs.devices[0]->deliver(block);
    inputs.devices[0]->deliver(block);
    const auto first = read(stream);
    ASSERT_TRUE(first && *first);
    // 0.5 * 32767 truncated is 0x3FFF.
    QByteArray expected;
    for (int i = 0; i < 480; ++i)
        expected += QByteArray{"\xFF\x3F", 2};
    EXPECT_EQ((*first)->pcm, expected);
    EXPECT_EQ((*first)->deliveredAt, clock.now());
    EXPECT_EQ((**read(stream)).pcm, expected) << "no state carries over";
    EXPECT_EQ(level(), 0.5F);
    EXPECT_EQ(counters.framesCaptured, 1920U);
    EXPECT_EQ(counters.bytesCaptured, 1920U);
}

TEST_P(SystemAudioServiceTest, mixesTheChannelsDownBeforeTheLevel) {
    inputs.format = {.sampleRateHertz = 48'000, .channels = 2};
    const auto stream = start();
    inputs.devices[0]->deliver(std::vector{0.5F, 0.0F, 0.5F, 0.0F, 0.9F});
    EXPECT_EQ(level(), 0.25F);
    EXPECT_EQ(counters.framesCaptured, 2U);
    EXPECT_EQ((**read(stream)).pcm.size(), 2);
}

TEST_P(SystemAudioServiceTest, yieldsAnEmptyChunkForOneSampleAndUpdatesTheLevel) {
    const auto stream = start();
    inputs.devices[0]->deliver(std::vector{0.75F});
    const auto chunk = read(stream);
    ASSERT_TRUE(chunk && *chunk);
    EXPECT_TRUE((*chunk)->pcm.isEmpty());
    EXPECT_EQ(level(), 0.75F);
}

TEST_P(SystemAudioServiceTest, ignoresAnEmptyBuffer) {
    const auto stream = start();
    inputs.devices[0]->deliver({});
    inputs.devices[0]->deliver(block);
    EXPECT_EQ((**read(stream)).pcm.size(), 960) << "the first chunk is that of the second buffer";
}

TEST_P(SystemAudioServiceTest, stopWithoutAStartChangesNothingAndSaysSo) {
    complete(service.stop());
    EXPECT_EQ(log(), QStringList{u"SystemAudio|info|System audio stopped"_s});
    EXPECT_EQ(level(), 0.0F);
}

TEST_P(SystemAudioServiceTest, stopEndsTheCaptureAndLeavesTheStreamOpen) {
    const auto stream = start();
    inputs.devices[0]->deliver(block);
    complete(service.stop());
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_EQ(level(), 0.0F);
    EXPECT_EQ(log().last(), u"SystemAudio|info|System audio stopped"_s);

    EXPECT_TRUE(*read(stream));
    std::stop_source stop;
    std::optional<Stream::Next> end;
    auto reading = [](Stream from, std::stop_token token, std::optional<Stream::Next>& next) -> QCoro::Task<void> {
        next = co_await from.next(token);
    }(stream, stop.get_token(), end);
    settleService();
    EXPECT_FALSE(end) << "open and silent";
    stop.request_stop();
    EXPECT_TRUE(spinUntil([&] { return end.has_value(); }));
}

TEST_P(SystemAudioServiceTest, aReaderThatIsCancelledStopsTheCapture) {
    const auto stream = start();
    std::stop_source stop;
    auto reading = readOne(stream, stop.get_token());
    settleService();
    EXPECT_TRUE(inputs.devices[0]->isOpen());

    stop.request_stop();
    const auto end = complete(std::move(reading));
    ASSERT_TRUE(end);
    EXPECT_FALSE(*end);
    EXPECT_TRUE(spinUntil([&] { return !inputs.devices[0]->isOpen(); }));
    settleService();
    EXPECT_EQ(log().last(), u"SystemAudio|info|System audio stopped"_s);
}

TEST_P(SystemAudioServiceTest, aReaderThatGoesAwayStopsTheCapture) {
    {
        const auto stream = start();
        EXPECT_TRUE(inputs.devices[0]->isOpen());
    }
    EXPECT_TRUE(spinUntil([&] { return !inputs.devices[0]->isOpen(); }));
}

TEST_P(SystemAudioServiceTest, startsAnewAfterAStop) {
    const auto first = start();
    complete(service.stop());
    const auto second = start();
    ASSERT_EQ(inputs.devices.size(), 2U);
    inputs.devices[1]->deliver(block);
    EXPECT_TRUE(*read(second));
    EXPECT_EQ(level(), 0.5F);
}

TEST_P(SystemAudioServiceTest, failsWithThePlatformsErrorAndKeepsNothing) {
    inputs.failure = Error{AudioInputError{AudioInputError::Kind::failed, u"refused"_s}};
    const auto refused = complete(service.start());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().errorDescription(), u"refused"_s);

    inputs.failure = Error{AudioInputError{AudioInputError::Kind::noDevice, u"no output"_s}};
    const auto noOutput = complete(service.start());
    ASSERT_FALSE(noOutput);
    EXPECT_EQ(noOutput.error().errorDescription(), u"No display found for audio capture"_s);
    EXPECT_TRUE(log().isEmpty());
}

TEST_P(SystemAudioServiceTest, staysOpenAndSilentWhileThePlatformLooksForAnOutput) {
    const auto stream = start();
    inputs.devices[0]->deliver(block);
    EXPECT_TRUE(*read(stream));
    testing::internal::CaptureStderr();
    inputs.devices[0]->interrupt(TransportError{u"Connection terminated"_s});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "SCStream stopped: Connection terminated\n");

    auto reading = readOne(stream, {});
    settleService();
    inputs.devices[0]->reopen();
    inputs.devices[0]->deliver(block);
    EXPECT_TRUE(*complete(std::move(reading)));
    EXPECT_EQ(counters.reopenings, 1U);
}

TEST_P(SystemAudioServiceTest, endsTheCaptureWhenItGoes) {
    auto shortLived = std::make_unique<SystemAudioService>(executor(), clock, inputs, counters);
    const auto result = complete(shortLived->start());
    ASSERT_TRUE(result);
    shortLived.reset();
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    EXPECT_FALSE(*read(*result));
    settleService();
    EXPECT_EQ(log().size(), 1) << "it goes without a word";
}

TEST_P(SystemAudioServiceTest, aStreamMayOutliveTheServiceAndItsThread) {
    std::optional<Stream> stream;
    {
        WorkerThread thread{"short"};
        SystemAudioService shortLived{thread.executor(), clock, inputs, counters};
        auto result = complete(shortLived.start());
        ASSERT_TRUE(result);
        stream.emplace(std::move(*result));
    }
    EXPECT_FALSE(*read(*stream));
    stream.reset();
}

TEST_P(SystemAudioServiceTest, givesUpAnOpeningThatIsUnderWayWhenItGoes) {
    inputs.isHeld = true;
    auto shortLived = std::make_unique<SystemAudioService>(executor(), clock, inputs, counters);
    auto starting = shortLived->start();
    settleService();
    shortLived.reset();
    const auto result = complete(std::move(starting));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().as<CancelledError>());
}

}  // namespace
}  // namespace corvellan::test

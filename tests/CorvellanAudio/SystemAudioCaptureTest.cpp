#include "CorvellanAudio/SystemAudioCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Support/FakeAudioInputs.h"
#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

using testing::ElementsAre;

std::unique_ptr<SystemAudioCapture> started(FakeAudioInputs& inputs, std::function<void()> onReopened = {}) {
    auto result = complete(SystemAudioCapture::start(inputs, std::move(onReopened), {}));
    if (!result)
        throw std::runtime_error(qPrintable(result.error().errorDescription()));
    return std::move(result->capture);
}

TEST(SystemAudioCaptureTest, has48000HertzWhenConstructedWithoutARate) {
    const SystemAudioCapture capture;
    EXPECT_EQ(capture.sampleRate, 48'000U);
    EXPECT_FALSE(capture.isCapturing());
    EXPECT_EQ(SystemAudioCapture::ringSize, 65'536U);
    EXPECT_EQ(capture.ringReadPos(), 0);
}

TEST(SystemAudioCaptureTest, runsAtTheOutputsOwnRate) {
    FakeAudioInputs inputs;
    inputs.format = {.sampleRateHertz = 44'100, .channels = 2};
    const auto capture = started(inputs);
    EXPECT_EQ(capture->sampleRate, 44'100U);
    EXPECT_TRUE(capture->isCapturing());
    EXPECT_EQ(inputs.devices.at(0)->kind, AudioInputKind::systemOutput);
}

TEST(SystemAudioCaptureTest, takes48000HertzWhereTheOutputTellsNoRate) {
    FakeAudioInputs inputs;
    inputs.format = {.sampleRateHertz = 0, .channels = 2};
    EXPECT_EQ(started(inputs)->sampleRate, 48'000U);
}

TEST(SystemAudioCaptureTest, tellsThatThereIsNoOutput) {
    FakeAudioInputs inputs;
    inputs.failure = Error{AudioInputError{AudioInputError::Kind::noDevice, QStringLiteral("no output")}};
    const auto result = complete(SystemAudioCapture::start(inputs, {}, {}));
    ASSERT_FALSE(result);
    ASSERT_TRUE(result.error().as<SystemAudioCapture::CaptureError>());
    EXPECT_EQ(result.error().errorDescription(), QStringLiteral("No display found for audio capture"));
}

TEST(SystemAudioCaptureTest, raisesThePlatformsErrorAsItComes) {
    FakeAudioInputs inputs;
    inputs.failure = Error{AudioInputError{AudioInputError::Kind::noServer, QStringLiteral("no server")}};
    const auto result = complete(SystemAudioCapture::start(inputs, {}, {}));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().errorDescription(), QStringLiteral("no server"));
}

TEST(SystemAudioCaptureTest, givesRingAndCallbackTheSameSamples) {
    FakeAudioInputs inputs;
    inputs.format = {.sampleRateHertz = 48'000, .channels = 2};
    const auto capture = started(inputs);
    std::vector<float> pushed;
    capture->setOnSamples([&](std::span<const float> mono) { pushed.assign(mono.begin(), mono.end()); });

    inputs.devices[0]->deliver(std::vector{1.0F, 3.0F, 5.0F, 7.0F, 9.0F});

    EXPECT_THAT(pushed, ElementsAre(2, 6));
    std::vector<float> pulled(2);
    EXPECT_EQ(capture->readSamples(pulled), 2U);
    EXPECT_EQ(pulled, pushed);
    EXPECT_EQ(capture->ringReadPos(), 2);
}

TEST(SystemAudioCaptureTest, callsBackOutsideTheLock) {
    FakeAudioInputs inputs;
    const auto capture = started(inputs);
    std::vector<float> pulled(3);
    std::size_t count = 0;
    // The lock is not recursive: a call back under it would never return.
    capture->setOnSamples([&](std::span<const float>) { count = capture->readSamples(pulled); });
    inputs.devices[0]->deliver(std::vector{1.0F, 2.0F, 3.0F});
    EXPECT_EQ(count, 3U);
    EXPECT_THAT(pulled, ElementsAre(1, 2, 3));
}

TEST(SystemAudioCaptureTest, callsBackOncePerBufferAndIgnoresEmptyOnes) {
    FakeAudioInputs inputs;
    const auto capture = started(inputs);
    int calls = 0;
    capture->setOnSamples([&](std::span<const float>) { ++calls; });
    inputs.devices[0]->deliver({});
    EXPECT_EQ(calls, 0);
    inputs.devices[0]->deliver(std::vector{1.0F});
    inputs.devices[0]->deliver(std::vector{1.0F, 2.0F});
    EXPECT_EQ(calls, 2);
}

TEST(SystemAudioCaptureTest, keepsInTheRingWhatCameBeforeTheCallback) {
    FakeAudioInputs inputs;
    const auto capture = started(inputs);
    inputs.devices[0]->deliver(std::vector{1.0F, 2.0F});
    std::vector<float> pulled(2);
    EXPECT_EQ(capture->readSamples(pulled), 2U);
}

TEST(SystemAudioCaptureTest, stopEndsTheStreamAndIsHarmlessWhenNothingRuns) {
    FakeAudioInputs inputs;
    const auto capture = started(inputs);
    capture->stop();
    EXPECT_FALSE(capture->isCapturing());
    EXPECT_FALSE(inputs.devices[0]->isOpen());
    capture->stop();
    EXPECT_FALSE(capture->isCapturing());
    SystemAudioCapture{}.stop();
}

TEST(SystemAudioCaptureTest, writesToStandardErrorThatThePlatformStoppedTheStream) {
    FakeAudioInputs inputs;
    const auto capture = started(inputs);
    testing::internal::CaptureStderr();
    inputs.devices[0]->interrupt(TransportError{QStringLiteral("Connection terminated")});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "SCStream stopped: Connection terminated\n");
    EXPECT_FALSE(capture->isCapturing());
    EXPECT_TRUE(inputs.devices[0]->isOpen());
}

TEST(SystemAudioCaptureTest, capturesAgainWhenThePlatformFoundAnotherDevice) {
    FakeAudioInputs inputs;
    int reopenings = 0;
    const auto capture = started(inputs, [&] { ++reopenings; });
    int calls = 0;
    capture->setOnSamples([&](std::span<const float>) { ++calls; });
    testing::internal::CaptureStderr();
    inputs.devices[0]->interrupt(TransportError{QStringLiteral("gone")});
    inputs.devices[0]->reopen();
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(capture->isCapturing());
    EXPECT_EQ(reopenings, 1);
    inputs.devices[0]->deliver(std::vector{1.0F});
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace corvellan::test

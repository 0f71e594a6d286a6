#include "CorvellanAudio/MicResampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "CorvellanAudio/Pcm16.h"

namespace corvellan::test {
namespace {

std::vector<float> sine(double hertz, double rate, std::size_t frames, float amplitude = 0.5F) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] =
            amplitude * static_cast<float>(std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
    return samples;
}

void append(std::vector<std::int16_t>& to, std::span<const std::int16_t> samples) {
    to.insert(to.end(), samples.begin(), samples.end());
}

std::vector<std::int16_t> resampledInPieces(const std::vector<float>& samples, double rate, std::size_t piece) {
    const auto resampler = MicResampler::create(rate, 1);
    std::vector<std::int16_t> output;
    for (std::size_t at = 0; at < samples.size(); at += piece)
        append(output, resampler->process(std::span{samples}.subspan(at, std::min(piece, samples.size() - at))));
    return output;
}

double rms(std::span<const std::int16_t> samples) {
    double sum = 0;
    for (const auto sample : samples)
        sum += static_cast<double>(sample) * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

TEST(MicResamplerTest, refusesWhatNothingCanBeMadeOf) {
    EXPECT_EQ(MicResampler::create(0, 1), nullptr);
    EXPECT_EQ(MicResampler::create(-48'000, 1), nullptr);
    EXPECT_EQ(MicResampler::create(std::numeric_limits<double>::quiet_NaN(), 1), nullptr);
    EXPECT_EQ(MicResampler::create(1e9, 1), nullptr);
    EXPECT_EQ(MicResampler::create(48'000, 0), nullptr);
    EXPECT_EQ(MicResampler::create(48'000, 1000), nullptr);
}

TEST(MicResamplerTest, keepsSilenceSilent) {
    const auto resampler = MicResampler::create(44'100, 2);
    const std::vector<float> silence(2 * 9600);
    for (int i = 0; i < 20; ++i)
        for (const auto sample : resampler->process(silence))
            ASSERT_EQ(sample, 0);
}

TEST(MicResamplerTest, keepsASineOfSpeechsRange) {
    for (const double rate : {8'000.0, 16'000.0, 24'000.0, 44'100.0, 48'000.0, 96'000.0}) {
        const auto output = resampledInPieces(sine(440, rate, static_cast<std::size_t>(rate)), rate, 960);
        // 38 ms of lag at most, then the sine's own level.
        ASSERT_GT(output.size(), 24'000U - 1200U) << rate;
        EXPECT_NEAR(rms(std::span{output}.subspan(2400)), 0.5 * 32768 / std::numbers::sqrt2, 60) << rate;
    }
}

TEST(MicResamplerTest, leavesNothingOfWhatLiesAboveTheOutputsRange) {
    // 14 kHz would fold down to 10 kHz.
    const auto output = resampledInPieces(sine(14'000, 48'000, 48'000), 48'000, 960);
    EXPECT_LE(rms(std::span{output}.subspan(2400)), 1.0);
}

TEST(MicResamplerTest, carriesItsStateFromBufferToBuffer) {
    const auto samples = sine(440, 44'100, 44'100);
    const auto whole = resampledInPieces(samples, 44'100, samples.size());
    for (const std::size_t piece : {441U, 1000U, 4096U, 9600U}) {
        const auto pieces = resampledInPieces(samples, 44'100, piece);
        const std::size_t common = std::min(whole.size(), pieces.size());
        ASSERT_GT(common, 20'000U) << piece;
        for (std::size_t i = 0; i < common; ++i)
            ASSERT_NEAR(pieces[i], whole[i], 1) << piece << " at " << i;
    }
}

TEST(MicResamplerTest, sends24000HertzThroughTheConverterToo) {
    const auto samples = sine(440, 24'000, 24'000);
    const auto resampler = MicResampler::create(24'000, 1);
    std::size_t total = 0;
    for (std::size_t at = 0; at < samples.size(); at += 240) {
        const auto output = resampler->process(std::span{samples}.subspan(at, 240));
        EXPECT_LE(output.size(), 240U);
        total += output.size();
    }
    EXPECT_GT(total, 24'000U - 1200U);
}

TEST(MicResamplerTest, mixesAllChannelsDown) {
    const auto left = sine(440, 48'000, 48'000);
    std::vector<float> opposite;
    std::vector<float> oneSided;
    for (const float sample : left) {
        opposite.insert(opposite.end(), {sample, -sample});
        oneSided.insert(oneSided.end(), {sample, 0.0F});
    }
    for (const auto sample : MicResampler::create(48'000, 2)->process(opposite))
        ASSERT_EQ(sample, 0);
    const auto resampler = MicResampler::create(48'000, 2);
    const auto half = resampler->process(oneSided);
    EXPECT_NEAR(rms(half.subspan(2400)), 0.25 * 32768 / std::numbers::sqrt2, 60);
}

TEST(MicResamplerTest, countsWhatIsNoNumberAsZero) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const auto resampler = MicResampler::create(48'000, 1);
    const std::vector<float> broken{nan, infinity, -infinity, nan};
    const std::vector<float> silence(4800);
    std::vector<std::int16_t> output;
    append(output, resampler->process(broken));
    for (int i = 0; i < 10; ++i)
        append(output, resampler->process(silence));
    ASSERT_GT(output.size(), 20'000U);
    EXPECT_TRUE(std::ranges::all_of(output, [](std::int16_t sample) { return sample == 0; }));
}

TEST(MicResamplerTest, recoversFromSamplesOutOfAllMeasure) {
    const auto resampler = MicResampler::create(48'000, 1);
    const std::vector<float> monstrous(480, std::numeric_limits<float>::max());
    const std::vector<float> silence(4800);
    std::vector<std::int16_t> output;
    append(output, resampler->process(monstrous));
    for (int i = 0; i < 10; ++i)
        append(output, resampler->process(silence));
    ASSERT_GT(output.size(), 20'000U);
    EXPECT_TRUE(std::ranges::all_of(std::span{output}.last(10'000), [](std::int16_t sample) { return sample == 0; }));
}

TEST(MicResamplerTest, leavesOutAnIncompleteFrame) {
    const auto resampler = MicResampler::create(48'000, 2);
    EXPECT_TRUE(resampler->process({}).empty());
    EXPECT_TRUE(resampler->process(std::vector{1.0F}).empty());
    EXPECT_LE(resampler->process(std::vector<float>(9601)).size(), outputCapacity(48'000, 4800));
}

TEST(MicResamplerTest, letsWhatIsBeyondTheCapacityLeaveFirstNextTime) {
    // 44.1 kHz in buffers of 100 frames: 54.42 samples each, of which the capacity lets 54 go.
    const auto samples = sine(440, 44'100, 441'000);
    const auto whole = resampledInPieces(samples, 44'100, samples.size());
    const auto resampler = MicResampler::create(44'100, 1);
    std::vector<std::int16_t> output;
    std::size_t largest = 0;
    std::size_t over = 0;
    for (std::size_t at = 0; at + 100 <= samples.size(); at += 100) {
        const auto chunk = resampler->process(std::span{samples}.subspan(at, 100));
        largest = std::max(largest, chunk.size());
        if (chunk.size() > 54) {
            ++over;
            // A chunk beyond the capacity takes all that waited along, 10 ms or more.
            EXPECT_GE(chunk.size(), MicResampler::mostWaitingSamples);
        }
        append(output, chunk);
    }
    EXPECT_GT(over, 0U);
    EXPECT_LT(largest, 2400U);
    // Nothing lost, nothing out of order.
    const std::size_t common = std::min(whole.size(), output.size());
    ASSERT_GT(common, 235'000U);
    for (std::size_t i = 0; i < common; ++i)
        ASSERT_NEAR(output[i], whole[i], 1) << i;
}

TEST(MicResamplerTest, buildsUpNoDelayOverALongCall) {
    for (const std::size_t frames : {4U, 100U, 9600U}) {
        const auto resampler = MicResampler::create(44'100, 1);
        const auto buffer = sine(440, 44'100, frames);
        const std::size_t buffers = 44'100 * 120 / frames;
        std::size_t total = 0;
        for (std::size_t i = 0; i < buffers; ++i)
            total += resampler->process(buffer).size();
        const double expected = static_cast<double>(buffers * frames) * 24'000 / 44'100;
        // Filter lag, waiting samples and one block of the converter: under 100 ms.
        EXPECT_NEAR(static_cast<double>(total), expected, 2400) << frames;
    }
}

}  // namespace
}  // namespace corvellan::test

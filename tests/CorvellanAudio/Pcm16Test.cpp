#include "CorvellanAudio/Pcm16.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <vector>

namespace corvellan::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> resampled(const std::vector<float>& samples, double fromRate, double toRate = 24'000) {
    std::vector<char> bytes(2 * resampledCount(samples.size(), fromRate, toRate));
    resampleToPCM16(samples, fromRate, toRate, bytes);
    std::vector<int> values;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        values.push_back(static_cast<std::int16_t>(static_cast<unsigned char>(bytes[i]) |
                                                   static_cast<unsigned char>(bytes[i + 1]) << 8));
    return values;
}

TEST(Pcm16Test, takesEverySecondSampleAtTwiceTheRate) {
    EXPECT_THAT(resampled({0.0F, 0.9F, 0.5F, -0.9F, -0.25F, 0.1F}, 48'000), ElementsAre(0, 16383, -8191));
}

TEST(Pcm16Test, dropsTheFractionAtTheEndOfAChunk) {
    EXPECT_THAT(resampled({1.0F, 0.0F, -1.0F, 0.0F, 1.0F}, 48'000), ElementsAre(32767, -32767));
}

TEST(Pcm16Test, makesNothingOfOneSampleAtTwiceTheRate) {
    EXPECT_EQ(resampledCount(1, 48'000, 24'000), 0U);
    EXPECT_THAT(resampled({1.0F}, 48'000), IsEmpty());
    EXPECT_THAT(resampled({}, 48'000), IsEmpty());
}

TEST(Pcm16Test, scalesFullScaleTo32767AndClampsWhatIsLouder) {
    EXPECT_THAT(resampled({1.0F, -1.0F, 1.5F, -1.5F, 1e30F, -1e30F}, 24'000),
                ElementsAre(32767, -32767, 32767, -32767, 32767, -32767));
}

TEST(Pcm16Test, truncatesTowardsZero) {
    // 0.5 * 32767 = 16383.5.
    EXPECT_THAT(resampled({0.5F, -0.5F, 0.00003F, -0.00003F}, 24'000), ElementsAre(16383, -16383, 0, 0));
}

TEST(Pcm16Test, makes240SamplesOf441At44100Hertz) {
    EXPECT_EQ(resampledCount(441, 44'100, 24'000), 240U);
    EXPECT_EQ(resampledCount(440, 44'100, 24'000), 239U);
    EXPECT_EQ(resampledCount(882, 44'100, 24'000), 480U);
}

TEST(Pcm16Test, interpolatesInTheGivenArithmetic) {
    std::vector<float> ramp(441);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<float>(i) / 1000.0F;
    const auto values = resampled(ramp, 44'100);
    ASSERT_EQ(values.size(), 240U);
    constexpr double ratio = 44'100.0 / 24'000.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double position = static_cast<double>(i) * ratio;
        const auto base = static_cast<std::size_t>(position);
        const auto frac = static_cast<float>(position - static_cast<double>(base));
        const float value = ramp[base] + (ramp[base + 1] - ramp[base]) * frac;
        EXPECT_EQ(values[i], static_cast<int>(value * 32767.0F)) << i;
    }
}

TEST(Pcm16Test, repeatsTheFinalSampleInsteadOfReadingPastTheEnd) {
    // Three times up: the last three lie at 1, 1.33 and 1.67, between the last sample and itself.
    EXPECT_THAT(resampled({0.0F, 1.0F}, 8'000), ElementsAre(0, 10922, 21844, 32767, 32767, 32767));
}

TEST(Pcm16Test, startsEveryChunkAtPhaseZero) {
    const std::vector<float> chunk{0.1F, 0.2F, 0.3F};
    EXPECT_EQ(resampled(chunk, 44'100), resampled(chunk, 44'100));
    EXPECT_EQ(resampled(chunk, 44'100).front(), static_cast<int>(0.1F * 32767.0F));
}

TEST(Pcm16Test, writesLittleEndianBytes) {
    std::vector<char> bytes(4);
    // 258 = 0x0102, -2 = 0xFFFE.
    resampleToPCM16(std::vector{258.5F / 32767.0F, -2.5F / 32767.0F}, 24'000, 24'000, bytes);
    EXPECT_THAT(bytes, ElementsAre('\x02', '\x01', '\xFE', '\xFF'));

    storeLittleEndian(std::vector<std::int16_t>{258, -2}, bytes);
    EXPECT_THAT(bytes, ElementsAre('\x02', '\x01', '\xFE', '\xFF'));
}

TEST(Pcm16Test, countsNaNAsZeroAndSurvivesInfinity) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_THAT(resampled({nan, 1.0F}, 24'000), ElementsAre(0, 32767));
    EXPECT_THAT(resampled({1.0F, nan}, 16'000), ElementsAre(32767, 10922, 0));
    EXPECT_THAT(resampled({infinity, infinity, -infinity}, 24'000), ElementsAre(0, 0, 0));
}

TEST(Pcm16Test, makesNothingWhereTheRatesMakeNoRatio) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [from, to] :
         {std::pair{0.0, 24'000.0}, {24'000.0, 0.0}, {-1.0, 24'000.0}, {nan, 24'000.0}, {24'000.0, nan}, {1e-300, 1e9}})
        EXPECT_EQ(resampledCount(1000, from, to), 0U) << from << " to " << to;
}

TEST(Pcm16Test, truncatesTheCapacity) {
    EXPECT_EQ(outputCapacity(44'100, 9600), 5224U);
    EXPECT_EQ(outputCapacity(48'000, 9600), 4800U);
    EXPECT_EQ(outputCapacity(24'000, 9600), 9600U);
    EXPECT_EQ(outputCapacity(16'000, 9600), 14'400U);
    EXPECT_EQ(outputCapacity(48'000, 1), 0U);
    EXPECT_EQ(outputCapacity(48'000, 0), 0U);
    EXPECT_EQ(outputCapacity(0, 9600), 0U);
}

}  // namespace
}  // namespace corvellan::test

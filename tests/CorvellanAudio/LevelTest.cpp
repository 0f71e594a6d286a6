#include "CorvellanAudio/Level.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace corvellan::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(LevelTest, ofNothingIsZero) {
    EXPECT_EQ(computeRMS({}), 0.0F);
    EXPECT_EQ(firstChannelRMS({}, 1), 0.0F);
    EXPECT_EQ(firstChannelRMS(std::vector{1.0F}, 0), 0.0F);
    // No whole frame.
    EXPECT_EQ(firstChannelRMS(std::vector{1.0F}, 2), 0.0F);
}

TEST(LevelTest, isTheRootOfTheMeanOfTheSquares) {
    EXPECT_EQ(computeRMS(std::vector{0.5F, -0.5F, 0.5F, -0.5F}), 0.5F);
    EXPECT_EQ(computeRMS(std::vector{3.0F, 4.0F, 0.0F, 0.0F}), 2.5F);
    EXPECT_EQ(computeRMS(std::vector{-1.0F}), 1.0F);
}

TEST(LevelTest, addsInSinglePrecision) {
    // 1 + 2^-25 is 1 in single precision, however often it is added.
    std::vector<float> samples(1025, 0.000172633F);
    samples[0] = 1.0F;
    EXPECT_EQ(computeRMS(samples), std::sqrt(1.0F / 1025.0F));
}

TEST(LevelTest, countsNaNAsZero) {
    EXPECT_EQ(computeRMS(std::vector{nan, 1.0F, nan, 1.0F}), std::sqrt(0.5F));
    EXPECT_EQ(firstChannelRMS(std::vector{nan, 1.0F, 1.0F, nan}, 2), std::sqrt(0.5F));
}

TEST(LevelTest, ofTheMicrophoneIsThatOfItsFirstChannel) {
    EXPECT_EQ(firstChannelRMS(std::vector{0.25F, 1.0F, -0.25F, -1.0F}, 2), 0.25F);
    EXPECT_EQ(firstChannelRMS(std::vector{0.25F, -0.25F}, 1), 0.25F);
    // The fifth sample is no frame.
    EXPECT_EQ(firstChannelRMS(std::vector{0.25F, 1.0F, -0.25F, -1.0F, 9.0F}, 2), 0.25F);
}

}  // namespace
}  // namespace corvellan::test

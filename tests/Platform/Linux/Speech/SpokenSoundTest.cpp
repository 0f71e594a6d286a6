#include "Platform/Linux/Speech/SpokenSound.h"

#include <gtest/gtest.h>

#include "WavBytes.h"

namespace corvellan::test {
namespace {

std::vector<float> all(SpokenSound& sound) {
    const auto samples = sound.take(sound.size());
    return {samples.begin(), samples.end()};
}

TEST(SpokenSoundTest, givesTheSamplesBehindTheHead) {
    SpokenSound sound;
    sound.add(wavHead() + littleEndian<std::int16_t>(16'384) + littleEndian<std::int16_t>(-32'768));
    EXPECT_EQ(sound.sampleRateHertz(), 22'050U);
    EXPECT_EQ(all(sound), (std::vector{0.5F, -1.0F}));
    EXPECT_EQ(sound.size(), 0U);
}

TEST(SpokenSoundTest, takesAFileByteByByte) {
    SpokenSound sound;
    std::vector<float> heard;
    for (const char byte :
         wavHead({.rate = 16'000}, "LIST" + littleEndian<std::uint32_t>(3) + "abc" + QByteArray{1, '\0'}) +
             littleEndian<std::int16_t>(8192) + littleEndian<std::int16_t>(-8192)) {
        sound.add({&byte, 1});
        for (const float sample : all(sound))
            heard.push_back(sample);
    }
    EXPECT_EQ(sound.sampleRateHertz(), 16'000U);
    EXPECT_EQ(heard, (std::vector{0.25F, -0.25F}));
}

TEST(SpokenSoundTest, isBrokenWithoutAHeadOfThisKind) {
    for (const QByteArray& bytes :
         {QByteArray{"Error: no such voice\n"}, wavHead({.channels = 2}), wavHead({.bits = 8}),
          wavHead({.encoding = 3}), wavHead({.rate = 0}), wavHead({.rate = 4'000'000'000}),
          "RIFF" + littleEndian<std::uint32_t>(0) + "WAVEdata" + littleEndian<std::uint32_t>(4) + "abcd",
          "RIFF" + littleEndian<std::uint32_t>(0) + "WAVEfmt " + littleEndian<std::uint32_t>(4) + "abcd",
          "RIFF" + littleEndian<std::uint32_t>(0) + "WAVELIST" + littleEndian<std::uint32_t>(0xFFFFFFFF)}) {
        SpokenSound sound;
        sound.add(bytes);
        EXPECT_TRUE(sound.isBroken()) << bytes.toHex().constData();
        sound.add(wavHead() + "abcd");
        EXPECT_EQ(sound.size(), 0U);
    }
}

TEST(SpokenSoundTest, isTakenInPieces) {
    SpokenSound sound;
    sound.add(wavHead());
    std::vector<float> heard;
    for (std::int16_t i = 0; i < 1000; ++i) {
        sound.add(littleEndian<std::int16_t>(i));
        if (i % 3 == 0)
            for (const float sample : sound.take(2))
                heard.push_back(sample);
    }
    for (const float sample : all(sound))
        heard.push_back(sample);
    ASSERT_EQ(heard.size(), 1000U);
    for (std::size_t i = 0; i < heard.size(); ++i)
        ASSERT_EQ(heard[i], static_cast<float>(i) / 32'768.0F);
}

}  // namespace
}  // namespace corvellan::test

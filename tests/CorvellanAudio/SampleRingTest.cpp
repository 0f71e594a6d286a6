#include "CorvellanAudio/SampleRing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <thread>

namespace corvellan::test {
namespace {

using testing::ElementsAre;

/// Samples `from`, `from` + 1, ...: exact in single precision up to 2^24.
std::vector<float> counting(std::size_t from, std::size_t count) {
    std::vector<float> samples(count);
    std::iota(samples.begin(), samples.end(), static_cast<float>(from));
    return samples;
}

std::vector<float> read(SampleRing& ring, std::size_t count) {
    std::vector<float> into(count);
    into.resize(ring.read(into));
    return into;
}

class SampleRingTest : public testing::Test {
protected:
    void write(const std::vector<float>& samples, int channels = 1) { ring.write(samples, channels, mono); }

    SampleRing ring;
    std::vector<float> mono;
};

TEST_F(SampleRingTest, givesNothingWhenNothingWasWritten) {
    EXPECT_EQ(read(ring, 10).size(), 0U);
    EXPECT_EQ(ring.ringReadPos(), 0);
}

TEST_F(SampleRingTest, leavesTheRestOfTheArrayUntouched) {
    write({1, 2, 3, 4});
    std::vector<float> into(10, -7.0F);
    EXPECT_EQ(ring.read(into), 4U);
    EXPECT_THAT(into, ElementsAre(1, 2, 3, 4, -7, -7, -7, -7, -7, -7));
    EXPECT_EQ(ring.ringReadPos(), 4);
}

TEST_F(SampleRingTest, givesAtMostWhatFits) {
    write({1, 2, 3, 4});
    EXPECT_THAT(read(ring, 3), ElementsAre(1, 2, 3));
    EXPECT_THAT(read(ring, 3), ElementsAre(4));
}

TEST_F(SampleRingTest, holdsAWholeRingUnread) {
    write(counting(0, 65'536));
    EXPECT_EQ(read(ring, 70'000), counting(0, 65'536));
    EXPECT_EQ(ring.ringReadPos(), 65'536);
}

TEST_F(SampleRingTest, startsAnOverrunReaderAtTheNewestHalf) {
    write(counting(0, 65'536));
    write({65'536});
    const auto samples = read(ring, 10);
    EXPECT_EQ(samples, counting(65'537 - 32'768, 10));
    EXPECT_EQ(ring.ringReadPos(), 65'537 - 32'768 + 10);
    EXPECT_EQ(read(ring, 70'000).size(), 32'768U - 10U);
}

TEST_F(SampleRingTest, keepsItsPositionsGrowingPastTheRing) {
    std::size_t next = 0;
    for (int round = 0; round < 10; ++round) {
        write(counting(next, 20'000));
        EXPECT_EQ(read(ring, 20'000), counting(next, 20'000));
        next += 20'000;
    }
    EXPECT_EQ(ring.ringReadPos(), 200'000);
}

TEST_F(SampleRingTest, keepsTheNewestOfABufferLargerThanItself) {
    write(counting(0, 100'000));
    EXPECT_EQ(mono.size(), 100'000U);
    const auto samples = read(ring, 100'000);
    EXPECT_EQ(samples, counting(100'000 - 32'768, 32'768));
    EXPECT_EQ(ring.ringReadPos(), 100'000);
}

TEST_F(SampleRingTest, dropsTheOddFloatOfTwoChannels) {
    write({1, 3, 5, 7, 9}, 2);
    EXPECT_THAT(mono, ElementsAre(2, 6));
    EXPECT_THAT(read(ring, 10), ElementsAre(2, 6));
}

TEST_F(SampleRingTest, takesTheMeanInSinglePrecision) {
    // 2^24 + 1 is 2^24 again; in double precision the mean would be 5592406.
    write({16'777'216.0F, 1.0F, 1.0F}, 3);
    EXPECT_THAT(mono, ElementsAre(5'592'405.5F));
}

TEST_F(SampleRingTest, copiesWhatIsMonoAlready) {
    for (const int channels : {1, 0, -1}) {
        write({0.1F, 0.2F}, channels);
        EXPECT_THAT(mono, ElementsAre(0.1F, 0.2F)) << channels;
    }
}

TEST_F(SampleRingTest, countsNaNAsZero) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    write({nan, 0.5F}, 1);
    EXPECT_THAT(mono, ElementsAre(0.0F, 0.5F));
    write({nan, 0.5F, infinity, -infinity}, 2);
    EXPECT_THAT(mono, ElementsAre(0.25F, 0.0F));
    EXPECT_THAT(read(ring, 4), ElementsAre(0.0F, 0.5F, 0.25F, 0.0F));
}

TEST_F(SampleRingTest, handsSamplesToAReaderOnAnotherThreadInOrder) {
    constexpr std::size_t total = 960 * 200;
    std::atomic<bool> isDone = false;
    std::thread writer{[&] {
        for (std::size_t next = 0; next < total; next += 960)
            write(counting(next, 960));
        isDone = true;
    }};
    float last = -1.0F;
    std::vector<float> into(500);
    while (true) {
        const bool wasDone = isDone;
        const std::size_t count = ring.read(into);
        for (std::size_t i = 0; i < count; ++i) {
            // Gaps are overruns; going back would be a torn read.
            ASSERT_GT(into[i], last);
            last = into[i];
        }
        if (wasDone && count == 0)
            break;
    }
    writer.join();
    EXPECT_EQ(last, static_cast<float>(total - 1));
    EXPECT_EQ(ring.ringReadPos(), static_cast<std::int64_t>(total));
}

}  // namespace
}  // namespace corvellan::test

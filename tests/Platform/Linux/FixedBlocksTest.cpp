#include "Platform/Linux/FixedBlocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

namespace corvellan::test {
namespace {

using testing::ElementsAre;

std::vector<std::vector<float>> regrouped(const std::vector<std::size_t>& pieces, std::size_t block) {
    FixedBlocks blocks{block};
    std::vector<std::vector<float>> result;
    float next = 0;
    for (const std::size_t length : pieces) {
        std::vector<float> piece(length);
        std::iota(piece.begin(), piece.end(), next);
        next += static_cast<float>(length);
        blocks.add(piece, [&](std::span<const float> samples) { result.emplace_back(samples.begin(), samples.end()); });
    }
    return result;
}

TEST(FixedBlocksTest, waitsForAWholeBlock) {
    EXPECT_TRUE(regrouped({}, 3).empty());
    EXPECT_TRUE(regrouped({0, 1, 1}, 3).empty());
    EXPECT_THAT(regrouped({1, 1, 1}, 3), ElementsAre(ElementsAre(0, 1, 2)));
}

TEST(FixedBlocksTest, splitsWhatIsLonger) {
    EXPECT_THAT(regrouped({7, 2}, 3), ElementsAre(ElementsAre(0, 1, 2), ElementsAre(3, 4, 5), ElementsAre(6, 7, 8)));
}

TEST(FixedBlocksTest, joinsWhatWaitsWithWhatComes) {
    EXPECT_THAT(regrouped({2, 5}, 3), ElementsAre(ElementsAre(0, 1, 2), ElementsAre(3, 4, 5)));
}

TEST(FixedBlocksTest, neverStandsStill) {
    EXPECT_THAT(regrouped({2}, 0), ElementsAre(ElementsAre(0), ElementsAre(1)));
}

}  // namespace
}  // namespace corvellan::test

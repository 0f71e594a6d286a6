#include "Services/ScreenShare/FrontmostWindow.h"

#include <gtest/gtest.h>

namespace corvellan::test {

namespace {

constexpr std::int64_t own = 10;
constexpr std::int64_t other = 20;

ShareableWindow window(std::uint32_t id, std::int64_t processId = other) {
    return {.id = id, .processId = processId, .isOnScreen = true, .frame = {0, 0, 800, 600}};
}

/// The id of the window that is picked; 0 for the display.
std::uint32_t picked(std::vector<ShareableWindow> windows, std::optional<std::int64_t> frontmost = other) {
    const ShareableContent content{.displays = {{}}, .windows = std::move(windows), .frontmostProcessId = frontmost};
    const auto found = pickFrontmostWindow(content, own);
    return found ? found->id : 0;
}

TEST(FrontmostWindowTest, isTheFirstOneOfTheFrontmostProgram) {
    EXPECT_EQ(picked({window(1, 30), window(2), window(3)}), 2U);
}

TEST(FrontmostWindowTest, isNoneWithoutAFrontmostProgram) {
    EXPECT_EQ(picked({window(1)}, std::nullopt), 0U);
    // Nobody's window is not the window of a program that nobody knows.
    ShareableWindow nobodys = window(1);
    nobodys.processId = std::nullopt;
    EXPECT_EQ(picked({nobodys}, std::nullopt), 0U);
    EXPECT_EQ(picked({nobodys}), 0U);
}

TEST(FrontmostWindowTest, isNoneWhenThisProgramIsFrontmost) {
    EXPECT_EQ(picked({window(1, own), window(2)}, own), 0U);
}

TEST(FrontmostWindowTest, isNoneWhenTheFrontmostProgramHasNoWindow) {
    EXPECT_EQ(picked({window(1, 30)}), 0U);
    EXPECT_EQ(picked({}), 0U);
}

TEST(FrontmostWindowTest, isOnScreen) {
    ShareableWindow hidden = window(1);
    hidden.isOnScreen = false;
    EXPECT_EQ(picked({hidden}), 0U);
    EXPECT_EQ(picked({hidden, window(2)}), 2U);
}

TEST(FrontmostWindowTest, isOnLayerZero) {
    for (const int layer : {-1, 1, 3, 25}) {
        ShareableWindow raised = window(1);
        raised.layer = layer;
        EXPECT_EQ(picked({raised}), 0U) << layer;
        EXPECT_EQ(picked({raised, window(2)}), 2U) << layer;
    }
}

TEST(FrontmostWindowTest, isWiderAndTallerThan100Points) {
    const auto of = [](int width, int height) {
        ShareableWindow sized = window(1);
        sized.frame = {5, 5, width, height};
        return picked({sized});
    };
    EXPECT_EQ(of(101, 101), 1U);
    EXPECT_EQ(of(100, 600), 0U);
    EXPECT_EQ(of(800, 100), 0U);
    EXPECT_EQ(of(100, 100), 0U);
    EXPECT_EQ(of(101, 100), 0U);
    EXPECT_EQ(of(0, 0), 0U);
}

TEST(FrontmostWindowTest, smallWindowsAndRaisedOnesOnlyLeaveTheDisplay) {
    ShareableWindow small = window(1);
    small.frame = {0, 0, 100, 100};
    ShareableWindow raised = window(2);
    raised.layer = 3;
    EXPECT_EQ(picked({small, raised, window(3, 30)}), 0U);
}

}  // namespace

}  // namespace corvellan::test

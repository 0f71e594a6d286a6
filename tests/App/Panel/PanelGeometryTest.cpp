#include "App/Panel/PanelGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace corvellan::panel {

namespace {

constexpr QRect available{0, 30, 1920, 1050};

TEST(PanelGeometryTest, theMiniSizeTimesOneAndAHalfIs900By54) {
    EXPECT_EQ(sessionSize(u"mini", 1.5), QSize(900, 54));
}

TEST(PanelGeometryTest, aScaleBelowOneOrAbsentCountsAsOne) {
    EXPECT_EQ(sessionSize(u"coach", 0.8), QSize(500, 400));
    EXPECT_EQ(sessionSize(u"coach", std::nullopt), QSize(500, 400));
    EXPECT_EQ(sessionSize(u"coach", -3.0), QSize(500, 400));
}

TEST(PanelGeometryTest, anUnknownModeHasTheFullBase) {
    EXPECT_EQ(sessionSize(u"full", 1.0), QSize(700, 350));
    EXPECT_EQ(sessionSize(u"banana", 2.0), QSize(1400, 700));
    EXPECT_EQ(sessionSize(u"", 1.0), QSize(700, 350));
    EXPECT_EQ(sessionSize(u"Mini", 1.0), QSize(700, 350)) << "the comparison is exact";
}

TEST(PanelGeometryTest, aDamagedScaleNeverMakesAnAbsurdWindow) {
    EXPECT_EQ(sessionSize(u"mini", std::nan("")), QSize(600, 36));
    EXPECT_LE(sessionSize(u"full", std::numeric_limits<double>::infinity()).width(), 10'000);
    EXPECT_LE(sessionSize(u"full", 1e300).width(), 10'000);
}

TEST(PanelGeometryTest, centeredOriginKeepsTheHorizontalCentreAndTheTopEdge) {
    EXPECT_EQ(centeredOrigin({700, 350}, {500, 200, 680, 520}, available), QPoint(490, 200));
    EXPECT_EQ(centeredOrigin({600, 36}, {490, 200, 700, 350}, available), QPoint(540, 200));
}

TEST(PanelGeometryTest, aWindowNearTheRightEdgeThatGrowsStaysInside) {
    EXPECT_EQ(centeredOrigin({1400, 700}, {1300, 100, 600, 400}, available), QPoint(520, 100));
    EXPECT_EQ(centeredOrigin({700, 900}, {100, 600, 700, 350}, available), QPoint(100, 180));
}

TEST(PanelGeometryTest, theLeftAndTheTopBoundWinForAWindowTooLarge) {
    EXPECT_EQ(centeredOrigin({2400, 1300}, {0, 30, 600, 400}, available), QPoint(0, 30));
}

TEST(PanelGeometryTest, theFreeAreaOfASecondScreenMayBeginAnywhere) {
    constexpr QRect second{-1280, -200, 1280, 1024};
    EXPECT_EQ(centeredOrigin({700, 350}, {-1400, -300, 680, 520}, second), QPoint(-1280, -200));
}

TEST(PanelGeometryTest, withoutAScreenNothingIsClamped) {
    EXPECT_EQ(centeredOrigin({2000, 350}, {-500, -900, 700, 350}, std::nullopt), QPoint(-1150, -900));
}

TEST(PanelGeometryTest, middleOriginCentresOnTheFreeArea) {
    EXPECT_EQ(middleOrigin({700, 350}, available), QPoint(610, 380));
    EXPECT_EQ(middleOrigin({2400, 1300}, available), QPoint(0, 30));
}

}  // namespace

}  // namespace corvellan::panel

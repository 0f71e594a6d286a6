#include "App/MenuBar/TrayStatusBar.h"

#include <gtest/gtest.h>

namespace corvellan::test {

namespace {

TEST(TrayStatusBarTest, withoutBusAndDisplayThereIsNoItem) {
    TrayStatusBar bar;
    EXPECT_FALSE(bar.isShown());
    EXPECT_EQ(bar.makeStatusItem(), nullptr);
}

}  // namespace

}  // namespace corvellan::test

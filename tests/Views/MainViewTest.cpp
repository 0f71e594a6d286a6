#include "Views/MainView.h"

#include <gtest/gtest.h>

#include "Support/SessionFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

TEST(MainViewTest, theIdleSurfaceIsOpaqueAndSquare) {
    SessionFixture fixture;
    const MainView view{fixture.session()};
    EXPECT_EQ(view.surfaceColor().alpha(), 255);
    EXPECT_EQ(view.surfaceRadius(), 0);
}

TEST(MainViewTest, theCallSurfaceIsBlackAndThinnerInStealth) {
    SessionFixture fixture;
    auto& session = fixture.session();
    const MainView view{session};
    session.startSession();
    settle();
    EXPECT_EQ(view.surfaceColor().rgb(), QColor(0, 0, 0).rgb());
    EXPECT_NEAR(view.surfaceColor().alphaF(), 0.9, 0.01);
    EXPECT_EQ(view.surfaceRadius(), 10);

    session.setIsStealthEnabled(true);
    EXPECT_NEAR(view.surfaceColor().alphaF(), 0.6, 0.01);

    session.setSessionMode(u"mini"_s);
    EXPECT_EQ(view.surfaceRadius(), 6);
}

}  // namespace

}  // namespace corvellan::test

#include "Views/MainView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/SessionFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

TEST(MainViewTest, theIdleSurfaceIsOpaqueAndSquare) {
    SessionFixture fixture;
    const Theme theme;
    const MainView view{fixture.session(), theme};
    EXPECT_EQ(view.surfaceColor().alpha(), 255);
    EXPECT_EQ(view.surfaceRadius(), 0);
}

TEST(MainViewTest, theCallSurfaceIsBlackAndThinnerInStealth) {
    SessionFixture fixture;
    auto& session = fixture.session();
    const Theme theme;
    const MainView view{session, theme};
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

TEST(MainViewTest, theIdleSurfaceFollowsTheScheme) {
    SessionFixture fixture;
    Theme theme;
    const MainView view{fixture.session(), theme};
    QSignalSpy changes{&view, &MainView::surfaceChanged};
    theme.setIsDark(false);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_GT(view.surfaceColor().lightness(), 200);
    fixture.session().startSession();
    settle();
    EXPECT_EQ(view.surfaceColor().rgb(), QColor(0, 0, 0).rgb()) << "a call is dark whatever the desktop is";
}

TEST(MainViewTest, settingsAreAFaceBetweenCalls) {
    SessionFixture fixture;
    const Theme theme;
    MainView view{fixture.session(), theme};
    QSignalSpy changes{&view, &MainView::faceChanged};
    EXPECT_EQ(view.face(), u"home"_s);
    view.showSettings();
    view.showSettings();
    EXPECT_EQ(view.face(), u"settings"_s);
    EXPECT_EQ(changes.count(), 1);
    view.showHome();
    EXPECT_EQ(view.face(), u"home"_s);
    EXPECT_EQ(changes.count(), 2);
}

TEST(MainViewTest, aCallTakesTheSettingsPlaceAndLeavesHome) {
    SessionFixture fixture;
    const Theme theme;
    MainView view{fixture.session(), theme};
    view.showSettings();
    fixture.session().startSession();
    settle();
    EXPECT_EQ(view.face(), u"call"_s);
    fixture.session().stopSession();
    settle();
    EXPECT_EQ(view.face(), u"home"_s);
}

TEST(MainViewTest, aRequestedTabIsShownAndTheRequestCleared) {
    SessionFixture fixture;
    const Theme theme;
    MainView view{fixture.session(), theme};
    fixture.session().setRequestedTab(u"settings"_s);
    EXPECT_EQ(view.face(), u"settings"_s);
    EXPECT_FALSE(fixture.session().requestedTab());
    fixture.session().setRequestedTab(u"home"_s);
    EXPECT_EQ(view.face(), u"home"_s);
    EXPECT_FALSE(fixture.session().requestedTab());
}

TEST(MainViewTest, aRequestForATabThatIsNotThereStays) {
    SessionFixture fixture;
    const Theme theme;
    MainView view{fixture.session(), theme};
    fixture.session().setRequestedTab(u"train"_s);
    EXPECT_EQ(view.face(), u"home"_s);
    EXPECT_EQ(fixture.session().requestedTab(), u"train"_s);
}

TEST(MainViewTest, settingsRequestedInACallShowAfterIt) {
    SessionFixture fixture;
    const Theme theme;
    MainView view{fixture.session(), theme};
    fixture.session().startSession();
    settle();
    fixture.session().setRequestedTab(u"settings"_s);
    EXPECT_EQ(view.face(), u"call"_s);
    fixture.session().stopSession();
    settle();
    EXPECT_EQ(view.face(), u"settings"_s);
}

}  // namespace

}  // namespace corvellan::test

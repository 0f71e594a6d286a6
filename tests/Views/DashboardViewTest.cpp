#include "Views/DashboardView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/FakeDesktop.h"
#include "Support/SessionFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class DashboardViewTest : public ::testing::Test {
protected:
    SessionViewModel& session() { return fixture.session(); }

    DashboardView& view() {
        if (!m_view)
            m_view = std::make_unique<DashboardView>(DashboardView::Parts{.session = session(),
                                                                          .theme = theme,
                                                                          .preferences = fixture.preferences,
                                                                          .browser = desktop.browser,
                                                                          .chatUrl = u"https://chat.test"_s,
                                                                          .version = version});
        return *m_view;
    }

    [[nodiscard]] QStringList titles() {
        QStringList titles;
        for (const QVariant& row : view().property("visibleTabs").toList())
            titles.push_back(row.toMap().value(u"title"_s).toString());
        return titles;
    }

    void useProductionServer() { session().setServerURL(u"wss://coach.test/ws"_s); }
    void useLocalServer() { session().setServerURL(u"ws://127.0.0.1:3001/ws"_s); }

    Theme theme;
    FakeDesktop desktop;
    QString version = u"1.2.3"_s;
    SessionFixture fixture;

private:
    std::unique_ptr<DashboardView> m_view;
};

// MARK: - Faces and surface

TEST_F(DashboardViewTest, aRunningSessionTakesTheWindow) {
    QSignalSpy changes{&view(), &DashboardView::faceChanged};
    EXPECT_EQ(view().face(), u"main"_s);
    session().startSession();
    settle();
    EXPECT_EQ(view().face(), u"session"_s);
    session().stopSession();
    settle();
    EXPECT_EQ(view().face(), u"main"_s);
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(DashboardViewTest, theOnboardingWaitsForAUserWhoIsSignedIn) {
    useProductionServer();
    EXPECT_TRUE(view().showOnboarding());
    EXPECT_EQ(view().face(), u"main"_s);
    QSignalSpy changes{&view(), &DashboardView::faceChanged};
    session().setUserEmail(u"sandra@nordwind.example"_s);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().face(), u"onboarding"_s);
    session().setUserEmail(std::nullopt);
    EXPECT_EQ(view().face(), u"main"_s);
}

TEST_F(DashboardViewTest, onALocalServerNobodyIsOnboardedWithoutSigningIn) {
    useLocalServer();
    EXPECT_TRUE(view().isOpenToUser());
    EXPECT_EQ(view().face(), u"main"_s);
}

TEST_F(DashboardViewTest, whoWasOnboardedIsNotOnboardedAgain) {
    fixture.preferences.setBoolean(u"onboardingCompleted"_s, true);
    session().setUserEmail(u"sandra@nordwind.example"_s);
    EXPECT_FALSE(view().showOnboarding());
    EXPECT_EQ(view().face(), u"main"_s);
}

TEST_F(DashboardViewTest, aStoredFalseStillAsksForTheOnboarding) {
    fixture.preferences.setBoolean(u"onboardingCompleted"_s, false);
    session().setUserEmail(u"sandra@nordwind.example"_s);
    EXPECT_EQ(view().face(), u"onboarding"_s);
}

TEST_F(DashboardViewTest, theOnboardingsEndLeadsToTheMainLayout) {
    session().setUserEmail(u"sandra@nordwind.example"_s);
    ASSERT_EQ(view().face(), u"onboarding"_s);
    QSignalSpy changes{&view(), &DashboardView::faceChanged};
    view().completeOnboarding();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().face(), u"main"_s);
}

TEST_F(DashboardViewTest, aSessionComesBeforeTheOnboarding) {
    session().setUserEmail(u"sandra@nordwind.example"_s);
    view();
    session().startSession();
    settle();
    EXPECT_EQ(view().face(), u"session"_s);
    session().stopSession();
    settle();
    EXPECT_EQ(view().face(), u"onboarding"_s);
}

TEST_F(DashboardViewTest, theIdleSurfaceIsOpaqueAndSquare) {
    EXPECT_EQ(view().surfaceColor().alpha(), 255);
    EXPECT_EQ(view().surfaceRadius(), 0);
}

TEST_F(DashboardViewTest, theCallSurfaceIsBlackAndThinnerInStealth) {
    view();
    session().startSession();
    settle();
    EXPECT_EQ(view().surfaceColor().rgb(), QColor(0, 0, 0).rgb());
    EXPECT_NEAR(view().surfaceColor().alphaF(), 0.9, 0.01);
    EXPECT_EQ(view().surfaceRadius(), 10);

    session().setIsStealthEnabled(true);
    EXPECT_NEAR(view().surfaceColor().alphaF(), 0.6, 0.01);

    session().setSessionMode(u"mini"_s);
    EXPECT_EQ(view().surfaceRadius(), 6);
}

TEST_F(DashboardViewTest, theIdleSurfaceFollowsTheScheme) {
    QSignalSpy changes{&view(), &DashboardView::surfaceChanged};
    theme.setIsDark(false);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_GT(view().surfaceColor().lightness(), 200);
    session().startSession();
    settle();
    EXPECT_EQ(view().surfaceColor().rgb(), QColor(0, 0, 0).rgb()) << "a call is dark whatever the desktop is";
}

// MARK: - Sidebar

TEST_F(DashboardViewTest, signedOutOnAProductionServerThereAreHomeSettingsAndLogin) {
    useProductionServer();
    EXPECT_EQ(titles(), (QStringList{u"Home"_s, u"Settings"_s}));
    EXPECT_FALSE(view().isOpenToUser());
    EXPECT_TRUE(view().canLogin());
    EXPECT_EQ(view().sidebarUsername(), QString{});
}

TEST_F(DashboardViewTest, whoeverIsSignedInOrNeedNotBeSeesAllSevenTabs) {
    const QStringList all{u"Home"_s, u"Calendar"_s, u"Train"_s, u"History"_s, u"Memory"_s, u"Guide"_s, u"Settings"_s};
    useLocalServer();
    EXPECT_EQ(titles(), all);
    useProductionServer();
    session().setUserEmail(u"sandra@nordwind.example"_s);
    EXPECT_EQ(titles(), all);
}

TEST_F(DashboardViewTest, onALocalServerThereIsNoAccount) {
    useLocalServer();
    EXPECT_TRUE(view().isOpenToUser());
    EXPECT_FALSE(view().canLogin());
    EXPECT_EQ(view().sidebarUsername(), QString{});
}

TEST_F(DashboardViewTest, aSignedInUserIsNamedByTheAddressUpToItsAtSign) {
    useProductionServer();
    QSignalSpy changes{&view(), &DashboardView::visibleTabsChanged};
    session().setUserEmail(u"sandra.weiss@nordwind@example"_s);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().sidebarUsername(), u"sandra.weiss"_s);
    EXPECT_TRUE(view().isOpenToUser());
    EXPECT_FALSE(view().canLogin());
}

TEST_F(DashboardViewTest, aPressSignsOutWithoutAsking) {
    useProductionServer();
    session().setUserEmail(u"sandra@nordwind.example"_s);
    view().logout();
    settle();
    EXPECT_TRUE(fixture.did("auth.logout"));
    EXPECT_FALSE(session().userEmail());
}

TEST_F(DashboardViewTest, aPressSignsIn) {
    useProductionServer();
    view().login();
    settle();
    EXPECT_TRUE(fixture.did("auth.login"));
}

TEST_F(DashboardViewTest, theModesStandInTheirOrderAndOneIsLit) {
    auto& modes = *view().modes();
    QStringList labels;
    for (int row = 0; row < modes.rowCount(); ++row)
        labels.push_back(modes.value(row, "label").toString());
    EXPECT_EQ(labels, (QStringList{u"Sales"_s, u"Channel"_s, u"Cold Call"_s, u"Discovery"_s}));
    EXPECT_EQ(modes.value(0, "accent").value<QColor>(), paint(ColorRole::blue));
    EXPECT_EQ(modes.value(2, "symbol").toString(), u"phone.arrow.up.right"_s);
    EXPECT_TRUE(modes.value(0, "isSelected").toBool());

    view().chooseMode(2);
    EXPECT_EQ(session().coachingMode(), AudienceType::coldCall);
    EXPECT_FALSE(modes.value(0, "isSelected").toBool());
    EXPECT_TRUE(modes.value(2, "isSelected").toBool());
    view().chooseMode(4);
    view().chooseMode(-1);
    EXPECT_EQ(session().coachingMode(), AudienceType::coldCall);
}

TEST_F(DashboardViewTest, theChatOpensInTheBrowser) {
    view().openChat();
    settle();
    ASSERT_EQ(desktop.browser.pages.size(), 1);
    EXPECT_EQ(desktop.browser.pages[0], QUrl{u"https://chat.test"_s});
}

TEST_F(DashboardViewTest, anUpdateIsOfferedAndThePressAsksTheUpdater) {
    QSignalSpy changes{&view(), &DashboardView::updateChanged};
    EXPECT_FALSE(view().isUpdateAvailable());
    session().setUpdateAvailable(true);
    EXPECT_TRUE(view().isUpdateAvailable());
    EXPECT_EQ(changes.count(), 1);
    view().checkForUpdates();  // Without an updater nothing happens.
    FakeUpdater updater;
    session().setSparkleUpdater(&updater);
    view().checkForUpdates();
    EXPECT_EQ(updater.checks, 1);
    session().setSparkleUpdater(nullptr);
}

TEST_F(DashboardViewTest, theCaptionNamesTheVersion) {
    EXPECT_EQ(view().versionText(), u"v1.2.3"_s);
}

TEST_F(DashboardViewTest, aProgramWithoutAVersionHasNoCaption) {
    version.clear();
    EXPECT_EQ(view().versionText(), QString{});
}

// MARK: - Tabs

TEST_F(DashboardViewTest, aTabIsSelectedByItsName) {
    QSignalSpy changes{&view(), &DashboardView::selectedTabChanged};
    EXPECT_EQ(view().selectedTab(), SidebarTab::home);
    view().selectTab(u"settings"_s);
    view().selectTab(u"settings"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::settings);
    EXPECT_EQ(changes.count(), 1);
    view().selectTab(u"nowhere"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::settings);
}

TEST_F(DashboardViewTest, aRequestedTabIsShownAndTheRequestCleared) {
    view();
    session().setRequestedTab(u"settings"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::settings);
    EXPECT_FALSE(session().requestedTab());
    session().setRequestedTab(u"Home"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::home);
    EXPECT_FALSE(session().requestedTab());
}

TEST_F(DashboardViewTest, requestingMemorySelectsTheMemoryTab) {
    view();
    session().setRequestedTab(u"memory"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::memory);
    EXPECT_FALSE(session().requestedTab());
}

TEST_F(DashboardViewTest, requestingTheGuideSelectsItsTab) {
    view();
    session().setRequestedTab(u"guide"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::guide);
    EXPECT_FALSE(session().requestedTab());
}

TEST_F(DashboardViewTest, aRequestThatNamesNoTabStays) {
    view();
    for (const QString& request : {u"nowhere"_s, u"sETTINGS"_s, u""_s}) {
        session().setRequestedTab(request);
        EXPECT_EQ(view().selectedTab(), SidebarTab::home);
        EXPECT_EQ(session().requestedTab(), request);
    }
}

TEST_F(DashboardViewTest, aTabRequestedInACallShowsAfterIt) {
    view();
    session().startSession();
    settle();
    session().setRequestedTab(u"settings"_s);
    EXPECT_EQ(view().face(), u"session"_s);
    session().stopSession();
    settle();
    EXPECT_EQ(view().face(), u"main"_s);
    EXPECT_EQ(view().selectedTab(), SidebarTab::settings);
}

}  // namespace

TEST_F(DashboardViewTest, aSessionThatHasEndedOpensTheHistory) {
    EXPECT_EQ(view().selectedTab(), SidebarTab::home);
    session().setLastSummary(SummaryPayload{});
    EXPECT_EQ(view().selectedTab(), SidebarTab::history);
    view().select(SidebarTab::home);
    session().setLastSummary(SummaryPayload{.turns = 4});
    EXPECT_EQ(view().selectedTab(), SidebarTab::home) << "only one that comes where none was";
}

TEST_F(DashboardViewTest, eachSessionThatEndsWithASummaryLeavesTheUserInTheHistory) {
    view();
    for (const std::uint64_t duration : {60, 90}) {
        view().select(SidebarTab::home);
        fixture.goLive();
        EXPECT_EQ(view().face(), u"session"_s);
        EXPECT_EQ(view().selectedTab(), SidebarTab::home);
        fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = duration}});
        settle();
        session().stopSession();
        settle();
        EXPECT_EQ(view().face(), u"main"_s);
        EXPECT_EQ(view().selectedTab(), SidebarTab::history) << duration;
    }
}

}  // namespace corvellan::test

#include "App/MenuBar/MenuBarController.h"

#include <gtest/gtest.h>

#include <QQuickItem>

#include "MenuBarFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class MenuBarControllerTest : public MenuBarFixture {
protected:
    void SetUp() override { build(desktop.statusBar); }

    [[nodiscard]] const ShownStatusItem& item() const { return *desktop.statusBar.items.at(0); }
    void press(const QString& title) const {
        const auto& menu = item().menu;
        const auto row = std::ranges::find(menu, title, &StatusMenuItem::title);
        ASSERT_NE(row, menu.end()) << title.toStdString();
        row->action();
    }
};

TEST_F(MenuBarControllerTest, theIconIsTheWaveformAndCalledCorvellan) {
    ASSERT_EQ(desktop.statusBar.items.size(), 1U);
    EXPECT_EQ(item().symbol, u"waveform"_s);
    EXPECT_EQ(item().accessibilityDescription, u"Corvellan"_s);
}

TEST_F(MenuBarControllerTest, theMenuHasItsTitlesKeysAndSeparatorsInOrder) {
    const std::vector<std::pair<QString, QChar>> expected{
        {u"Show Main Window"_s, u'o'},
        {{}, {}},
        {u"Start Session"_s, u's'},
        {u"Start Training"_s, u't'},
        {u"End Session"_s, u'e'},
        {u"Toggle Stealth"_s, {}},
        {{}, {}},
        {u"Check for Updates..."_s, {}},
        {{}, {}},
        {u"Quit Corvellan"_s, u'q'},
    };
    std::vector<std::pair<QString, QChar>> shown;
    for (const auto& row : item().menu) {
        shown.emplace_back(row.title, row.key);
        EXPECT_EQ(row.title.isEmpty(), !row.action) << "separators alone do nothing";
    }
    EXPECT_EQ(shown, expected);
}

TEST_F(MenuBarControllerTest, theMenuStaysAsItIsThroughAWholeSession) {
    fixture.goLive();
    press(u"Toggle Stealth"_s);
    press(u"End Session"_s);
    settleAfter(fixture.clock, std::chrono::seconds{4});
    ASSERT_FALSE(fixture.session().isSessionActive());
    EXPECT_EQ(std::ranges::count(desktop.log, "statusItem.setMenu"), 1);
    EXPECT_EQ(std::ranges::count(desktop.log, "statusItem.setImage"), 1);
}

TEST_F(MenuBarControllerTest, withoutAStatusItemTheProgramGoesOn) {
    FakeDesktop bare;
    bare.statusBar.hasItems = false;
    build(bare.statusBar);
    EXPECT_TRUE(bare.statusBar.items.empty());
    EXPECT_FALSE(bare.log.empty()) << "it was asked for";
    controller.reset();
}

TEST_F(MenuBarControllerTest, theItemGoesWithTheController) {
    controller.reset();
    EXPECT_FALSE(item().isThere);
}

TEST_F(MenuBarControllerTest, closingAndThenShowMainWindowBringsTheSameWindowBackWithItsContent) {
    panel.makeKeyAndOrderFront();
    ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    const QObject* const content = panel.rootObject();
    panel.close();
    ASSERT_FALSE(panel.isVisible());

    press(u"Show Main Window"_s);

    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.rootObject(), content);
    ASSERT_EQ(desktop.activation.activations.size(), 1U);
    EXPECT_EQ(desktop.activation.activations[0].first, &panel);
}

TEST_F(MenuBarControllerTest, startSessionShowsTheWindowAndStartsWithAllDefaults) {
    fixture.session().setCoachingMode(AudienceType::directSale);
    press(u"Start Session"_s);
    settle();

    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(desktop.activation.activations.size(), 1U);
    ASSERT_EQ(fixture.ws->sent.size(), 1U);
    const auto* const start = std::get_if<ClientMsg::StartSession>(&fixture.ws->sent[0].value);
    ASSERT_TRUE(start);
    const ClientMsg::StartSession defaults{.clientVersion = u"1.2.3"_s, .audience = AudienceType::directSale};
    EXPECT_EQ(*start, defaults);
    EXPECT_TRUE(fixture.session().isSessionActive());
}

TEST_F(MenuBarControllerTest, startSessionWhileAnotherConnectsTakesItsPlace) {
    fixture.ws->connectGate.close();
    fixture.session().startSession({.company = u"First"_s});
    settle();
    ASSERT_EQ(fixture.session().statusText(), u"Connecting..."_s);

    press(u"Start Session"_s);
    settle();

    EXPECT_EQ(fixture.session().currentCompany(), std::nullopt);
    EXPECT_EQ(fixture.ws->urls.size(), 2U);
}

TEST_F(MenuBarControllerTest, startSessionInACallOnlyShowsTheWindow) {
    fixture.goLive({.company = u"Acme"_s});
    panel.close();
    const auto sent = fixture.ws->sent.size();

    press(u"Start Session"_s);
    settle();

    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(fixture.session().currentCompany(), u"Acme"_s);
    EXPECT_EQ(fixture.ws->sent.size(), sent);
}

TEST_F(MenuBarControllerTest, startTrainingStartsNoSessionAndOnlyOpensTheTab) {
    press(u"Start Training"_s);
    settle();

    EXPECT_EQ(openTab(), SidebarTab::train);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(desktop.activation.activations.size(), 1U);
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
    EXPECT_TRUE(fixture.ws->urls.empty());
}

TEST_F(MenuBarControllerTest, endSessionWithoutASessionGoesToEndSessionWhoseGuardApplies) {
    press(u"End Session"_s);
    settle();
    EXPECT_TRUE(fixture.log.empty()) << "no service was asked for anything";
    EXPECT_FALSE(panel.isVisible()) << "and no window came";

    fixture.goLive();
    press(u"End Session"_s);
    settle();
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(MenuBarControllerTest, toggleStealthFlipsTheFlagAndCallsOnceWithTheNewValue) {
    std::vector<bool> told;
    fixture.session().onStealthChanged = [&](bool isEnabled) { told.push_back(isEnabled); };

    press(u"Toggle Stealth"_s);
    EXPECT_TRUE(fixture.session().isStealthEnabled());
    EXPECT_EQ(told, std::vector<bool>{true});

    press(u"Toggle Stealth"_s);
    EXPECT_FALSE(fixture.session().isStealthEnabled());
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST_F(MenuBarControllerTest, toggleStealthWorksWithNobodyToTell) {
    fixture.session().onStealthChanged = {};
    press(u"Toggle Stealth"_s);
    EXPECT_TRUE(fixture.session().isStealthEnabled());
}

TEST_F(MenuBarControllerTest, checkForUpdatesAsksTheUpdaterOrNobody) {
    press(u"Check for Updates..."_s);
    fixture.session().setSparkleUpdater(&updater);
    press(u"Check for Updates..."_s);
    EXPECT_EQ(updater.checks, 1);
}

TEST_F(MenuBarControllerTest, quitTerminatesAndLeavesTheSessionAlone) {
    fixture.goLive();
    press(u"Quit Corvellan"_s);
    settle();
    EXPECT_EQ(terminations, 1);
    EXPECT_TRUE(fixture.session().isSessionActive());
}

}  // namespace

}  // namespace corvellan::test

#include "App/MenuBar/TrayMenu.h"

#include <gtest/gtest.h>

#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

TEST(TrayMenuTest, theKeyIsMarkedWhereItFirstStandsInTheTitle) {
    EXPECT_EQ(menuText(u"Show Main Window"_s, u'o'), u"Sh&ow Main Window"_s);
    EXPECT_EQ(menuText(u"Start Session"_s, u's'), u"&Start Session"_s);
    EXPECT_EQ(menuText(u"Start Training"_s, u't'), u"S&tart Training"_s);
    EXPECT_EQ(menuText(u"Quit Corvellan"_s, u'q'), u"&Quit Corvellan"_s);
}

TEST(TrayMenuTest, aTitleWithoutItsKeyStaysAsItIs) {
    EXPECT_EQ(menuText(u"Toggle Stealth"_s, {}), u"Toggle Stealth"_s);
    EXPECT_EQ(menuText(u"Toggle Stealth"_s, u'x'), u"Toggle Stealth"_s);
}

TEST(TrayMenuTest, anAmpersandInATitleIsNoMark) {
    EXPECT_EQ(menuText(u"Ask & Answer"_s, u'a'), u"&Ask && Answer"_s);
    EXPECT_EQ(menuText(u"A & B"_s, {}), u"A && B"_s);
}

class OpenTrayMenuTest : public testing::Test {
protected:
    void SetUp() override {
        menu->popup({10, 10});
        ASSERT_TRUE(spinUntil([&] { return menu->isVisible(); }));
    }

    QStringList pressed;
    std::unique_ptr<QMenu> menu = makeTrayMenu({
        {.title = u"Show Main Window"_s, .key = u'o', .action = [this] { pressed.append(u"show"_s); }},
        {},
        {.title = u"Start Session"_s, .key = u's', .action = [this] { pressed.append(u"start"_s); }},
        {.title = u"Start Training"_s, .key = u't', .action = [this] { pressed.append(u"train"_s); }},
        {.title = u"Toggle Stealth"_s, .key = {}, .action = [this] { pressed.append(u"stealth"_s); }},
        {.title = u"Idle"_s, .key = {}, .action = {}},
    });
};

TEST_F(OpenTrayMenuTest, everyKeyPressesItsRowAndClosesTheMenu) {
    QTest::keyClick(menu.get(), Qt::Key_S);
    EXPECT_EQ(pressed, QStringList{u"start"_s});
    EXPECT_TRUE(spinUntil([&] { return !menu->isVisible(); }));

    menu->popup({10, 10});
    QTest::keyClick(menu.get(), Qt::Key_T);
    menu->popup({10, 10});
    QTest::keyClick(menu.get(), Qt::Key_O);
    EXPECT_EQ(pressed, (QStringList{u"start"_s, u"train"_s, u"show"_s}));
}

TEST_F(OpenTrayMenuTest, arrowsAndReturnReachEveryRow) {
    QTest::keyClick(menu.get(), Qt::Key_Down);
    QTest::keyClick(menu.get(), Qt::Key_Down);
    QTest::keyClick(menu.get(), Qt::Key_Return);
    EXPECT_EQ(pressed, QStringList{u"start"_s}) << "separators are passed over";
}

TEST_F(OpenTrayMenuTest, rowsAreEnabledUncheckedAndShowTheirKeys) {
    const auto actions = menu->actions();
    ASSERT_EQ(actions.size(), 6);
    EXPECT_TRUE(actions[1]->isSeparator());
    for (const auto* const action : actions) {
        EXPECT_TRUE(action->isEnabled());
        EXPECT_FALSE(action->isCheckable());
    }
    EXPECT_EQ(actions[0]->shortcut(), QKeySequence{Qt::Key_O});
    EXPECT_TRUE(actions[0]->isShortcutVisibleInContextMenu());
    EXPECT_TRUE(actions[4]->shortcut().isEmpty());
}

TEST_F(OpenTrayMenuTest, aRowWithoutAnActionDoesNothing) {
    menu->actions().last()->trigger();
    EXPECT_TRUE(pressed.isEmpty());
}

TEST(TrayMenuTest, keysDoNothingInTheProgramsWindows) {
    int presses = 0;
    const auto menu = makeTrayMenu({{.title = u"Show"_s, .key = u'o', .action = [&] { ++presses; }}});
    QWindow window;
    window.show();
    QWidget widget;
    widget.show();
    ASSERT_TRUE(spinUntil([&] { return window.isExposed() && widget.isVisible(); }));
    QTest::keyClick(&window, Qt::Key_O);
    QTest::keyClick(&widget, Qt::Key_O);
    EXPECT_EQ(presses, 0);
    menu->actions().first()->trigger();
    EXPECT_EQ(presses, 1) << "though the row itself works";
}

}  // namespace

}  // namespace corvellan::test

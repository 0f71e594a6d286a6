#include <QKeyEvent>
#include <QQuickItem>

#include "AppFixture.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ShortcutsTest : public AppFixture {
protected:
    void SetUp() override { launch(); }

    /// The window gets the key, as from the keyboard. False when nothing in it took the key.
    bool pressSpace() {
        QKeyEvent press{QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, u" "_s};
        press.ignore();
        QCoreApplication::sendEvent(&panel(), &press);
        return press.isAccepted();
    }

    static inline const KeyDown hotkey{.key = PhysicalKey::j, .isCommandDown = true, .isShiftDown = true};
};

TEST_F(ShortcutsTest, globalKeyStartsWithAllDefaultsAndBringsTheWindowUp) {
    panel().close();

    desktop.keys.press(hotkey);
    settle();

    EXPECT_TRUE(session().isSessionActive());
    EXPECT_TRUE(panel().isVisible());
    ASSERT_EQ(desktop.activation.activations.size(), 1U);
    EXPECT_EQ(desktop.activation.activations.front().first, &panel());
    const auto& start = std::get<StartSessionPayload>(services.ws->sent.front().value);
    EXPECT_EQ(start.company, std::nullopt);
    EXPECT_FALSE(start.simMode);
}

TEST_F(ShortcutsTest, globalKeyEndsARunningSession) {
    session().startSession();
    settle();
    goLive();

    desktop.keys.press(hotkey);
    settle();

    EXPECT_TRUE(session().isEnding());
    EXPECT_TRUE(desktop.activation.activations.empty());
}

TEST_F(ShortcutsTest, otherKeysAndMissingModifiersDoNothing) {
    for (const KeyDown& key : {KeyDown{.key = PhysicalKey::j, .isCommandDown = true},
                               KeyDown{.key = PhysicalKey::j, .isShiftDown = true}, KeyDown{.key = PhysicalKey::j},
                               KeyDown{.key = PhysicalKey::space, .isCommandDown = true, .isShiftDown = true},
                               KeyDown{.key = PhysicalKey::other, .isCommandDown = true, .isShiftDown = true}})
        desktop.keys.press(key);
    settle();

    EXPECT_EQ(session().statusText(), u"Ready"_s);
    EXPECT_EQ(count("ws.connect"), 0);
}

TEST_F(ShortcutsTest, globalKeyDuringSignInStartsAFreshAttempt) {
    session().setServerURL(u"wss://coach.test/ws"_s);
    services.auth->loginGate.close();

    desktop.keys.press(hotkey);
    settle();
    ASSERT_FALSE(session().isSessionActive());
    desktop.keys.press(hotkey);
    settle();

    EXPECT_EQ(count("auth.login"), 2);
}

TEST_F(ShortcutsTest, globalKeyPressedTwiceInAHurryIsOneStart) {
    services.ws->connectGate.close();

    desktop.keys.press(hotkey);
    settle();
    desktop.keys.press(hotkey);
    settle();
    services.ws->connectGate.open();
    settle();

    EXPECT_EQ(count("ws.connect"), 1);
    EXPECT_TRUE(session().isSessionActive());
    EXPECT_EQ(session().errorMessage(), std::nullopt);
}

TEST_F(ShortcutsTest, spaceInterruptsSpeechAndReachesNoControl) {
    session().setIsTtsPlaying(true);
    QQuickItem* const focused = panel().activeFocusItem();
    ASSERT_NE(focused, nullptr);

    pressSpace();

    EXPECT_FALSE(session().isTtsPlaying());
    EXPECT_EQ(count("tts.stop"), 1);
    EXPECT_EQ(count("ws.connect"), 0);
}

TEST_F(ShortcutsTest, spacePassesToTheFocusedControlWhenNoSpeechPlays) {
    session().setUpcomingMeetings({CalendarMeeting{.id = u"m-1"_s, .summary = u"Weekly"_s}});
    auto* const meeting = itemNamed(panel().rootObject(), u"meeting0"_s);
    ASSERT_TRUE(meeting);
    meeting->forceActiveFocus(Qt::TabFocusReason);
    QKeyEvent release{QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, u" "_s};
    EXPECT_TRUE(pressSpace());
    QCoreApplication::sendEvent(&panel(), &release);
    settle();

    EXPECT_EQ(count("tts.stop"), 0);
    EXPECT_EQ(count("ws.connect"), 1);
}

TEST_F(ShortcutsTest, theSettingsTellWhetherTheGlobalShortcutWorks) {
    EXPECT_EQ(panel().views().settings()->hotkeyNotice(), QString{}) << "it is watched, and there is nothing to say";
    desktop.keys.setWatch(GlobalKeyWatch::unavailable, u"The desktop refused"_s);
    EXPECT_EQ(panel().views().settings()->hotkeyNotice(), u"The desktop refused"_s);
}

TEST_F(ShortcutsTest, theGlobalMonitorGoesAfterTheLocalOne) {
    delegate().applicationWillTerminate();

    session().setIsTtsPlaying(true);
    pressSpace();

    EXPECT_TRUE(session().isTtsPlaying());
    EXPECT_FALSE(desktop.keys.press(hotkey));
}

}  // namespace corvellan::test

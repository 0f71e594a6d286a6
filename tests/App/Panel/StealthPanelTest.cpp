#include "App/Panel/StealthPanel.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QSignalSpy>

#include "PanelFixture.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class StealthPanelTest : public PanelFixture {};

TEST_F(StealthPanelTest, beginsInTheIdleFaceWithItsContent) {
    EXPECT_TRUE(panel.errors().isEmpty());
    ASSERT_TRUE(panel.rootObject());
    EXPECT_FALSE(panel.isVisible());
    EXPECT_FALSE(panel.isInCallMode());
    EXPECT_EQ(panel.size(), QSize(680, 520));
    EXPECT_EQ(panel.minimumSize(), QSize(520, 400));
    EXPECT_EQ(panel.maximumSize(), QSize(900, 700));
    EXPECT_FALSE(panel.flags() & Qt::FramelessWindowHint);
    EXPECT_FALSE(panel.flags() & Qt::WindowMinimizeButtonHint);
}

TEST_F(StealthPanelTest, aKeyHeldSinceTheLastFaceStartsNothing) {
    fixture.session().setUpcomingMeetings({CalendarMeeting{.id = u"m-1"_s, .summary = u"Weekly"_s}});
    panel.makeKeyAndOrderFront();
    auto* const meeting = itemNamed(panel.rootObject(), u"meeting0"_s);
    ASSERT_TRUE(meeting);
    meeting->forceActiveFocus(Qt::TabFocusReason);
    ASSERT_TRUE(spinUntil([&] { return panel.activeFocusItem() == meeting; }));
    const auto send = [this](QEvent::Type type, quint64 timestamp) {
        constexpr quint32 returnCode = 36;
        QKeyEvent event{type, Qt::Key_Return, Qt::NoModifier, returnCode, 0, 0};
        event.setTimestamp(timestamp);
        QCoreApplication::sendEvent(&panel, &event);
        settle();
    };
    // As X11 tells of it: let go and pressed again in the same instant.
    for (quint64 instant = 1000; instant < 1200; instant += 40) {
        send(QEvent::KeyRelease, instant);
        send(QEvent::KeyPress, instant);
    }
    EXPECT_FALSE(fixture.session().isSessionActive());

    send(QEvent::KeyRelease, 1300);
    send(QEvent::KeyPress, 1400);
    EXPECT_TRUE(fixture.session().isSessionActive());
}

TEST_F(StealthPanelTest, isTranslucentFromTheStart) {
    EXPECT_EQ(panel.color().alpha(), 0);
    EXPECT_EQ(panel.requestedFormat().alphaBufferSize(), 8);
}

TEST_F(StealthPanelTest, theCallFaceIsBorderlessOnTopAndOfOneSize) {
    panel.enterCallMode();

    EXPECT_TRUE(panel.isInCallMode());
    EXPECT_TRUE(panel.flags() & Qt::FramelessWindowHint);
    EXPECT_TRUE(panel.flags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(panel.flags() & Qt::WindowDoesNotAcceptFocus) << "the call face still takes the keyboard";
    EXPECT_EQ(panel.size(), QSize(700, 350));
    EXPECT_EQ(panel.minimumSize(), QSize(700, 350));
    EXPECT_EQ(panel.maximumSize(), QSize(700, 350));
}

TEST_F(StealthPanelTest, theCallFaceBeginsUnscaledWhateverTheTextScale) {
    fixture.preferences.setNumber(u"fontScale"_s, 2.0);
    panel.enterCallMode();
    EXPECT_EQ(panel.size(), QSize(700, 350));
}

TEST_F(StealthPanelTest, theIdleFaceIsAnOrdinaryWindowAgain) {
    panel.enterCallMode();
    panel.enterIdleMode();

    EXPECT_FALSE(panel.isInCallMode());
    EXPECT_FALSE(panel.flags() & (Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint));
    EXPECT_EQ(panel.size(), QSize(680, 520));
    EXPECT_EQ(panel.minimumSize(), QSize(520, 400));
    EXPECT_EQ(panel.maximumSize(), QSize(900, 700));
}

TEST_F(StealthPanelTest, setSessionModeFixesTheScaledSize) {
    fixture.preferences.setNumber(u"fontScale"_s, 1.5);
    panel.enterCallMode();
    panel.setSessionMode(u"mini"_s);
    EXPECT_EQ(panel.size(), QSize(900, 54));
    EXPECT_EQ(panel.minimumSize(), QSize(900, 54));
    EXPECT_EQ(panel.maximumSize(), QSize(900, 54));

    panel.setSessionMode(u"no such word"_s);
    EXPECT_EQ(panel.size(), QSize(1050, 525));
}

TEST_F(StealthPanelTest, stealthAppliesAtOnceInEitherFace) {
    panel.setStealth(true);
    EXPECT_EQ(captureHiding.asked, std::vector<bool>{true});
    EXPECT_EQ(panel.captureVisibility(), CaptureVisibility::hidden);

    panel.setStealth(false);
    EXPECT_EQ(captureHiding.asked, (std::vector<bool>{true, false}));
    EXPECT_EQ(panel.captureVisibility(), CaptureVisibility::visible);
}

TEST_F(StealthPanelTest, leavingACallShowsTheWindowToCapturesAndKeepsTheFlag) {
    panel.enterCallMode();
    panel.setStealth(true);
    captureHiding.asked.clear();

    panel.enterIdleMode();
    EXPECT_TRUE(panel.isStealthEnabled());
    EXPECT_EQ(captureHiding.asked, std::vector<bool>{false});

    panel.enterCallMode();
    EXPECT_EQ(captureHiding.asked, (std::vector<bool>{false, true}));
}

TEST_F(StealthPanelTest, idleModeShowsTheWindowAgainAlsoWhenItWasHiddenInTheIdleFace) {
    panel.setStealth(true);
    panel.enterIdleMode();
    EXPECT_TRUE(panel.isStealthEnabled());
    EXPECT_EQ(captureHiding.asked, (std::vector<bool>{true, false}));
    EXPECT_EQ(panel.captureVisibility(), CaptureVisibility::visible);
}

TEST_F(StealthPanelTest, aLateAnswerOfTheDesktopIsFollowed) {
    captureHiding.answer = CaptureVisibility::hiding;
    panel.setStealth(true);
    EXPECT_EQ(panel.captureVisibility(), CaptureVisibility::hiding);
    captureHiding.tell(CaptureVisibility::hidden);
    EXPECT_EQ(panel.captureVisibility(), CaptureVisibility::hidden);
    EXPECT_FALSE(panel.views().stealth()->hasWarning());
}

TEST_F(StealthPanelTest, aHiddenWindowIsHiddenAnewWhenItIsShownAgain) {
    panel.makeKeyAndOrderFront();
    panel.enterCallMode();
    panel.setStealth(true);
    panel.close();
    captureHiding.asked.clear();

    panel.makeKeyAndOrderFront();
    EXPECT_EQ(captureHiding.asked, std::vector<bool>{true});

    panel.enterIdleMode();
    panel.close();
    captureHiding.asked.clear();
    panel.makeKeyAndOrderFront();
    EXPECT_TRUE(captureHiding.asked.empty()) << "nothing is hidden between calls";
}

TEST_F(StealthPanelTest, aDesktopThatCantHideWindowsIsNamedSo) {
    NoCaptureHiding nothing;
    StealthPanel other{{fixture.session(), fixture.preferences, nothing, handoffWindow, settings.parts()},
                       settings.desktop.appearance};
    other.setStealth(true);
    EXPECT_TRUE(other.isStealthEnabled());
    EXPECT_EQ(other.captureVisibility(), CaptureVisibility::unsupported);
}

TEST_F(StealthPanelTest, closingHidesAndShowingBringsTheSameContentBack) {
    panel.makeKeyAndOrderFront();
    ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    QObject* const content = panel.rootObject();

    panel.close();
    EXPECT_FALSE(panel.isVisible());

    panel.makeKeyAndOrderFront();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.rootObject(), content);
}

TEST_F(StealthPanelTest, theWindowIsLightOnlyWhereTheDesktopAsksForThat) {
    const Theme& theme = *panel.views().theme();
    EXPECT_TRUE(theme.isDark()) << "no preference";
    settings.desktop.appearance.setColorScheme(ColorScheme::light);
    EXPECT_FALSE(theme.isDark());
    EXPECT_TRUE(panel.views().callTheme()->isDark()) << "a call is dark whatever the desktop is";
    settings.desktop.appearance.setColorScheme(ColorScheme::dark);
    EXPECT_TRUE(theme.isDark());
}

TEST_F(StealthPanelTest, theFaceInTheWindowFollowsTheSession) {
    panel.makeKeyAndOrderFront();
    EXPECT_TRUE(panel.rootObject()->findChild<QQuickItem*>(u"homeArea"_s));

    fixture.session().startSession();
    settle();
    EXPECT_TRUE(panel.rootObject()->findChild<QQuickItem*>(u"endSession"_s));
}

TEST_F(StealthPanelTest, afterNextFrameTellsOfTheFrameThatShowsTheTip) {
    panel.makeKeyAndOrderFront();
    ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    int frames = 0;

    fixture.session().setStatusText(u"Coaching"_s);
    ASSERT_TRUE(panel.afterNextFrame([&] { ++frames; }));
    ASSERT_TRUE(spinUntil([&] { return frames > 0; }));

    QSignalSpy swaps{&panel, &QQuickWindow::frameSwapped};
    panel.update();
    ASSERT_TRUE(spinUntil([&] { return swaps.count() > 0; }));
    EXPECT_EQ(frames, 1) << "once";
}

TEST_F(StealthPanelTest, aHiddenWindowPromisesNoFrame) {
    EXPECT_FALSE(panel.afterNextFrame([] {}));
}

}  // namespace

}  // namespace corvellan::test

// The panel under a real window manager: what an off-screen window can't show.

#include <cstdlib>
#include <QGuiApplication>
#include <QQuickItem>
#include <QScreen>

#include "PanelFixture.h"
#include "Platform/Linux/CaptureHiding/MakeCaptureHiding.h"
#include "Platform/Linux/Screenshots/MakeScreenPictures.h"
#include "Support/FakeScreenPictures.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class PanelOnScreenTest : public PanelFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s) << "run me through tests/Support/with-display";
        panel.makeKeyAndOrderFront();
        ASSERT_TRUE(spinUntil([&] { return panel.isExposed() && panel.isActive() && hasTitleBar(); }));
    }
    [[nodiscard]] bool hasTitleBar() const { return panel.frameMargins().top() > 0; }
    [[nodiscard]] bool settlesAt(QSize size, bool withTitleBar) {
        return spinUntil([&] { return panel.size() == size && hasTitleBar() == withTitleBar; });
    }
    /// With the top edge of `frame` and, but for so many pixels of rounding, its horizontal centre.
    [[nodiscard]] bool hangsWhere(QRect frame, int rounding) {
        return spinUntil([&] {
            const QRect present = panel.frameGeometry();
            return present.top() == frame.top() && std::abs(present.center().x() - frame.center().x()) <= rounding;
        });
    }
};

TEST_F(PanelOnScreenTest, theFacesSwitchLiveInOneNativeWindow) {
    const WId window = panel.winId();

    panel.enterCallMode();
    EXPECT_TRUE(settlesAt({700, 350}, false));
    EXPECT_EQ(panel.winId(), window);
    EXPECT_TRUE(panel.isExposed());

    panel.enterIdleMode();
    EXPECT_TRUE(settlesAt({680, 520}, true));
    EXPECT_EQ(panel.winId(), window);
}

TEST_F(PanelOnScreenTest, aFaceChangeKeepsTheCentreAndTheTopEdge) {
    panel.setFramePosition({400, 300});
    ASSERT_TRUE(spinUntil([&] { return panel.frameGeometry().topLeft() == QPoint(400, 300); }));
    const QRect before = panel.frameGeometry();

    panel.enterCallMode();
    ASSERT_TRUE(settlesAt({700, 350}, false));
    EXPECT_TRUE(hangsWhere(before, 1)) << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();

    panel.enterIdleMode();
    ASSERT_TRUE(settlesAt({680, 520}, true));
    EXPECT_TRUE(hangsWhere(before, 2)) << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
}

TEST_F(PanelOnScreenTest, manyCallsLeaveTheWindowWhereItWas) {
    panel.setFramePosition({400, 300});
    ASSERT_TRUE(spinUntil([&] { return panel.frameGeometry().topLeft() == QPoint(400, 300); }));
    const QRect before = panel.frameGeometry();
    for (int call = 0; call < 5; ++call) {
        // As a session's late exit comes right before the next one's beginning.
        panel.enterIdleMode();
        panel.enterCallMode();
        ASSERT_TRUE(settlesAt({700, 350}, false));
        EXPECT_TRUE(hangsWhere(before, 1)) << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
        panel.enterIdleMode();
        ASSERT_TRUE(settlesAt({680, 520}, true));
        EXPECT_TRUE(spinUntil([&] { return panel.frameGeometry() == before; }))
            << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
    }
}

TEST_F(PanelOnScreenTest, aCallThatEndsAsItBeginsLeavesTheWindowWhereItWas) {
    panel.setFramePosition({400, 300});
    ASSERT_TRUE(spinUntil([&] { return panel.frameGeometry().topLeft() == QPoint(400, 300); }));
    const QRect before = panel.frameGeometry();
    for (int call = 0; call < 5; ++call) {
        panel.enterCallMode();
        panel.enterIdleMode();
    }
    ASSERT_TRUE(settlesAt({680, 520}, true));
    EXPECT_TRUE(spinUntil([&] { return panel.frameGeometry() == before; }))
        << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
}

TEST_F(PanelOnScreenTest, whereTheUserPutItIsWhereTheNextFaceHangs) {
    panel.enterCallMode();
    ASSERT_TRUE(settlesAt({700, 350}, false));
    ASSERT_TRUE(spinUntil([&] { return panel.isSettled(); }));
    // Moved by the window manager, as a user's dragging is.
    panel.setFramePosition({150, 450});
    ASSERT_TRUE(spinUntil([&] { return panel.frameGeometry().topLeft() == QPoint(150, 450); }));
    const QRect before = panel.frameGeometry();
    panel.enterIdleMode();
    ASSERT_TRUE(settlesAt({680, 520}, true));
    EXPECT_TRUE(hangsWhere(before, 1)) << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
}

TEST_F(PanelOnScreenTest, aLayoutThatGrowsNearTheEdgeStaysOnTheScreen) {
    const QRect available = panel.screen()->availableGeometry();
    panel.enterCallMode();
    ASSERT_TRUE(settlesAt({700, 350}, false));
    panel.setFramePosition({available.right() - 699, available.bottom() - 349});
    ASSERT_TRUE(spinUntil([&] { return panel.x() == available.right() - 699; }));

    fixture.preferences.setNumber(u"fontScale"_s, 2.0);
    panel.setSessionMode(u"full"_s);

    EXPECT_TRUE(spinUntil([&] { return available.contains(panel.frameGeometry()) && panel.width() == 1400; }))
        << panel.frameGeometry().x() << ", " << panel.frameGeometry().y();
}

TEST_F(PanelOnScreenTest, closingHidesAndShowingBringsItBackInTheCallFace) {
    panel.enterCallMode();
    ASSERT_TRUE(settlesAt({700, 350}, false));

    panel.close();
    ASSERT_FALSE(panel.isVisible());
    panel.makeKeyAndOrderFront();

    EXPECT_TRUE(spinUntil([&] { return panel.isExposed() && panel.isActive(); }));
    EXPECT_EQ(panel.size(), QSize(700, 350));
}

TEST_F(PanelOnScreenTest, orderFrontLeavesTheKeyboardWhereItIs) {
    panel.close();
    QWindow other;
    other.resize(200, 100);
    other.show();
    other.requestActivate();
    ASSERT_TRUE(spinUntil([&] { return other.isActive(); }));

    panel.orderFront();

    ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    int frames = 0;
    ASSERT_TRUE(panel.afterNextFrame([&] { ++frames; }));
    ASSERT_TRUE(spinUntil([&] { return frames == 1; }));
    EXPECT_TRUE(other.isActive());
    EXPECT_FALSE(panel.isActive());
}

/// The panel as the program makes it on this desktop, X11 under Xvfb.
class PanelSelfTestOnScreen : public testing::Test {
protected:
    StealthPanel& show(ScreenPictures& pictures) {
        panel.emplace(ViewParts{fixture.session(), fixture.preferences, *captureHiding, handoffWindow, settings.parts(),
                                CaptureSelfTest::Means{pictures, clock, worker.executor()}},
                      settings.desktop.appearance);
        panel->makeKeyAndOrderFront();
        EXPECT_TRUE(spinUntil([&] { return panel->isExposed(); }));
        return *panel;
    }
    QString runSelfTest() {
        panel->views().stealth()->runSelfTest();
        EXPECT_TRUE(spinUntil([&] { return !panel->views().stealth()->isTesting(); }, std::chrono::seconds{60}));
        EXPECT_TRUE(panel->views().stealth()->markerColors().isEmpty());
        return panel->views().stealth()->testResultText();
    }

    SystemClock clock;
    WorkerThread worker{"test-worker"};
    SessionFixture fixture;
    DesktopSession session = DesktopSession::current();
    std::unique_ptr<CaptureHiding> captureHiding = makeCaptureHiding(clock, session);
    std::unique_ptr<ScreenPictures> pictures = makeScreenPictures(worker.executor(), clock, session);
    SettingsFixture settings{fixture.preferences};
    IgnoredHandoffWindow handoffWindow;
    std::optional<StealthPanel> panel;
};

TEST_F(PanelSelfTestOnScreen, onX11APictureOfTheScreenShowsTheWindowInEveryFace) {
    show(*pictures);
    EXPECT_TRUE(runSelfTest().startsWith(u"Visible to capture"_s)) << runSelfTest().toStdString();
    panel->enterCallMode();
    panel->setStealth(true);
    EXPECT_EQ(panel->captureVisibility(), CaptureVisibility::unsupported);
    for (const QString& mode : {u"full"_s, u"coach"_s, u"mini"_s}) {
        panel->setSessionMode(mode);
        ASSERT_TRUE(spinUntil([&] { return panel->width() == panel->rootObject()->width(); }));
        EXPECT_TRUE(runSelfTest().startsWith(u"Visible to capture"_s)) << mode.toStdString();
    }
}

TEST_F(PanelSelfTestOnScreen, aPictureWithoutTheWindowMeansHidden) {
    FakeScreenPictures without;
    without.give(FakeScreenPictures::desktop());
    show(without);
    EXPECT_TRUE(runSelfTest().startsWith(u"Not visible"_s));
}

TEST_F(PanelSelfTestOnScreen, aWindowThatIsHiddenFromTheUserCantBeTested) {
    show(*pictures).close();
    ASSERT_TRUE(spinUntil([&] { return !panel->isExposed(); }));
    EXPECT_TRUE(runSelfTest().startsWith(u"Could not capture"_s));
}

}  // namespace

}  // namespace corvellan::test

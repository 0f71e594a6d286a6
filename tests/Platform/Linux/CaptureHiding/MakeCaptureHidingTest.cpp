#include "Platform/Linux/CaptureHiding/MakeCaptureHiding.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QGuiApplication>
#include <QWindow>

#include "FakeHyprland.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class MakeCaptureHidingTest : public testing::Test {
protected:
    std::unique_ptr<CaptureHiding> make(const DesktopSession& session) {
        // No bus: none of these desktops is asked through one.
        return makeCaptureHiding(clock, session, QDBusConnection{u"none"_s});
    }

    ManualClock clock;
    QWindow window;
};

TEST_F(MakeCaptureHidingTest, onX11NothingHidesAndTheReasonIsNamed) {
    const auto hiding = make({});
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::doesNotHide);
    EXPECT_TRUE(hiding->status().explanation.contains(u"On X11 every program can read the whole screen"_s));

    int changes = 0;
    hiding->onChanged = [&] { ++changes; };
    hiding->setHidden(window, true);
    hiding->setHidden(window, true);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::unsupported);
    hiding->setHidden(window, false);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::visible);
    EXPECT_EQ(changes, 2);
}

TEST_F(MakeCaptureHidingTest, gnomeOffersNothingAndIsNamed) {
    const auto hiding = make({.isWayland = true, .desktopNames = {u"ubuntu"_s, u"GNOME"_s}});
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::doesNotHide);
    EXPECT_TRUE(hiding->status().explanation.startsWith(u"GNOME "_s));
}

TEST_F(MakeCaptureHidingTest, anUnknownDesktopOffersNothing) {
    EXPECT_TRUE(make({.isWayland = true})->status().explanation.startsWith(u"This desktop "_s));
    EXPECT_TRUE(make({.isWayland = true, .desktopNames = {u"sway"_s}})->status().explanation.startsWith(u"sway "_s));
}

TEST_F(MakeCaptureHidingTest, niriGivesTheLinesToPasteAndIsNeverBelievedToHide) {
    const QString before = QGuiApplication::applicationName();
    QGuiApplication::setApplicationName(u"Corvellan Bram"_s);
    QGuiApplication::setDesktopFileName(u"com.teskara.CorvellanBram"_s);
    const auto hiding = make({.isWayland = true, .niriSocket = u"/run/niri.sock"_s});
    QGuiApplication::setApplicationName(before);
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::needsConfiguration);
    EXPECT_EQ(hiding->status().configuration,
              u"window-rule {\n"
              "    match app-id=r#\"^(Corvellan Bram|com\\.teskara\\.CorvellanBram)$\"#\n"
              "    block-out-from \"screen-capture\"\n"
              "}\n"_s);
    hiding->setHidden(window, true);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::needsConfiguration);
}

TEST_F(MakeCaptureHidingTest, hyprlandIsAskedThroughItsSocket) {
    FakeHyprland hyprland;
    window.setTitle(u"Corvellan Bram"_s);
    window.show();
    hyprland.windows = {{"0x1", QCoreApplication::applicationPid(), u"Corvellan Bram"_s}};
    const auto hiding = make({.isWayland = true, .hyprlandSocket = hyprland.socketPath()});
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::hides);
    hiding->setHidden(window, true);
    EXPECT_TRUE(spinUntil([&] { return hiding->status().visibility == CaptureVisibility::hidden; }));
    EXPECT_TRUE(hyprland.windows[0].isHidden);
}

TEST_F(MakeCaptureHidingTest, plasmaWithoutABusFailsAndIsNotBelievedToHide) {
    window.show();
    const auto hiding = make({.isWayland = true, .desktopNames = {u"KDE"_s}});
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::hides);
    hiding->setHidden(window, true);
    EXPECT_TRUE(spinUntil([&] { return hiding->status().visibility == CaptureVisibility::failed; }));
}

}  // namespace

}  // namespace corvellan::test

#include <gtest/gtest.h>

#include "ScreenShareFixture.h"

namespace corvellan::test {

namespace {

using Pictured = FakeScreenCaptures::Pictured;

class ScreenShareCaptureTest : public ScreenShareFixture {
protected:
    static constexpr std::int64_t otherProcessId = 20;

    /// A program's window under this program's panel.
    void openWindows(std::int64_t frontmost) {
        desktop().content = {
            .displays = {{.id = 7}, {.id = 8}},
            .windows = {{.id = 1, .processId = ownProcessId, .isOnScreen = true, .frame = {0, 0, 400, 300}},
                        {.id = 2, .processId = otherProcessId, .isOnScreen = true, .frame = {0, 0, 800, 600}}},
            .frontmostProcessId = frontmost,
        };
    }
    /// What one tick of a new run has pictured.
    Pictured pictured(const ScreenShareOptions& options = {}) {
        desktop().pictured.clear();
        start(options);
        tick(1s);
        return desktop().pictured.size() == 1 ? desktop().pictured.front() : Pictured{};
    }
};

INSTANTIATE_TEST_SUITE_P(Placements, ScreenShareCaptureTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

TEST_P(ScreenShareCaptureTest, theFrontmostWindowOfAnotherProgramIsCaptured) {
    openWindows(otherProcessId);
    EXPECT_EQ(pictured(), (Pictured{.kind = Pictured::Kind::window, .id = 2}));
}

TEST_P(ScreenShareCaptureTest, withThisProgramFrontmostTheDisplayIsCaptured) {
    openWindows(ownProcessId);
    EXPECT_EQ(pictured(), (Pictured{.kind = Pictured::Kind::display, .id = 7}));
}

TEST_P(ScreenShareCaptureTest, withSmallOrRaisedWindowsOnlyTheDisplayIsCaptured) {
    openWindows(otherProcessId);
    desktop().content.windows.at(1).frame = {0, 0, 100, 600};
    EXPECT_EQ(pictured(), (Pictured{.kind = Pictured::Kind::display, .id = 7}));
    openWindows(otherProcessId);
    desktop().content.windows.at(1).layer = 3;
    EXPECT_EQ(pictured(), (Pictured{.kind = Pictured::Kind::display, .id = 7}));
}

TEST_P(ScreenShareCaptureTest, theFullScreenIsTheFirstDisplay) {
    openWindows(otherProcessId);
    EXPECT_EQ(pictured({.scope = ScreenShareOptions::CaptureScope::fullScreen}),
              (Pictured{.kind = Pictured::Kind::display, .id = 7}));
}

TEST_P(ScreenShareCaptureTest, withoutADisplayEachTickSaysSo) {
    openWindows(otherProcessId);
    desktop().content.displays.clear();
    start();
    tick(1s);
    tick(10s);
    EXPECT_EQ(log.errors(), QStringList(2, u"capture failed: No display available for capture"_s));
    EXPECT_TRUE(desktop().pictured.empty());
}

TEST_P(ScreenShareCaptureTest, aFailureEndsTheTickAndTheLoopGoesOn) {
    desktop().contentError = TransportError{u"no server"_s};
    start();
    tick(1s);
    desktop().contentError.reset();
    desktop().pictureError = TransportError{u"the window is gone"_s};
    tick(10s);
    desktop().pictureError.reset();
    tick(10s);
    EXPECT_EQ(log.errors(), (QStringList{u"capture failed: no server"_s, u"capture failed: the window is gone"_s}));
    EXPECT_EQ(server.requests.size(), 1);
}

TEST_P(ScreenShareCaptureTest, aPictureWithoutPixelsHashesToZeroAndIsNoJpeg) {
    show({});
    start();
    tick(1s);
    EXPECT_EQ(log.errors(), QStringList{u"jpeg encode failed"_s});
}

}  // namespace

}  // namespace corvellan::test

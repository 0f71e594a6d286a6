// Windows of other programs on a real X server with a window manager.

#include "Platform/Linux/Screenshots/X11ScreenCaptures.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <optional>

#include "Services/ScreenShare/FrontmostWindow.h"
#include "Support/PrivateDisplay.h"
#include "Support/X11Keyboard.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;

constexpr QRgb red = qRgb(0xC8, 0x1E, 0x1E);
constexpr QRgb green = qRgb(0x1E, 0xC8, 0x1E);
constexpr QRgb blue = qRgb(0x1E, 0x1E, 0xC8);

class X11ScreenCapturesTest : public testing::Test {
protected:
    void open(const std::vector<std::string>& options = {}) {
        display.emplace(options);
        capture = X11ScreenCaptures{worker.executor(), clock, display->name()}.open();
    }

    using Program = std::unique_ptr<ChildProcess>;

    [[nodiscard]] Program paint(QRect area, const std::vector<std::string>& options = {}) {
        std::vector<std::string> command{(QCoreApplication::applicationDirPath() + u"/PaintedWindow"_s).toStdString(),
                                         std::to_string(area.x()), std::to_string(area.y()),
                                         std::to_string(area.width()), std::to_string(area.height())};
        command.insert(command.end(), options.begin(), options.end());
        return display->start(command);
    }

    ShareableContent content() {
        const auto found = complete(capture->content({}));
        EXPECT_TRUE(found) << found.error().errorDescription().toStdString();
        return found.value_or(ShareableContent{});
    }
    Picture picture(const ShareableWindow& window) { return complete(capture->windowPicture(window, {})); }

    std::optional<ShareableWindow> windowOf(std::int64_t processId) {
        for (const auto& window : content().windows)
            if (window.processId == processId)
                return window;
        return std::nullopt;
    }
    std::optional<ShareableWindow> windowOf(const Program& program) { return windowOf(program->processId()); }
    /// Waits until the program's window is there, as a fact of the window manager's.
    std::optional<ShareableWindow> shown(const Program& program) {
        std::optional<ShareableWindow> window;
        EXPECT_TRUE(spinUntil([&] {
            window = windowOf(program);
            return window && window->isOnScreen;
        }));
        return window;
    }
    /// Waits until the program has the keyboard; what would be pictured then.
    std::optional<ShareableWindow> picked(std::int64_t frontmost) {
        ShareableContent found;
        EXPECT_TRUE(spinUntil([&] {
            found = content();
            // The window manager tells who has the keyboard before it lists the window.
            return found.frontmostProcessId == frontmost &&
                   std::ranges::any_of(found.windows, [&](const ShareableWindow& window) {
                       return window.processId == frontmost && window.isOnScreen;
                   });
        })) << "of "
            << frontmost << ", not " << found.frontmostProcessId.value_or(0);
        return pickFrontmostWindow(found, getpid());
    }
    std::optional<ShareableWindow> picked(const Program& program) { return picked(program->processId()); }

    /// Red on the left and blue on the right, to the edges. Programs paint when they come to it.
    bool showsItWhole(const ShareableWindow& window, QSize size) {
        return spinUntil([&] {
            const Picture taken = picture(window);
            if (!taken || taken->size() != size)
                return false;
            const int right = size.width() - 1;
            const int bottom = size.height() - 1;
            return taken->pixel(0, 0) == red && taken->pixel(0, bottom) == red && taken->pixel(right, 0) == blue &&
                   taken->pixel(right, bottom) == blue && taken->pixel(size.width() / 2 - 1, bottom / 2) == red &&
                   taken->pixel(size.width() / 2, bottom / 2) == blue;
        });
    }
    /// What the display shows at one place.
    bool displayShows(QPoint at, QRgb color) {
        return spinUntil([&] {
            const auto taken = complete(capture->displayPicture(content().displays.front(), {}));
            return taken && taken->valid(at) && taken->pixel(at) == color;
        });
    }

    SystemClock clock;
    WorkerThread worker{"test-worker"};
    std::optional<PrivateDisplay> display;
    std::shared_ptr<ScreenCapture> capture;
};

TEST_F(X11ScreenCapturesTest, picturesTheFrontWindowOfAnotherProgram) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->frame.size(), QSize(300, 200)) << "without decorations";
    EXPECT_EQ(window->layer, 0);
    EXPECT_TRUE(showsItWhole(*window, {300, 200}));
}

TEST_F(X11ScreenCapturesTest, listsFromTheTopDown) {
    open();
    const auto below = paint({10, 30, 200, 200});
    ASSERT_TRUE(picked(below));
    const auto above = paint({300, 30, 200, 200});
    ASSERT_TRUE(picked(above));
    const auto windows = content().windows;
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].processId, above->processId());
    EXPECT_EQ(windows[1].processId, below->processId());
}

TEST_F(X11ScreenCapturesTest, theFrontmostProgramsWindowIsPicturedNotTheTopOne) {
    open();
    const auto front = paint({10, 30, 200, 200});
    ASSERT_TRUE(picked(front));
    const auto dock = paint({0, 0, 640, 300}, {"type=DOCK"});
    ASSERT_TRUE(shown(dock));
    const auto window = picked(front);
    ASSERT_TRUE(window);
    EXPECT_EQ(content().windows.front().processId, dock->processId());
    EXPECT_TRUE(showsItWhole(*window, {200, 200}));
}

TEST_F(X11ScreenCapturesTest, coveredPartsAreThereToo) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    const auto cover = paint({0, 0, 200, 480}, {"over"});
    ASSERT_TRUE(displayShows({100, 100}, green));
    EXPECT_TRUE(showsItWhole(*window, {300, 200}));
    EXPECT_TRUE(displayShows({100, 100}, green)) << "the screen itself stays as it is";
}

TEST_F(X11ScreenCapturesTest, partsBeyondTheScreenAreThereToo) {
    open();
    const auto program = paint({500, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    EXPECT_TRUE(showsItWhole(*window, {300, 200}));
}

TEST_F(X11ScreenCapturesTest, anotherWindowMayFollow) {
    open();
    const auto first = paint({10, 30, 200, 200});
    const auto firstWindow = picked(first);
    ASSERT_TRUE(firstWindow && showsItWhole(*firstWindow, {200, 200}));
    const auto second = paint({10, 30, 220, 210});
    const auto secondWindow = picked(second);
    ASSERT_TRUE(secondWindow && showsItWhole(*secondWindow, {220, 210}));
    EXPECT_TRUE(showsItWhole(*firstWindow, {200, 200})) << "now under the second";
}

TEST_F(X11ScreenCapturesTest, withoutCompositeTheScreenIsShownInTheWindowsPlace) {
    open({"-extension", "Composite"});
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window && showsItWhole(*window, {300, 200}));
    const auto cover = paint({0, 0, 200, 480}, {"over"});
    ASSERT_TRUE(displayShows({100, 100}, green));
    const Picture taken = picture(*window);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->pixel(10, 100), green);
    EXPECT_EQ(taken->pixel(299, 199), blue);
}

TEST_F(X11ScreenCapturesTest, withoutTheServersWordTheWindowsOwnCounts) {
    open({"-extension", "X-Resource"});
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->processId, program->processId());
}

TEST_F(X11ScreenCapturesTest, whenThisProgramIsFrontmostTheDisplayIsPictured) {
    open();
    const auto program = paint({50, 60, 300, 200});
    ASSERT_TRUE(picked(program));
    OtherProgram own{display->name()};
    EXPECT_FALSE(picked(getpid()));
    EXPECT_TRUE(displayShows({70, 200}, red)) << "which shows the other program";
}

TEST_F(X11ScreenCapturesTest, whenTheFrontmostProgramHasASmallWindowOnlyTheDisplayIsPictured) {
    open();
    const auto program = paint({50, 60, 100, 100});
    EXPECT_FALSE(picked(program));
    EXPECT_TRUE(windowOf(program));
}

TEST_F(X11ScreenCapturesTest, layersFollowTheTypeOfTheWindow) {
    open();
    const auto layerOf = [this](const std::string& type) {
        const auto program = paint({50, 60, 300, 200}, {"type=" + type});
        const auto window = shown(program);
        return window ? window->layer : -100;
    };
    EXPECT_EQ(layerOf("NORMAL"), 0);
    EXPECT_EQ(layerOf("DIALOG"), 0);
    EXPECT_EQ(layerOf("SOMETHING_NEW"), 0);
    EXPECT_LT(layerOf("DESKTOP"), 0);
    for (const char* const type : {"DOCK", "UTILITY", "TOOLBAR", "SPLASH"})
        EXPECT_GT(layerOf(type), 0) << type;
}

TEST_F(X11ScreenCapturesTest, whatIsOnAnotherDesktopIsNotOnScreen) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    display->run({"wmctrl", "-i", "-r", std::to_string(window->id), "-t", "1"});
    ASSERT_TRUE(spinUntil([&] {
        const auto moved = windowOf(program);
        return moved && !moved->isOnScreen;
    }));
    const Picture taken = picture(*window);
    ASSERT_FALSE(taken);
    EXPECT_EQ(taken.error().errorDescription(), u"The window has gone."_s);
}

TEST_F(X11ScreenCapturesTest, shadowsThatAProgramDrawsAreCutOff) {
    open();
    const auto program = paint({50, 60, 300, 200}, {"shadow=20"});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->frame.size(), QSize(260, 160));
    EXPECT_TRUE(showsItWhole(*window, {260, 160}));
}

TEST_F(X11ScreenCapturesTest, aWindowThatHasGoneIsAnErrorAndNothingMore) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window && showsItWhole(*window, {300, 200}));
    program->kill();
    ASSERT_TRUE(spinUntil([&] { return !picture(*window); }));
    ShareableWindow never = *window;
    never.id = 0x1FFF'FFFF;
    EXPECT_FALSE(picture(never));
    never.id = 0;
    EXPECT_FALSE(picture(never));
    EXPECT_TRUE(content().windows.empty());
    EXPECT_EQ(content().frontmostProcessId, std::nullopt);
    // The next window is pictured as if nothing had been.
    const auto next = paint({50, 60, 200, 150});
    const auto nextWindow = picked(next);
    EXPECT_TRUE(nextWindow && showsItWhole(*nextWindow, {200, 150}));
}

TEST_F(X11ScreenCapturesTest, theDisplayIsTheWholeScreen) {
    open();
    const auto displays = content().displays;
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays.front().frame, QRect(0, 0, 640, 480));
    const auto taken = complete(capture->displayPicture(displays.front(), {}));
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->size(), QSize(640, 480));
}

TEST_F(X11ScreenCapturesTest, thePrimaryDisplayComesFirstAndIsPicturedAlone) {
    open();
    display->run({"xrandr", "--setmonitor", "left", "300/80x480/127+0+0", "screen"});
    display->run({"xrandr", "--setmonitor", "*right", "340/90x480/127+300+0", "none"});
    const auto program = paint({400, 60, 150, 200});
    ASSERT_TRUE(picked(program));
    const auto displays = content().displays;
    ASSERT_EQ(displays.size(), 2U);
    EXPECT_EQ(displays[0].frame, QRect(300, 0, 340, 480));
    EXPECT_EQ(displays[1].frame, QRect(0, 0, 300, 480));
    EXPECT_TRUE(displayShows({110, 150}, red));
    const auto taken = complete(capture->displayPicture(displays[0], {}));
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->size(), QSize(340, 480));
}

TEST_F(X11ScreenCapturesTest, withoutMonitorsTheScreenIsTheDisplay) {
    open({"-extension", "RANDR"});
    const auto displays = content().displays;
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays.front().frame, QRect(0, 0, 640, 480));
}

TEST_F(X11ScreenCapturesTest, aDisplayThatHasShrunkIsPicturedAsFarAsItGoes) {
    open();
    const auto taken = complete(capture->displayPicture({.frame = {600, 400, 800, 800}}, {}));
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->size(), QSize(40, 80));
    EXPECT_FALSE(complete(capture->displayPicture({.frame = {2000, 0, 100, 100}}, {})));
}

TEST_F(X11ScreenCapturesTest, aServerThatIsLostIsAnErrorAndNothingMore) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    display->kill();
    const auto lost = u"The X server can't be reached."_s;
    const auto found = complete(capture->content({}));
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().errorDescription(), lost);
    const Picture taken = picture(*window);
    ASSERT_FALSE(taken);
    EXPECT_EQ(taken.error().errorDescription(), lost);
}

TEST_F(X11ScreenCapturesTest, withoutAServerEveryQuestionFails) {
    capture = X11ScreenCaptures{worker.executor(), clock, ":65000"}.open();
    EXPECT_FALSE(complete(capture->content({})));
    EXPECT_FALSE(complete(capture->windowPicture({.id = 1}, {})));
    EXPECT_FALSE(complete(capture->displayPicture({.frame = {0, 0, 10, 10}}, {})));
}

TEST_F(X11ScreenCapturesTest, aStopInterruptsTheWaitForTheProgram) {
    open();
    const auto program = paint({50, 60, 300, 200});
    const auto window = picked(program);
    ASSERT_TRUE(window);
    std::stop_source stop;
    stop.request_stop();
    const Picture taken = complete(capture->windowPicture(*window, stop.get_token()));
    ASSERT_FALSE(taken);
    EXPECT_TRUE(taken.error().as<CancelledError>());
}

}  // namespace

}  // namespace corvellan::test

// Keys on a real X server, typed while another program has the keyboard.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>

#include "Platform/Linux/Keys/LinuxGlobalKeys.h"
#include "Platform/Linux/Keys/X11GlobalKeys.h"
#include "Support/PrivateDisplay.h"
#include "Support/X11Keyboard.h"

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit
#pragma clang diagnostic pop

namespace corvellan {

static bool operator==(const KeyDown& left, const KeyDown& right) {
    return left.key == right.key && left.isCommandDown == right.isCommandDown && left.isShiftDown == right.isShiftDown;
}

static void PrintTo(const KeyDown& keyDown, std::ostream* out) {
    constexpr std::array names{"space", "j", "other"};
    *out << (keyDown.isCommandDown ? "command+" : "") << (keyDown.isShiftDown ? "shift+" : "")
         << names.at(static_cast<std::size_t>(keyDown.key));
}

}  // namespace corvellan

namespace corvellan::test {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const KeyDown plainJ{.key = PhysicalKey::j};
const KeyDown shortcut{.key = PhysicalKey::j, .isCommandDown = true, .isShiftDown = true};
/// What comes after everything else: a key that no test types for its own sake.
const KeyDown marker{.key = PhysicalKey::space};

class X11GlobalKeysTest : public testing::Test {
protected:
    void SetUp() override {
        display.emplace();
        typist.emplace(display->name());
        other.emplace(display->name());
    }

    void watch() {
        monitor = X11GlobalKeys{display->name()}.addGlobalMonitor([this](const KeyDown& key) { seen.push_back(key); });
        ASSERT_TRUE(spinUntil([this] { return monitor->watch() == GlobalKeyWatch::watching; }));
        EXPECT_EQ(monitor->explanation(), u""_s);
    }

    /// What has come since the last call, without the marker that ends it.
    std::vector<KeyDown> comes() {
        typist->type({keycode::space});
        EXPECT_TRUE(spinUntil([this] { return !seen.empty() && seen.back().key == PhysicalKey::space; }));
        auto come = std::exchange(seen, {});
        if (!come.empty())
            come.pop_back();
        return come;
    }

    void enableStickyKeys() const {
        xcb_connection_t* connection = xcb_connect(display->name().constData(), nullptr);
        std::free(xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
        constexpr std::uint32_t sticky = XCB_XKB_BOOL_CTRL_ACCESS_X_KEYS | XCB_XKB_BOOL_CTRL_STICKY_KEYS;
        constexpr std::array<std::uint8_t, 32> perKeyRepeat{};
        xcb_generic_error_t* error = xcb_request_check(
            connection, xcb_xkb_set_controls_checked(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                     0, sticky, sticky, XCB_XKB_CONTROL_CONTROLS_ENABLED, 0, 0, 0, 0, 0,
                                                     0, 0, 0, 0, 0, 0, 0, 0, 0, perKeyRepeat.data()));
        EXPECT_EQ(error, nullptr);
        std::free(error);
        xcb_disconnect(connection);
    }

    std::optional<PrivateDisplay> display;
    std::optional<Typist> typist;
    std::optional<OtherProgram> other;
    std::vector<KeyDown> seen;
    std::unique_ptr<GlobalKeyMonitor> monitor;
};

TEST_F(X11GlobalKeysTest, theOtherProgramReceivesTheKeyToo) {
    watch();
    typist->type({keycode::leftSuper, keycode::leftShift, keycode::j});

    EXPECT_THAT(comes(), ElementsAre(shortcut));
    EXPECT_TRUE(spinUntil([this] { return other->presses(keycode::space) == 1; }));
    EXPECT_EQ(other->presses(keycode::j), 1);
    EXPECT_EQ(other->presses(keycode::leftSuper), 1);
}

TEST_F(X11GlobalKeysTest, tellsTheModifiersOfEachPress) {
    watch();
    const auto typed = [this](std::vector<std::uint8_t> keys) {
        typist->type(std::move(keys));
        return comes();
    };
    EXPECT_THAT(typed({keycode::j}), ElementsAre(plainJ));
    EXPECT_THAT(typed({keycode::leftSuper, keycode::j}),
                ElementsAre(KeyDown{.key = PhysicalKey::j, .isCommandDown = true}));
    EXPECT_THAT(typed({keycode::leftShift, keycode::j}),
                ElementsAre(KeyDown{.key = PhysicalKey::j, .isShiftDown = true}));
    for (const auto super : {keycode::leftSuper, keycode::rightSuper})
        for (const auto shift : {keycode::leftShift, keycode::rightShift}) {
            EXPECT_THAT(typed({super, shift, keycode::j}), ElementsAre(shortcut));
            EXPECT_THAT(typed({shift, super, keycode::j}), ElementsAre(shortcut));
        }
    // Others may be down as well.
    EXPECT_THAT(typed({keycode::leftControl, keycode::leftAlt, keycode::leftSuper, keycode::leftShift, keycode::j}),
                ElementsAre(shortcut));
    EXPECT_THAT(typed({keycode::leftControl, keycode::j}), ElementsAre(plainJ));
    EXPECT_THAT(typed({keycode::leftSuper, keycode::leftShift, keycode::k}),
                ElementsAre(KeyDown{.key = PhysicalKey::other, .isCommandDown = true, .isShiftDown = true}));
    // Nothing is left behind.
    EXPECT_THAT(typed({keycode::j}), ElementsAre(plainJ));
}

TEST_F(X11GlobalKeysTest, oneOfTwoEqualModifiersIsEnough) {
    watch();
    typist->press(keycode::leftSuper);
    typist->press(keycode::rightSuper);
    typist->press(keycode::rightShift);
    typist->release(keycode::leftSuper);
    typist->type({keycode::j});
    typist->release(keycode::rightSuper);
    typist->release(keycode::rightShift);
    EXPECT_THAT(comes(), ElementsAre(shortcut));
}

TEST_F(X11GlobalKeysTest, modifiersThatWereDownBeforeTheStartCount) {
    typist->press(keycode::rightSuper);
    typist->press(keycode::leftShift);
    ASSERT_TRUE(spinUntil([this] { return other->presses(keycode::leftShift) == 1; }));
    watch();
    typist->type({keycode::j});
    typist->release(keycode::leftShift);
    typist->type({keycode::j});
    typist->release(keycode::rightSuper);
    EXPECT_THAT(comes(), ElementsAre(shortcut, KeyDown{.key = PhysicalKey::j, .isCommandDown = true}));
}

TEST_F(X11GlobalKeysTest, aKeyThatWasDownBeforeTheStartIsNoPress) {
    typist->press(keycode::j);
    ASSERT_TRUE(spinUntil([this] { return other->presses(keycode::j) >= 1; }));
    watch();
    typist->release(keycode::j);
    EXPECT_THAT(comes(), IsEmpty());
}

TEST_F(X11GlobalKeysTest, aHeldKeyRepeatsNothing) {
    watch();
    typist->press(keycode::j);
    // The other program sees the server repeat it.
    ASSERT_TRUE(spinUntil([this] { return other->presses(keycode::j) >= 4; }, std::chrono::seconds{30}));
    typist->release(keycode::j);
    EXPECT_THAT(comes(), ElementsAre(plainJ));
}

TEST_F(X11GlobalKeysTest, aServerThatRepeatsRawPressesRepeatsNothing) {
    // As one does that runs inside a window of another.
    watch();
    for (int i = 0; i < 3; ++i)
        typist->press(keycode::j);
    typist->release(keycode::j);
    typist->type({keycode::j});
    EXPECT_THAT(comes(), ElementsAre(plainJ, plainJ));
}

TEST_F(X11GlobalKeysTest, aGrabbedKeyboardHidesNothing) {
    watch();
    other->grabKeyboard();
    typist->type({keycode::leftSuper, keycode::leftShift, keycode::j});
    EXPECT_THAT(comes(), ElementsAre(shortcut));
}

TEST_F(X11GlobalKeysTest, theShortcutStaysInItsPlaceWithAnyLayout) {
    for (const char* layout : {"de", "us(dvorak)", "fr", "ru", "us"}) {
        display->run({"setxkbmap", "-layout", layout});
        watch();
        typist->type({keycode::leftSuper, keycode::leftShift, keycode::j});
        // Where Dvorak prints its own J.
        typist->type({keycode::leftSuper, keycode::leftShift, keycode::c});
        EXPECT_THAT(
            comes(),
            ElementsAre(shortcut, KeyDown{.key = PhysicalKey::other, .isCommandDown = true, .isShiftDown = true}))
            << layout;
    }
}

TEST_F(X11GlobalKeysTest, aLayoutThatChangesWhileWatchingIsFollowed) {
    watch();
    // Super moves onto the keys beside the space bar, and Alt where Super was.
    display->run({"setxkbmap", "-layout", "us(dvorak)", "-option", "altwin:swap_alt_win"});
    const KeyDown withShift{.key = PhysicalKey::j, .isShiftDown = true};
    ASSERT_TRUE(spinUntil([this] {
        typist->type({keycode::leftAlt, keycode::leftShift, keycode::j});
        return comes() == std::vector{shortcut};
    }));
    typist->type({keycode::leftSuper, keycode::leftShift, keycode::j});
    EXPECT_THAT(comes(), ElementsAre(withShift));
}

TEST_F(X11GlobalKeysTest, modifiersThatAreDownWhileTheLayoutChangesStillCount) {
    watch();
    typist->press(keycode::leftSuper);
    typist->press(keycode::leftShift);
    display->run({"setxkbmap", "-layout", "de"});
    typist->type({keycode::j});
    typist->release(keycode::leftShift);
    typist->release(keycode::leftSuper);
    EXPECT_THAT(comes(), ElementsAre(shortcut));
}

TEST_F(X11GlobalKeysTest, stickyModifiersCountAsHeld) {
    watch();
    enableStickyKeys();
    // One finger: each modifier is let go before the next key.
    typist->type({keycode::leftSuper});
    typist->type({keycode::leftShift});
    typist->type({keycode::j});
    typist->type({keycode::j});
    EXPECT_THAT(comes(), ElementsAre(shortcut, plainJ));
}

TEST_F(X11GlobalKeysTest, nothingComesOnceTheMonitorIsGone) {
    watch();
    monitor.reset();
    typist->type({keycode::j});
    ASSERT_TRUE(spinUntil([this] { return other->presses(keycode::j) == 1; }));
    settle();
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(X11GlobalKeysTest, theHandlerMayDestroyTheMonitor) {
    int calls = 0;
    monitor = X11GlobalKeys{display->name()}.addGlobalMonitor([&](const KeyDown&) {
        ++calls;
        monitor.reset();
    });
    ASSERT_TRUE(spinUntil([this] { return monitor->watch() == GlobalKeyWatch::watching; }));
    typist->type({keycode::j, keycode::k});
    EXPECT_TRUE(spinUntil([&] { return !monitor; }));
    settle();
    EXPECT_EQ(calls, 1);
}

TEST_F(X11GlobalKeysTest, severalMonitorsHearTheSame) {
    watch();
    std::vector<KeyDown> second;
    const auto another =
        X11GlobalKeys{display->name()}.addGlobalMonitor([&](const KeyDown& key) { second.push_back(key); });
    ASSERT_TRUE(spinUntil([&] { return another->watch() == GlobalKeyWatch::watching; }));
    typist->type({keycode::j});
    EXPECT_THAT(comes(), ElementsAre(plainJ));
    EXPECT_TRUE(spinUntil([&] { return second.size() == 2; }));
    EXPECT_THAT(second, ElementsAre(plainJ, marker));
}

TEST_F(X11GlobalKeysTest, aDisplayThatEndsIsTold) {
    watch();
    int changes = 0;
    monitor->onChanged = [&] { ++changes; };
    display->kill();
    EXPECT_TRUE(spinUntil([this] { return monitor->watch() == GlobalKeyWatch::unavailable; }));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(monitor->explanation(),
              u"The shortcut does not work in other programs: the connection to the X server was lost. Start and end "
              "coaching in the window or from the tray icon's menu instead."_s);
}

TEST_F(X11GlobalKeysTest, theMonitorMayGoWhenItIsToldOfTheEnd) {
    watch();
    monitor->onChanged = [this] { monitor.reset(); };
    display->kill();
    EXPECT_TRUE(spinUntil([this] { return !monitor; }));
}

TEST(X11GlobalKeysWithoutServerTest, aDisplayThatIsNotThereIsTold) {
    const auto monitor = X11GlobalKeys{"/nowhere:99"}.addGlobalMonitor([](const KeyDown&) {});
    EXPECT_EQ(monitor->watch(), GlobalKeyWatch::unavailable);
    EXPECT_TRUE(monitor->explanation().contains(u"can't be reached"_s));
}

}  // namespace

}  // namespace corvellan::test

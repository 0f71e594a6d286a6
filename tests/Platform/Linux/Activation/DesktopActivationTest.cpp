// Under a real window manager, with another program that is being used.

#include <gtest/gtest.h>

#include <optional>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QRasterWindow>

#include "Platform/Linux/Activation/DesktopActivation.h"
#include "Support/X11Keyboard.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class TypedWindow final : public QRasterWindow {
public:
    int presses = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++presses; }
};

class DesktopActivationTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s) << "run me through tests/Support/with-display";
        window.resize(300, 200);
    }
    void show() {
        window.show();
        ASSERT_TRUE(spinUntil([this] { return window.isExposed() && window.isActive(); }));
    }
    /// Another program opens and is typed into, so that it is clear whose the keyboard is.
    void useOther() {
        other.emplace(display);
        typist.type({keycode::k});
        ASSERT_TRUE(spinUntil([this] { return other->presses(keycode::k) == 1; }));
        ASSERT_TRUE(spinUntil([this] { return !window.isActive(); }));
    }
    /// What is typed now goes to our window, and not to the other.
    void expectKeyboard() {
        EXPECT_TRUE(spinUntil([this] { return window.isActive() && !other->hasFocus(); }));
        const int before = window.presses;
        const auto otherBefore = other->presses(keycode::j);
        // A key that is typed while the manager still hands the focus over reaches nobody.
        for (int attempt = 0; attempt < 10 && window.presses == before; ++attempt) {
            typist.type({keycode::j});
            spinUntil([&] { return window.presses > before; }, std::chrono::seconds{2});
        }
        EXPECT_GT(window.presses, before);
        EXPECT_EQ(other->presses(keycode::j), otherBefore);
    }

    const QByteArray display = qgetenv("DISPLAY");
    TypedWindow window;
    Typist typist{display};
    std::optional<OtherProgram> other;
    DesktopActivation activation;
};

TEST_F(DesktopActivationTest, takesTheKeyboardFromAnotherProgram) {
    show();
    useOther();
    activation.activateIgnoringOtherApps(window, {});
    expectKeyboard();
}

TEST_F(DesktopActivationTest, asksAsATaskbarDoes) {
    // What makes a manager grant it that protects the program in use; this one grants either kind.
    show();
    xcb_connection_t* connection = xcb_connect(display.constData(), nullptr);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &events);
    // The answer shows that the server knows.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));

    activation.activateIgnoringOtherApps(window, {});
    std::optional<xcb_client_message_event_t> request;
    EXPECT_TRUE(spinUntil([&] {
        while (auto* event = xcb_poll_for_event(connection)) {
            if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE)
                request = *reinterpret_cast<xcb_client_message_event_t*>(event);
            std::free(event);
        }
        return request.has_value();
    }));
    xcb_disconnect(connection);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->window, window.winId());
    EXPECT_EQ(request->data.data32[0], 2U);
}

TEST_F(DesktopActivationTest, takesItAsOftenAsItIsAsked) {
    show();
    for (int i = 0; i < 3; ++i) {
        useOther();
        activation.activateIgnoringOtherApps(window, u"a token"_s);
        expectKeyboard();
        other.reset();
    }
}

TEST_F(DesktopActivationTest, aWindowThatIsOnlyJustShownTakesIt) {
    useOther();
    window.show();
    activation.activateIgnoringOtherApps(window, {});
    expectKeyboard();
}

TEST_F(DesktopActivationTest, aWindowThatWasHiddenTakesIt) {
    show();
    useOther();
    window.hide();
    window.show();
    activation.activateIgnoringOtherApps(window, {});
    expectKeyboard();
}

TEST_F(DesktopActivationTest, aMinimisedWindowComesBack) {
    show();
    window.showMinimized();
    ASSERT_TRUE(spinUntil([this] { return !window.isActive() && !window.isExposed(); }));
    useOther();
    activation.activateIgnoringOtherApps(window, {});
    expectKeyboard();
    EXPECT_TRUE(spinUntil([this] { return window.isExposed(); }));
}

TEST_F(DesktopActivationTest, theWindowComesToTheTop) {
    show();
    useOther();
    activation.activateIgnoringOtherApps(window, {});
    expectKeyboard();
    // The other window opened over the same place; the manager lists the topmost last.
    xcb_connection_t* connection = xcb_connect(display.constData(), nullptr);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    constexpr std::string_view property = "_NET_CLIENT_LIST_STACKING";
    auto* atom =
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, property.size(), property.data()), nullptr);
    const auto topmost = [&] {
        auto* list = xcb_get_property_reply(
            connection, xcb_get_property(connection, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 100), nullptr);
        const auto* windows = static_cast<const xcb_window_t*>(xcb_get_property_value(list));
        const xcb_window_t last = list->value_len > 0 ? windows[list->value_len - 1] : XCB_NONE;
        std::free(list);
        return last;
    };
    EXPECT_TRUE(spinUntil([&] { return topmost() == window.winId(); }));
    std::free(atom);
    xcb_disconnect(connection);
}

TEST(ActivationTokenTest, isAShortPlainName) {
    EXPECT_TRUE(isActivationToken(u"gnome-shell/Corvellan/4711-2-host_TIME123"_s));
    EXPECT_TRUE(isActivationToken(QString{256, u'x'}));
    EXPECT_FALSE(isActivationToken({}));
    EXPECT_FALSE(isActivationToken(QString{257, u'x'}));
    EXPECT_FALSE(isActivationToken(u"two words"_s));
    EXPECT_FALSE(isActivationToken(u"line\n"_s));
    EXPECT_FALSE(isActivationToken(u"zero"_s + QChar{0}));
    EXPECT_FALSE(isActivationToken(u"ümlaut"_s));
    EXPECT_FALSE(isActivationToken(u"\u007F"_s));
}

}  // namespace

}  // namespace corvellan::test

#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <QByteArray>
#include <stdexcept>
#include <vector>

#include "TestLoop.h"

namespace corvellan::test {

/// Keycodes by what a US keyboard prints, as evdev numbers them.
namespace keycode {
inline constexpr std::uint8_t leftControl = 37;
inline constexpr std::uint8_t j = 44;
inline constexpr std::uint8_t k = 45;
inline constexpr std::uint8_t leftShift = 50;
inline constexpr std::uint8_t c = 54;
inline constexpr std::uint8_t rightShift = 62;
inline constexpr std::uint8_t leftAlt = 64;
inline constexpr std::uint8_t space = 65;
inline constexpr std::uint8_t leftSuper = 133;
inline constexpr std::uint8_t rightSuper = 134;
}  // namespace keycode

/// Somebody who types on a display, through a connection of its own.
class Typist {
public:
    explicit Typist(const QByteArray& display) : m_connection(xcb_connect(display.constData(), nullptr)) {
        if (xcb_connection_has_error(m_connection))
            throw std::runtime_error("can't type");
    }
    ~Typist() { xcb_disconnect(m_connection); }
    Typist(const Typist&) = delete;
    Typist& operator=(const Typist&) = delete;

    void press(std::uint8_t key) { send(XCB_KEY_PRESS, key); }
    void release(std::uint8_t key) { send(XCB_KEY_RELEASE, key); }
    /// Presses all, one after the other, and lets them go in the opposite order.
    void type(std::vector<std::uint8_t> keys) {
        for (const std::uint8_t key : keys)
            press(key);
        std::ranges::reverse(keys);
        for (const std::uint8_t key : keys)
            release(key);
    }

private:
    void send(std::uint8_t type, std::uint8_t key) {
        xcb_test_fake_input(m_connection, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(m_connection);
    }

    xcb_connection_t* m_connection;
};

/// Another program with a window, whose user is typing into it.
class OtherProgram {
public:
    explicit OtherProgram(const QByteArray& display) : m_connection(xcb_connect(display.constData(), nullptr)) {
        if (xcb_connection_has_error(m_connection))
            throw std::runtime_error("can't open a window");
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const xcb_window_t window = xcb_generate_id(m_connection);
        const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
        if (!spinUntil([this] { return hasFocus(); }))
            throw std::runtime_error("the other window did not get the keyboard");
    }
    ~OtherProgram() { xcb_disconnect(m_connection); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    [[nodiscard]] bool hasFocus() {
        read();
        return m_hasFocus;
    }
    /// How often a key has come, repeats included.
    [[nodiscard]] std::ptrdiff_t presses(std::uint8_t key) {
        read();
        return std::ranges::count(m_pressed, key);
    }
    /// Takes the whole keyboard, as a menu or a locked screen does.
    void grabKeyboard() {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        auto* reply = xcb_grab_keyboard_reply(
            m_connection,
            xcb_grab_keyboard(m_connection, 1, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr);
        const bool isGrabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
        if (!isGrabbed)
            throw std::runtime_error("can't grab the keyboard");
    }

private:
    void read() {
        while (auto* event = xcb_poll_for_event(m_connection)) {
            const int type = event->response_type & 0x7F;
            if (type == XCB_FOCUS_IN || type == XCB_FOCUS_OUT)
                takeFocus(type, *reinterpret_cast<xcb_focus_in_event_t*>(event));
            else if (type == XCB_KEY_PRESS)
                m_pressed.push_back(reinterpret_cast<xcb_key_press_event_t*>(event)->detail);
            std::free(event);
        }
    }

    /// A grab lends the keyboard out and leaves the focus where it is.
    void takeFocus(int type, const xcb_focus_in_event_t& event) {
        if (event.mode == XCB_NOTIFY_MODE_NORMAL || event.mode == XCB_NOTIFY_MODE_WHILE_GRABBED)
            m_hasFocus = type == XCB_FOCUS_IN;
    }

    xcb_connection_t* m_connection;
    bool m_hasFocus = false;
    std::vector<std::uint8_t> m_pressed;
};

}  // namespace corvellan::test

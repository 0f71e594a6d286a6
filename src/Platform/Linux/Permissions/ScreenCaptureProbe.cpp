#include "ScreenCaptureProbe.h"

#include <qcorodbuspendingcall.h>
#include <xcb/xcb.h>
#include <cstdlib>
#include <memory>
#include <QDBusMessage>
#include <QDBusPendingCall>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// The portal may have to be started first.
constexpr int portalLimitMilliseconds = 10'000;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

}  // namespace

DesktopSession desktopSession() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland"
               ? DesktopSession::wayland
               : DesktopSession::x11;
}

std::expected<void, Error> grabRootPixel() {
    int number = 0;
    const std::unique_ptr<xcb_connection_t, Disconnect> connection{xcb_connect(nullptr, &number)};
    const auto* const screen =
        xcb_connection_has_error(connection.get()) ? nullptr : screenOf(connection.get(), number);
    if (!screen)
        return std::unexpected(TransportError{u"The screen can't be captured: no display answers."_s});
    const auto request = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0, 1, 1, ~0U);
    xcb_generic_error_t* failed = nullptr;
    const std::unique_ptr<xcb_get_image_reply_t, Free> image{xcb_get_image_reply(connection.get(), request, &failed)};
    const std::unique_ptr<xcb_generic_error_t, Free> error{failed};
    if (!image)
        return std::unexpected(TransportError{u"The screen can't be captured: the display refuses it."_s});
    return {};
}

QCoro::Task<std::expected<void, Error>> findScreenshotPortal(QDBusConnection bus) {
    auto question =
        QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question.setArguments({u"org.freedesktop.portal.Screenshot"_s, u"version"_s});
    const auto call = bus.asyncCall(question, portalLimitMilliseconds);
    const QDBusMessage answer = co_await call;
    if (answer.type() != QDBusMessage::ReplyMessage)
        co_return std::unexpected(
            TransportError{u"The screen can't be captured: this desktop offers no screenshots to programs."_s});
    co_return {};
}

}  // namespace corvellan

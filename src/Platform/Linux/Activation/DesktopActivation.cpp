#include "DesktopActivation.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <QGuiApplication>
#include <QWindow>
#include <string_view>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, FreeMemory>;

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection, cookie, nullptr)};
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// Whether a window manager says that it grants what is asked by `request`.
bool isSupported(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t request) {
    constexpr std::uint32_t mostAtoms = 4096;
    const auto cookie =
        xcb_get_property(connection, 0, root, atomOf(connection, "_NET_SUPPORTED"), XCB_ATOM_ATOM, 0, mostAtoms);
    const Owned<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection, cookie, nullptr)};
    if (!reply || reply->format != 32)
        return false;
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    const auto* end = atoms + reply->value_len;
    return std::find(atoms, end, request) != end;
}

void activateOnX11(xcb_connection_t* connection, QWindow& window) {
    window.raise();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_atom_t activeWindow = atomOf(connection, "_NET_ACTIVE_WINDOW");
    if (!isSupported(connection, root, activeWindow)) {
        // Nobody there to refuse.
        window.requestActivate();
        return;
    }
    constexpr std::uint32_t asTaskbar = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window.winId());
    message.type = activeWindow;
    message.data.data32[0] = asTaskbar;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

void activateOnWayland(QWindow& window, const QString& token) {
    // Qt takes it from there as soon as it asks for the keyboard. It is good for one use, and programs that are
    // started later must not find it.
    constexpr const char* variable = "XDG_ACTIVATION_TOKEN";
    if (isActivationToken(token))
        qputenv(variable, token.toLatin1());
    window.requestActivate();
    qunsetenv(variable);
}

}  // namespace

bool isActivationToken(const QString& token) {
    constexpr qsizetype longest = 256;
    return !token.isEmpty() && token.size() <= longest &&
           std::ranges::all_of(token, [](QChar character) { return character > u' ' && character < u'\x7F'; });
}

void DesktopActivation::activateIgnoringOtherApps(QWindow& window, const QString& token) {
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        activateOnX11(x11->connection(), window);
    else if (QGuiApplication::platformName().startsWith("wayland"_L1))
        activateOnWayland(window, token);
    else
        window.requestActivate();
}

}  // namespace corvellan

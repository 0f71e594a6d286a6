// A program with one window, red on the left and blue on the right, until it is killed.
// Usage: PaintedWindow X Y WIDTH HEIGHT [type=NAME] [shadow=WIDTH] [over]
// `over` paints green, above all others, and asks no window manager.

#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    auto* const reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    const xcb_atom_t found = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return found;
}

struct Window {
    xcb_connection_t* connection;
    xcb_window_t id;

    void set(std::string_view property, xcb_atom_t type, const std::vector<std::uint32_t>& values) const {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, property), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    }
    void fill(xcb_rectangle_t area, std::uint32_t color) const {
        const xcb_gcontext_t context = xcb_generate_id(connection);
        xcb_create_gc(connection, context, id, XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(connection, id, context, 1, &area);
        xcb_free_gc(connection, context);
    }
};

}  // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words{arguments + 1, arguments + count};
    if (words.size() < 4)
        return 2;
    const auto x = static_cast<std::int16_t>(std::stoi(words[0]));
    const auto y = static_cast<std::int16_t>(std::stoi(words[1]));
    const auto width = static_cast<std::uint16_t>(std::stoi(words[2]));
    const auto height = static_cast<std::uint16_t>(std::stoi(words[3]));
    bool isOver = false;
    std::string type;
    std::uint32_t shadow = 0;
    for (const auto& word : words) {
        isOver |= word == "over";
        if (word.starts_with("type="))
            type = word.substr(5);
        if (word.starts_with("shadow="))
            shadow = static_cast<std::uint32_t>(std::stoul(word.substr(7)));
    }

    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection))
        return 1;
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const Window window{.connection = connection, .id = xcb_generate_id(connection)};
    const std::array<std::uint32_t, 2> values{isOver ? 1U : 0U, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window.id, screen->root, x, y, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    window.set("_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(getpid())});
    // Placed by the user: so that the window manager leaves it there.
    constexpr std::size_t sizeHints = 18;
    std::vector<std::uint32_t> hints(sizeHints);
    hints[0] = 1;
    window.set("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
    if (!type.empty())
        window.set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {atom(connection, "_NET_WM_WINDOW_TYPE_" + type)});
    if (shadow > 0)
        window.set("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {shadow, shadow, shadow, shadow});
    xcb_map_window(connection, window.id);
    xcb_flush(connection);

    const auto half = static_cast<std::uint16_t>(width / 2);
    while (auto* const event = xcb_wait_for_event(connection)) {
        std::free(event);
        if (isOver) {
            window.fill({0, 0, width, height}, 0x1EC81E);
        } else {
            window.fill({0, 0, half, height}, 0xC81E1E);
            window.fill({static_cast<std::int16_t>(half), 0, static_cast<std::uint16_t>(width - half), height},
                        0x1E1EC8);
        }
        xcb_flush(connection);
    }
    return 1;
}

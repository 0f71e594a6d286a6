#include "X11Display.h"

#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/res.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "X11Picture.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

/// Properties and values, in the order of `Atom`.
constexpr std::array<std::string_view, 9> plainNames{
    "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST_STACKING", "_NET_CURRENT_DESKTOP", "_NET_WM_DESKTOP",    "_NET_WM_PID",
    "_NET_WM_STATE",      "_NET_WM_STATE_HIDDEN",      "_NET_WM_WINDOW_TYPE",  "_GTK_FRAME_EXTENTS",
};

struct TypeLayer {
    std::string_view type;
    int layer = 0;
};

/// What people work in lies on 0; for the rest only the sign and the order mean something.
constexpr std::array typeLayers{
    TypeLayer{"_NET_WM_WINDOW_TYPE_DESKTOP", -1},     TypeLayer{"_NET_WM_WINDOW_TYPE_NORMAL", 0},
    TypeLayer{"_NET_WM_WINDOW_TYPE_DIALOG", 0},       TypeLayer{"_NET_WM_WINDOW_TYPE_UTILITY", 3},
    TypeLayer{"_NET_WM_WINDOW_TYPE_TOOLBAR", 3},      TypeLayer{"_NET_WM_WINDOW_TYPE_SPLASH", 3},
    TypeLayer{"_NET_WM_WINDOW_TYPE_DOCK", 20},        TypeLayer{"_NET_WM_WINDOW_TYPE_NOTIFICATION", 25},
    TypeLayer{"_NET_WM_WINDOW_TYPE_MENU", 101},       TypeLayer{"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", 101},
    TypeLayer{"_NET_WM_WINDOW_TYPE_POPUP_MENU", 101}, TypeLayer{"_NET_WM_WINDOW_TYPE_COMBO", 101},
    TypeLayer{"_NET_WM_WINDOW_TYPE_TOOLTIP", 102},    TypeLayer{"_NET_WM_WINDOW_TYPE_DND", 103},
};

constexpr std::size_t mostWindows = 1024;
constexpr std::uint32_t everyDesktop = 0xFFFF'FFFF;

std::unexpected<Error> failure(const QString& sentence) {
    return std::unexpected(Error{TransportError{sentence}});
}

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

const xcb_visualtype_t* visualOf(const xcb_setup_t* setup, xcb_visualid_t id) {
    for (auto screens = xcb_setup_roots_iterator(setup); screens.rem > 0; xcb_screen_next(&screens))
        for (auto depths = xcb_screen_allowed_depths_iterator(screens.data); depths.rem > 0; xcb_depth_next(&depths))
            for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0; xcb_visualtype_next(&visuals))
                if (visuals.data->visual_id == id)
                    return visuals.data;
    return nullptr;
}

X11PictureForm formOf(const xcb_setup_t* setup, const xcb_visualtype_t& visual, std::uint8_t depth) {
    X11PictureForm form{.isLittleEndian = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST,
                        .redMask = visual.red_mask,
                        .greenMask = visual.green_mask,
                        .blueMask = visual.blue_mask};
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0; xcb_format_next(&formats))
        if (formats.data->depth == depth) {
            form.bitsPerPixel = formats.data->bits_per_pixel;
            form.linePadBits = formats.data->scanline_pad;
        }
    return form;
}

}  // namespace

/// What is asked about one window; all windows are asked about before the first answer is read.
struct X11Display::Questions {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
    xcb_get_property_cookie_t types;
    xcb_get_property_cookie_t states;
    xcb_get_property_cookie_t desktop;
    xcb_get_property_cookie_t shadows;
};

std::unique_ptr<X11Display> X11Display::open(const QByteArray& name) {
    int number = 0;
    xcb_connection_t* const connection = xcb_connect(name.isEmpty() ? nullptr : name.constData(), &number);
    const xcb_screen_t* const screen =
        xcb_connection_has_error(connection) != 0 ? nullptr : screenOf(connection, number);
    if (!screen) {
        xcb_disconnect(connection);
        return nullptr;
    }
    std::unique_ptr<X11Display> display{new X11Display{connection, *screen}};
    display->internAtoms();
    display->findExtensions();
    return display;
}

X11Display::X11Display(xcb_connection_t* connection, const xcb_screen_t& screen)
    : m_connection(connection),
      m_root(screen.root),
      m_rootVisual(screen.root_visual),
      m_screen(0, 0, screen.width_in_pixels, screen.height_in_pixels) {}

X11Display::~X11Display() {
    // The server lets go of the kept window by itself.
    xcb_disconnect(m_connection);
}

void X11Display::internAtoms() {
    static_assert(plainNames.size() == otherAtoms);
    std::vector<xcb_intern_atom_cookie_t> cookies;
    const auto ask = [&](std::string_view name) {
        cookies.push_back(xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    };
    for (const auto name : plainNames)
        ask(name);
    for (const auto& row : typeLayers)
        ask(row.type);
    for (const auto cookie : cookies) {
        const Reply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(m_connection, cookie, nullptr)};
        m_atoms.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
}

void X11Display::findExtensions() {
    const auto isThere = [this](xcb_extension_t& extension) {
        const auto* const data = xcb_get_extension_data(m_connection, &extension);
        return data && data->present != 0;
    };
    // The versions from which on windows have names for their contents, there are monitors, and processes of
    // clients. Servers answer with theirs, and don't take questions before this one.
    const auto isAtLeast = [](const auto& reply, unsigned major, unsigned minor) {
        return reply &&
               (reply->major_version > major || (reply->major_version == major && reply->minor_version >= minor));
    };
    if (isThere(xcb_composite_id)) {
        const Reply<xcb_composite_query_version_reply_t> reply{
            xcb_composite_query_version_reply(m_connection, xcb_composite_query_version(m_connection, 0, 4), nullptr)};
        m_hasComposite = isAtLeast(reply, 0, 2);
    }
    if (isThere(xcb_randr_id)) {
        const Reply<xcb_randr_query_version_reply_t> reply{
            xcb_randr_query_version_reply(m_connection, xcb_randr_query_version(m_connection, 1, 5), nullptr)};
        m_hasMonitors = isAtLeast(reply, 1, 5);
    }
    if (isThere(xcb_res_id)) {
        const Reply<xcb_res_query_version_reply_t> reply{
            xcb_res_query_version_reply(m_connection, xcb_res_query_version(m_connection, 1, 2), nullptr)};
        m_hasClientIds = reply && (reply->server_major > 1 || (reply->server_major == 1 && reply->server_minor >= 2));
    }
}

/// Nobody asks for events, but some come unasked, and errors of what was not checked.
void X11Display::skipEvents() {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
    }
}

xcb_get_property_cookie_t X11Display::askForProperty(xcb_window_t window, xcb_atom_t property) const {
    constexpr std::uint32_t mostNumbers = mostWindows;
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostNumbers);
}

/// The numbers of a property; none when it is missing or is something else.
std::vector<std::uint32_t> X11Display::numbers(xcb_get_property_cookie_t cookie) const {
    constexpr std::uint8_t wide = 32;
    const Reply<xcb_get_property_reply_t> reply{xcb_get_property_reply(m_connection, cookie, nullptr)};
    if (!reply || reply->format != wide)
        return {};
    const auto count = static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(std::uint32_t);
    const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + count};
}

ShareableContent X11Display::content() {
    skipEvents();
    const auto activeCookie = askForProperty(m_root, m_atoms[activeWindow]);
    const auto listCookie = askForProperty(m_root, m_atoms[clientListStacking]);
    const auto desktopCookie = askForProperty(m_root, m_atoms[Atom::currentDesktop]);
    const auto active = numbers(activeCookie);
    auto windows = numbers(listCookie);
    const auto desktop = numbers(desktopCookie);

    ShareableContent content{.displays = displays()};
    if (!active.empty() && active.front() != XCB_WINDOW_NONE)
        content.frontmostProcessId = processIdOf(active.front());
    // The server lists them from the bottom up.
    std::ranges::reverse(windows);
    std::vector<Questions> questions;
    for (const auto window : windows)
        questions.push_back(askAbout(window));
    for (std::size_t i = 0; i < windows.size(); ++i)
        if (auto facts = factsOf(windows[i], questions[i], desktop.empty() ? everyDesktop : desktop.front()))
            content.windows.push_back(*std::move(facts));
    return content;
}

std::vector<ShareableDisplay> X11Display::displays() {
    if (!m_hasMonitors)
        return {{.id = 0, .frame = m_screen}};
    const Reply<xcb_randr_get_monitors_reply_t> reply{
        xcb_randr_get_monitors_reply(m_connection, xcb_randr_get_monitors(m_connection, m_root, 1), nullptr)};
    std::vector<ShareableDisplay> found;
    if (!reply)
        return found;
    for (auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get()); monitors.rem > 0;
         xcb_randr_monitor_info_next(&monitors)) {
        const auto& monitor = *monitors.data;
        const ShareableDisplay display{.id = monitor.name,
                                       .frame = {monitor.x, monitor.y, monitor.width, monitor.height}};
        found.insert(monitor.primary != 0 ? found.begin() : found.end(), display);
    }
    return found;
}

X11Display::Questions X11Display::askAbout(xcb_window_t window) {
    return {.attributes = xcb_get_window_attributes(m_connection, window),
            .geometry = xcb_get_geometry(m_connection, window),
            .origin = xcb_translate_coordinates(m_connection, window, m_root, 0, 0),
            .types = askForProperty(window, m_atoms[wmWindowType]),
            .states = askForProperty(window, m_atoms[wmState]),
            .desktop = askForProperty(window, m_atoms[wmDesktop]),
            .shadows = askForProperty(window, m_atoms[gtkFrameExtents])};
}

std::optional<ShareableWindow> X11Display::factsOf(xcb_window_t window, const Questions& questions,
                                                   std::uint32_t currentDesktop) {
    // Every answer is taken, also those of a window that has gone.
    const Reply<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(m_connection, questions.attributes, nullptr)};
    const Reply<xcb_get_geometry_reply_t> geometry{xcb_get_geometry_reply(m_connection, questions.geometry, nullptr)};
    const Reply<xcb_translate_coordinates_reply_t> origin{
        xcb_translate_coordinates_reply(m_connection, questions.origin, nullptr)};
    const auto types = numbers(questions.types);
    const auto states = numbers(questions.states);
    const auto desktop = numbers(questions.desktop);
    const auto shadows = numbers(questions.shadows);
    if (!attributes || !geometry || !origin)
        return std::nullopt;

    const bool isHere = desktop.empty() || desktop.front() == everyDesktop || currentDesktop == everyDesktop ||
                        desktop.front() == currentDesktop;
    const bool isHidden = std::ranges::find(states, m_atoms[wmStateHidden]) != states.end();
    QRect frame{origin->dst_x, origin->dst_y, geometry->width, geometry->height};
    // Some toolkits draw the shadow themselves: left, right, top, bottom.
    constexpr std::size_t sides = 4;
    constexpr std::uint32_t widestShadow = 1000;
    if (shadows.size() == sides &&
        std::ranges::all_of(shadows, [](std::uint32_t width) { return width < widestShadow; }))
        frame.adjust(static_cast<int>(shadows[0]), static_cast<int>(shadows[2]), -static_cast<int>(shadows[1]),
                     -static_cast<int>(shadows[3]));
    return ShareableWindow{.id = window,
                           .processId = processIdOf(window),
                           .isOnScreen = attributes->map_state == XCB_MAP_STATE_VIEWABLE && isHere && !isHidden,
                           .layer = layerOf(types),
                           .frame = frame};
}

/// By the server's own knowledge where it tells. What a window says of itself may be wrong: programs in a
/// container count their processes anew.
std::optional<std::int64_t> X11Display::processIdOf(xcb_window_t window) {
    if (m_hasClientIds) {
        const xcb_res_client_id_spec_t spec{.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        const Reply<xcb_res_query_client_ids_reply_t> reply{
            xcb_res_query_client_ids_reply(m_connection, xcb_res_query_client_ids(m_connection, 1, &spec), nullptr)};
        if (reply && reply->num_ids > 0) {
            const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
            if (xcb_res_client_id_value_value_length(ids.data) > 0)
                return *xcb_res_client_id_value_value(ids.data);
        }
    }
    const auto told = numbers(askForProperty(window, m_atoms[wmPid]));
    return told.empty() ? std::nullopt : std::optional<std::int64_t>{told.front()};
}

/// The first type that is known decides.
int X11Display::layerOf(const std::vector<std::uint32_t>& types) const {
    for (const auto type : types)
        for (std::size_t row = 0; row < typeLayers.size(); ++row)
            if (m_atoms[otherAtoms + row] == type)
                return typeLayers.at(row).layer;
    return 0;
}

std::optional<QPoint> X11Display::originOf(xcb_window_t window) const {
    const Reply<xcb_translate_coordinates_reply_t> reply{xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr)};
    return reply ? std::optional{QPoint{reply->dst_x, reply->dst_y}} : std::nullopt;
}

/// As it is by now; absent when it has gone, or can't be seen any more.
std::optional<QRect> X11Display::frameOf(xcb_window_t window) {
    const auto facts = factsOf(window, askAbout(window), everyDesktop);
    return facts && facts->isOnScreen && !facts->frame.isEmpty() ? std::optional{facts->frame} : std::nullopt;
}

/// The window itself, or the one that the window manager has put round it.
xcb_window_t X11Display::topLevelOf(xcb_window_t window) const {
    constexpr int deepest = 16;
    for (int depth = 0; depth < deepest; ++depth) {
        const Reply<xcb_query_tree_reply_t> tree{
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr)};
        if (!tree || tree->parent == XCB_WINDOW_NONE || tree->parent == m_root)
            break;
        window = tree->parent;
    }
    return window;
}

bool X11Display::succeeds(xcb_void_cookie_t cookie) const {
    const Reply<xcb_generic_error_t> error{xcb_request_check(m_connection, cookie)};
    return !error && !isLost();
}

bool X11Display::keepWhole(xcb_window_t window) {
    const auto topLevel = m_hasComposite ? topLevelOf(window) : xcb_window_t{XCB_WINDOW_NONE};
    if (topLevel == m_kept)
        return false;
    // One that has gone is no error worth a word.
    if (m_kept != XCB_WINDOW_NONE)
        xcb_composite_unredirect_window(m_connection, m_kept, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    m_kept = XCB_WINDOW_NONE;
    if (topLevel == XCB_WINDOW_NONE ||
        !succeeds(xcb_composite_redirect_window_checked(m_connection, topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC)))
        return false;
    m_kept = topLevel;
    return true;
}

std::expected<QImage, Error> X11Display::windowPicture(xcb_window_t window) {
    skipEvents();
    const auto frame = frameOf(window);
    if (!frame)
        return failure(u"The window has gone."_s);
    if (m_kept != XCB_WINDOW_NONE && topLevelOf(window) == m_kept) {
        QImage kept = keptPicture(m_kept, *frame);
        if (!kept.isNull())
            return kept;
    }
    return screenPicture(*frame);
}

QImage X11Display::keptPicture(xcb_window_t topLevel, QRect frame) {
    const auto origin = originOf(topLevel);
    const Reply<xcb_get_geometry_reply_t> outside{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, topLevel), nullptr)};
    const Reply<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, topLevel), nullptr)};
    if (!origin || !outside || !attributes)
        return {};
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    if (!succeeds(xcb_composite_name_window_pixmap_checked(m_connection, topLevel, pixmap)))
        return {};
    const int border = outside->border_width;
    const QRect whole{0, 0, outside->width + 2 * border, outside->height + 2 * border};
    const QRect area = frame.translated(QPoint{border, border} - *origin) & whole;
    QImage image = imageOf(pixmap, area, attributes->visual);
    xcb_free_pixmap(m_connection, pixmap);
    return image;
}

std::expected<QImage, Error> X11Display::screenPicture(QRect area) {
    skipEvents();
    // The screen may have changed its size since the connection began.
    const Reply<xcb_get_geometry_reply_t> root{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_root), nullptr)};
    if (root)
        m_screen = {0, 0, root->width, root->height};
    QImage image = imageOf(m_root, area & m_screen, m_rootVisual);
    if (image.isNull())
        return failure(u"The X server gave no picture of the screen."_s);
    return image;
}

QImage X11Display::imageOf(xcb_drawable_t drawable, QRect area, xcb_visualid_t visual) const {
    if (area.isEmpty())
        return {};
    const auto cookie =
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(area.x()),
                      static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
                      static_cast<std::uint16_t>(area.height()), ~0U);
    const Reply<xcb_get_image_reply_t> reply{xcb_get_image_reply(m_connection, cookie, nullptr)};
    const auto* const setup = xcb_get_setup(m_connection);
    const auto* const type = visualOf(setup, visual);
    if (!reply || !type)
        return {};
    const auto length = static_cast<std::size_t>(std::max(0, xcb_get_image_data_length(reply.get())));
    return imageOfX11(formOf(setup, *type, reply->depth), area.size(), {xcb_get_image_data(reply.get()), length});
}

}  // namespace corvellan

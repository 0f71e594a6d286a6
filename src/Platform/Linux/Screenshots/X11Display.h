#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <expected>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QImage>
#include <QRect>
#include <vector>

#include "Base/Error.h"
#include "Platform/ScreenCapture.h"

namespace corvellan {

/// One connection to an X server, through which windows are listed and pictured. Every question waits for the
/// server's answer, so that it belongs on a thread that may wait; one thread at a time. What has gone between two
/// questions is an error, and nothing more.
class X11Display {
public:
    /// Null when the server can't be reached.
    /// \param name for example ":0"; empty means that of the environment.
    [[nodiscard]] static std::unique_ptr<X11Display> open(const QByteArray& name);
    ~X11Display();
    X11Display(const X11Display&) = delete;
    X11Display& operator=(const X11Display&) = delete;

    /// The server answers no more: for good.
    [[nodiscard]] bool isLost() const { return xcb_connection_has_error(m_connection) != 0; }

    [[nodiscard]] ShareableContent content();

    /// Asks the server to keep the whole of a window, also what others cover, until the next window is kept or
    /// the connection ends. True when that is new: programs then take a moment to draw what was covered.
    bool keepWhole(xcb_window_t window);
    /// The whole of a window that is kept; else what the screen shows in its place, which others may cover.
    [[nodiscard]] std::expected<QImage, Error> windowPicture(xcb_window_t window);
    /// What the screen shows in `area`.
    [[nodiscard]] std::expected<QImage, Error> screenPicture(QRect area);

private:
    struct FreeMemory {
        void operator()(void* memory) const { std::free(memory); }
    };
    template <typename T>
    using Reply = std::unique_ptr<T, FreeMemory>;

    enum Atom : std::size_t {
        activeWindow,
        clientListStacking,
        currentDesktop,
        wmDesktop,
        wmPid,
        wmState,
        wmStateHidden,
        wmWindowType,
        gtkFrameExtents,
        otherAtoms,
    };
    struct Questions;

    X11Display(xcb_connection_t* connection, const xcb_screen_t& screen);

    void internAtoms();
    void findExtensions();
    void skipEvents();
    [[nodiscard]] std::vector<ShareableDisplay> displays();
    [[nodiscard]] Questions askAbout(xcb_window_t window);
    [[nodiscard]] std::optional<ShareableWindow> factsOf(xcb_window_t window, const Questions& questions,
                                                         std::uint32_t currentDesktop);
    [[nodiscard]] std::optional<std::int64_t> processIdOf(xcb_window_t window);
    [[nodiscard]] xcb_get_property_cookie_t askForProperty(xcb_window_t window, xcb_atom_t property) const;
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_get_property_cookie_t cookie) const;
    [[nodiscard]] int layerOf(const std::vector<std::uint32_t>& types) const;
    [[nodiscard]] std::optional<QRect> frameOf(xcb_window_t window);
    [[nodiscard]] std::optional<QPoint> originOf(xcb_window_t window) const;
    [[nodiscard]] xcb_window_t topLevelOf(xcb_window_t window) const;
    [[nodiscard]] bool succeeds(xcb_void_cookie_t cookie) const;
    [[nodiscard]] QImage imageOf(xcb_drawable_t drawable, QRect area, xcb_visualid_t visual) const;
    [[nodiscard]] QImage keptPicture(xcb_window_t topLevel, QRect frame);

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    xcb_visualid_t m_rootVisual;
    QRect m_screen;
    std::vector<xcb_atom_t> m_atoms;
    bool m_hasComposite = false;
    bool m_hasMonitors = false;
    bool m_hasClientIds = false;
    xcb_window_t m_kept = XCB_WINDOW_NONE;
};

}  // namespace corvellan

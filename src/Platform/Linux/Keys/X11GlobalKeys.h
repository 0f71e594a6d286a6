#pragma once

#include <QByteArray>

#include "Platform/GlobalKeys.h"

namespace corvellan {

/// Key presses on an X display, through a connection of its own. They are observed as raw events of the
/// root window, so that neither the program with the keyboard nor a window manager's grab notices. Not for
/// Wayland, where such a connection sees the presses in X programs only.
///
/// Connecting waits for the display server, as the program's own windows do; nothing later waits.
class X11GlobalKeys final : public GlobalKeys {
public:
    /// \param display the display's name, for example ":0"; empty means that of the environment.
    explicit X11GlobalKeys(QByteArray display = {}) : m_display(std::move(display)) {}

    /// Reports every key that is no modifier. The handler may destroy the monitor.
    [[nodiscard]] std::unique_ptr<GlobalKeyMonitor> addGlobalMonitor(
        std::function<void(const KeyDown&)> onKeyDown) override;

private:
    QByteArray m_display;
};

}  // namespace corvellan

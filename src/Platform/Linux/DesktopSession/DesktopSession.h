#pragma once

#include <QString>
#include <QStringList>

namespace corvellan {

/// Which desktop the program runs on, as its environment tells. A plain value.
struct DesktopSession {
    enum class Kind { x11, hyprland, niri, kwin, otherWayland };

    bool isWayland = false;
    /// As in XDG_CURRENT_DESKTOP, most specific first: "ubuntu", "GNOME".
    QStringList desktopNames;
    /// Private to the user; empty when there is none.
    QString runtimeFolder;
    /// Where the compositor takes requests; empty where it has none, or the environment is from another session.
    QString hyprlandSocket;
    QString niriSocket;

    /// Reads this process's environment and looks whether the sockets that it names are there.
    [[nodiscard]] static DesktopSession current();

    [[nodiscard]] Kind kind() const;
};

}  // namespace corvellan

#include "DesktopSession.h"

#include <QFileInfo>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

QString existing(const QString& path) {
    return !path.isEmpty() && QFileInfo::exists(path) ? path : QString{};
}

}  // namespace

DesktopSession DesktopSession::current() {
    DesktopSession session;
    // Not by XDG_SESSION_TYPE, which an X display within a Wayland session inherits.
    session.isWayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    session.desktopNames = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    session.runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (const QString signature = qEnvironmentVariable("HYPRLAND_INSTANCE_SIGNATURE");
        !signature.isEmpty() && !signature.contains(u'/') && !session.runtimeFolder.isEmpty())
        session.hyprlandSocket = existing(u"%1/hypr/%2/.socket.sock"_s.arg(session.runtimeFolder, signature));
    session.niriSocket = existing(qEnvironmentVariable("NIRI_SOCKET"));
    return session;
}

DesktopSession::Kind DesktopSession::kind() const {
    // A desktop within another inherits that one's variables, except the one that names its display.
    if (!isWayland)
        return Kind::x11;
    if (!hyprlandSocket.isEmpty())
        return Kind::hyprland;
    if (!niriSocket.isEmpty())
        return Kind::niri;
    if (desktopNames.contains("KDE"_L1, Qt::CaseInsensitive))
        return Kind::kwin;
    return Kind::otherWayland;
}

}  // namespace corvellan

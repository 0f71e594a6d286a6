#include "MakeCaptureHiding.h"

#include <QDir>
#include <QGuiApplication>

#include "AskedCaptureHiding.h"
#include "HyprlandFacility.h"
#include "KWinFacility.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<CaptureHiding> onX11() {
    return std::make_unique<NoCaptureHiding>(
        u"On X11 every program can read the whole screen, so this window can't be hidden from screen sharing."_s);
}

std::unique_ptr<CaptureHiding> onNiri() {
    // Windows that come through XWayland carry the application's name, native ones that of its desktop file.
    const auto escaped = [](QString name) { return name.replace(u'.', u"\\."_s); };
    const QString lines =
        u"window-rule {\n"
        "    match app-id=r#\"^(%1|%2)$\"#\n"
        "    block-out-from \"screen-capture\"\n"
        "}\n"_s.arg(escaped(QCoreApplication::applicationName()), escaped(QGuiApplication::desktopFileName()));
    return std::make_unique<NoCaptureHiding>(
        u"niri hides windows only by its own configuration. With these lines in ~/.config/niri/config.kdl it hides "
        "this program's windows at all times; whether they are there can't be seen from here."_s,
        lines);
}

std::unique_ptr<CaptureHiding> onOther(const DesktopSession& session) {
    const bool isGnome = session.desktopNames.contains("GNOME"_L1, Qt::CaseInsensitive);
    const QString name = isGnome ? u"GNOME"_s : session.desktopNames.value(0, u"This desktop"_s);
    return std::make_unique<NoCaptureHiding>(
        u"%1 offers programs no way to hide a window from screen sharing."_s.arg(name));
}

}  // namespace

std::unique_ptr<CaptureHiding> makeCaptureHiding(Clock& clock, const DesktopSession& session,
                                                 const QDBusConnection& sessionBus) {
    switch (session.kind()) {
    case DesktopSession::Kind::x11: return onX11();
    case DesktopSession::Kind::hyprland:
        return std::make_unique<AskedCaptureHiding>(std::make_unique<HyprlandFacility>(session.hyprlandSocket, clock));
    case DesktopSession::Kind::niri: return onNiri();
    case DesktopSession::Kind::kwin: {
        const QString folder = session.runtimeFolder.isEmpty() ? QDir::tempPath() : session.runtimeFolder;
        return std::make_unique<AskedCaptureHiding>(std::make_unique<KWinFacility>(sessionBus, folder, clock));
    }
    case DesktopSession::Kind::otherWayland: return onOther(session);
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan

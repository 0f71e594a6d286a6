#include "LinuxGlobalKeys.h"

#include <QDBusConnection>

#include "PortalGlobalKeys.h"
#include "X11GlobalKeys.h"

namespace corvellan {

bool isWaylandSession(QStringView sessionType, QStringView waylandDisplay) {
    return sessionType == u"wayland" || !waylandDisplay.isEmpty();
}

std::unique_ptr<GlobalKeys> makeGlobalKeys(Clock& clock) {
    if (isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"), qEnvironmentVariable("WAYLAND_DISPLAY")))
        return std::make_unique<PortalGlobalKeys>(QDBusConnection::sessionBus(), clock);
    return std::make_unique<X11GlobalKeys>();
}

}  // namespace corvellan

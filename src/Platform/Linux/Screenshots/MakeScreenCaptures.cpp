#include "MakeScreenCaptures.h"

#include "PortalScreenCaptures.h"
#include "X11ScreenCaptures.h"

namespace corvellan {

std::unique_ptr<ScreenCaptures> makeScreenCaptures(Executor& main, Executor& worker, Clock& clock,
                                                   const DesktopSession& session, const QDBusConnection& sessionBus) {
    if (session.kind() == DesktopSession::Kind::x11)
        return std::make_unique<X11ScreenCaptures>(worker, clock);
    return std::make_unique<PortalScreenCaptures>(sessionBus, main, worker, clock);
}

}  // namespace corvellan

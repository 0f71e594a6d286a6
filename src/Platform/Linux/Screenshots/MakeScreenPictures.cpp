#include "MakeScreenPictures.h"

#include "PortalScreenPictures.h"
#include "X11ScreenPictures.h"

namespace corvellan {

std::unique_ptr<ScreenPictures> makeScreenPictures(Executor& worker, Clock& clock, const DesktopSession& session,
                                                   const QDBusConnection& sessionBus) {
    if (session.kind() == DesktopSession::Kind::x11)
        return std::make_unique<X11ScreenPictures>();
    return std::make_unique<PortalScreenPictures>(sessionBus, worker, clock);
}

}  // namespace corvellan

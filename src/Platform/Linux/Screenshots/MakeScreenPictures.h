#pragma once

#include <memory>
#include <QDBusConnection>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/Linux/DesktopSession/DesktopSession.h"
#include "Platform/ScreenPictures.h"

namespace corvellan {

/// This desktop's usual way to picture the screen; never null. What is passed in outlives it.
[[nodiscard]] std::unique_ptr<ScreenPictures> makeScreenPictures(
    Executor& worker, Clock& clock, const DesktopSession& session = DesktopSession::current(),
    const QDBusConnection& sessionBus = QDBusConnection::sessionBus());

}  // namespace corvellan

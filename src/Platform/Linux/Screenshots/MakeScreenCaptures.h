#pragma once

#include <memory>
#include <QDBusConnection>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/Linux/DesktopSession/DesktopSession.h"
#include "Platform/ScreenCapture.h"

namespace corvellan {

/// This desktop's way to picture windows and displays; never null. What is passed in outlives it, and executors
/// and clock also what it was asked.
[[nodiscard]] std::unique_ptr<ScreenCaptures> makeScreenCaptures(Executor& main, Executor& worker, Clock& clock,
                                                                 const DesktopSession& session,
                                                                 const QDBusConnection& sessionBus);

}  // namespace corvellan

#pragma once

#include <memory>
#include <QDBusConnection>

#include "Base/Clock.h"
#include "Platform/CaptureHiding.h"
#include "Platform/Linux/DesktopSession/DesktopSession.h"

namespace corvellan {

/// The way of this desktop to hide a window from capture; never null. Main thread.
///
/// \param clock outlives it.
[[nodiscard]] std::unique_ptr<CaptureHiding> makeCaptureHiding(
    Clock& clock, const DesktopSession& session = DesktopSession::current(),
    const QDBusConnection& sessionBus = QDBusConnection::sessionBus());

}  // namespace corvellan

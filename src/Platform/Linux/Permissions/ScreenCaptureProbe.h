#pragma once

#include <expected>
#include <QCoroTask>
#include <QDBusConnection>

#include "Base/Error.h"

namespace corvellan {

class Executor;

enum class DesktopSession { x11, wayland };

/// Which kind of session the program runs in, by the environment: on Wayland also where the program itself
/// goes through XWayland, whose root window shows nothing of the others.
[[nodiscard]] DesktopSession desktopSession();

/// Takes one pixel of the X server's root window. On an executor that may wait: it connects to the server.
[[nodiscard]] std::expected<void, Error> grabRootPixel();

/// Whether the desktop has a screenshot portal, and nothing more: a picture is not asked for, since the portal
/// would put its question before the user each time. Whether the user lets it take one shows later. Main thread.
[[nodiscard]] QCoro::Task<std::expected<void, Error>> findScreenshotPortal(QDBusConnection bus);

}  // namespace corvellan

#pragma once

#include <memory>
#include <QStringView>

#include "Base/Clock.h"
#include "Platform/GlobalKeys.h"

namespace corvellan {

/// Whether the desktop runs on Wayland, by the values of `XDG_SESSION_TYPE` and `WAYLAND_DISPLAY`. There the
/// presses in other programs reach nobody but the desktop, even if this program itself is an X program.
[[nodiscard]] bool isWaylandSession(QStringView sessionType, QStringView waylandDisplay);

/// The keys of this session: its X display's, or those that a Wayland desktop's portal gives. Main thread.
/// \param clock must outlive all monitors.
[[nodiscard]] std::unique_ptr<GlobalKeys> makeGlobalKeys(Clock& clock);

}  // namespace corvellan

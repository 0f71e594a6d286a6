#pragma once

#include "Platform/WindowActivation.h"

namespace corvellan {

/// On X11 the window manager is asked as a taskbar asks it, which it grants although another program is being
/// used: the user did ask, only not in our window. On Wayland nobody but the desktop gives the keyboard away,
/// and it may merely mark the window where no token shows that the user wants it.
class DesktopActivation final : public WindowActivation {
public:
    void activateIgnoringOtherApps(QWindow& window, const QString& token) override;
};

/// Whether the desktop could have made this token: short, and without anything that a name has not.
[[nodiscard]] bool isActivationToken(const QString& token);

}  // namespace corvellan

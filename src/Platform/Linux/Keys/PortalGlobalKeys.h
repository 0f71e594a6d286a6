#pragma once

#include <QDBusConnection>

#include "Base/Clock.h"
#include "Platform/GlobalKeys.h"

namespace corvellan {

/// The one shortcut on desktops that let no program see the keys of another: the desktop's portal for
/// global shortcuts is asked for Super + Shift + J, the user may choose other keys there, and whichever
/// they are, they count as Command + Shift + J. No call waits for the portal.
class PortalGlobalKeys final : public GlobalKeys {
public:
    /// \param bus the session's. `clock` must outlive all monitors.
    PortalGlobalKeys(QDBusConnection bus, Clock& clock) : m_bus(std::move(bus)), m_clock(clock) {}

    [[nodiscard]] std::unique_ptr<GlobalKeyMonitor> addGlobalMonitor(
        std::function<void(const KeyDown&)> onKeyDown) override;

private:
    QDBusConnection m_bus;
    Clock& m_clock;
};

}  // namespace corvellan

#pragma once

#include <QDBusConnection>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/ScreenCapture.h"

namespace corvellan {

/// Pictures from the desktop's screenshot portal. It tells nothing of windows, and its picture of the whole
/// desktop is the only display. The desktop may ask the user before a picture; who refuses once, or leaves the
/// question open, is not asked again by the same capture.
class PortalScreenCaptures final : public ScreenCaptures {
public:
    /// \param main of the bus. \param worker reads the pictures. All of it outlives what is opened and what it
    /// was asked.
    PortalScreenCaptures(QDBusConnection bus, Executor& main, Executor& worker, Clock& clock);

    [[nodiscard]] std::shared_ptr<ScreenCapture> open() override;
    [[nodiscard]] bool seesWindows() const override { return false; }

private:
    QDBusConnection m_bus;
    Executor& m_main;
    Executor& m_worker;
    Clock& m_clock;
};

}  // namespace corvellan

#pragma once

#include <QByteArray>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/ScreenCapture.h"

namespace corvellan {

/// Pictures of an X display. A connection is opened by the first question, and again after it was lost.
class X11ScreenCaptures final : public ScreenCaptures {
public:
    /// How long a program may take to draw what was covered before.
    static constexpr std::chrono::milliseconds drawPatience{150};

    /// \param worker waits for the X server. Both outlive what is opened and what it was asked.
    /// \param display for example ":0"; empty means that of the environment.
    X11ScreenCaptures(Executor& worker, Clock& clock, QByteArray display = {});

    [[nodiscard]] std::shared_ptr<ScreenCapture> open() override;
    [[nodiscard]] bool seesWindows() const override { return true; }

private:
    Executor& m_worker;
    Clock& m_clock;
    QByteArray m_display;
};

}  // namespace corvellan

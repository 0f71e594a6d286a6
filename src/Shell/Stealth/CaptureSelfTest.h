#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QString>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "CaptureMarker.h"
#include "Platform/ScreenPictures.h"

namespace corvellan {

/// The window that is looked for.
class CaptureMarkerWindow {
public:
    virtual ~CaptureMarkerWindow() = default;

    /// Paints the code, opaque, and calls `onShown` once, after the frame that shows it. False, and no call,
    /// when the window itself is not shown. Another code replaces it.
    virtual bool showMarker(const CaptureMarker& marker, std::function<void()> onShown) = 0;
    virtual void clearMarker() = 0;
};

enum class CaptureTestOutcome {
    visible,          ///< The picture shows the window.
    notVisible,       ///< It shows something, and not the window.
    couldNotCapture,  ///< There was no picture to judge by.
};

struct CaptureTestResult {
    CaptureTestOutcome outcome = CaptureTestOutcome::couldNotCapture;
    /// Why not, for `couldNotCapture`.
    QString reason;
};

/// Finds out whether captures show a window: paints a random code into it, has the screen pictured as any
/// other program would, and looks for the code. Main thread.
class CaptureSelfTest {
public:
    /// What it works with; all of it outlives the object.
    struct Means {
        ScreenPictures& pictures;
        Clock& clock;
        /// Looks through the picture.
        Executor& worker;
    };

    /// How long the window has to paint.
    static constexpr std::chrono::seconds paintPatience{3};
    /// How long a compositor may take to bring a painted frame to the screen.
    static constexpr std::chrono::milliseconds screenDelay{150};

    CaptureSelfTest(Means means, CaptureMarkerWindow& window);
    ~CaptureSelfTest();
    CaptureSelfTest(const CaptureSelfTest&) = delete;
    CaptureSelfTest& operator=(const CaptureSelfTest&) = delete;

    /// Starts a test unless one runs.
    void run();

    [[nodiscard]] bool isRunning() const;
    /// Of the last test; absent before the first.
    [[nodiscard]] std::optional<CaptureTestResult> result() const;

    /// Called after either of them has changed.
    std::function<void()> onChanged;

private:
    struct Core;
    /// Shared with the coroutine of a running test, which may outlive this object.
    std::shared_ptr<Core> m_core;
};

}  // namespace corvellan

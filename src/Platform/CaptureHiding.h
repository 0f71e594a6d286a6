#pragma once

class QWindow;

namespace corvellan {

/// Whether other programs can see a window in what they capture. Who believes himself hidden must be:
/// `unsupported` is the honest answer wherever nothing was done.
enum class CaptureVisibility { hidden, visible, unsupported };

/// Leaves a window out of screenshots and screen sharing, where the desktop offers that. Main thread.
class CaptureHiding {
public:
    virtual ~CaptureHiding() = default;

    /// Hides `window` from capture, or shows it again. Called anew after every change of its flags,
    /// which may have made a new native window.
    virtual CaptureVisibility setHidden(QWindow& window, bool isHidden) = 0;
};

/// For desktops that offer nothing.
class NoCaptureHiding final : public CaptureHiding {
public:
    CaptureVisibility setHidden(QWindow& /*window*/, bool isHidden) override {
        return isHidden ? CaptureVisibility::unsupported : CaptureVisibility::visible;
    }
};

}  // namespace corvellan

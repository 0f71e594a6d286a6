#pragma once

#include <functional>
#include <QString>
#include <utility>

class QWindow;

namespace corvellan {

/// What a desktop can do for a window that captures must not show.
enum class CaptureHidingOffer {
    hides,               ///< It has a facility; whether that works is only known once it was used.
    doesNotHide,         ///< It has none.
    needsConfiguration,  ///< Only the user can switch it on, in the desktop's own configuration.
};

/// Whether other programs can see a window in what they capture. Who believes himself hidden must be:
/// everything but `hidden` counts as visible.
enum class CaptureVisibility {
    visible,             ///< Nothing was asked, or the window was shown again.
    hiding,              ///< Asked for, and not confirmed yet.
    hidden,              ///< The desktop has confirmed it.
    unsupported,         ///< Asked for, and there is no facility.
    needsConfiguration,  ///< Asked for; the user may have switched it on, which the program can't see.
    failed,              ///< Asked for, and the facility refused or didn't answer.
};

struct CaptureHidingStatus {
    CaptureHidingOffer offer = CaptureHidingOffer::doesNotHide;
    CaptureVisibility visibility = CaptureVisibility::visible;
    /// A sentence for the user: what the desktop offers, or what it answered.
    QString explanation;
    /// Lines for the desktop's configuration, ready to be pasted. Empty where that doesn't help.
    QString configuration;

    bool operator==(const CaptureHidingStatus&) const = default;
};

/// Leaves one window out of screenshots and screen sharing, where the desktop offers that. Main thread,
/// which it never blocks: answers come later.
class CaptureHiding {
public:
    virtual ~CaptureHiding() = default;

    /// Hides `window` from capture, or shows it again. To be called anew after every change of its flags
    /// and whenever it was shown: either may have made a window that the desktop doesn't know. A window
    /// that is not shown is `hiding` until then. The last call counts, however soon after another.
    virtual void setHidden(const QWindow& window, bool isHidden) = 0;

    [[nodiscard]] virtual CaptureHidingStatus status() const = 0;

    /// Called after `status` has changed, within `setHidden` too.
    std::function<void()> onChanged;
};

/// For desktops where nothing can be asked. Says why.
class NoCaptureHiding final : public CaptureHiding {
public:
    /// \param configuration what the user could do; with it, hiding counts as `needsConfiguration`.
    explicit NoCaptureHiding(
        QString explanation = QStringLiteral("This desktop offers no way to hide a window from screen sharing."),
        QString configuration = {})
        : m_status{.explanation = std::move(explanation), .configuration = std::move(configuration)} {
        if (!m_status.configuration.isEmpty())
            m_status.offer = CaptureHidingOffer::needsConfiguration;
    }

    void setHidden(const QWindow& /*window*/, bool isHidden) override {
        const auto asked = m_status.offer == CaptureHidingOffer::needsConfiguration
                               ? CaptureVisibility::needsConfiguration
                               : CaptureVisibility::unsupported;
        const auto visibility = isHidden ? asked : CaptureVisibility::visible;
        if (std::exchange(m_status.visibility, visibility) != visibility && onChanged)
            onChanged();
    }
    [[nodiscard]] CaptureHidingStatus status() const override { return m_status; }

private:
    CaptureHidingStatus m_status;
};

}  // namespace corvellan

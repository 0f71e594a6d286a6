#pragma once

#include <memory>

#include "HidingFacility.h"
#include "Platform/CaptureHiding.h"

namespace corvellan {

/// Hides a window by asking the desktop: one request at a time, and when the wish has changed meanwhile,
/// the latest one next.
class AskedCaptureHiding final : public CaptureHiding {
public:
    explicit AskedCaptureHiding(std::unique_ptr<HidingFacility> facility);
    ~AskedCaptureHiding() override;
    AskedCaptureHiding(const AskedCaptureHiding&) = delete;
    AskedCaptureHiding& operator=(const AskedCaptureHiding&) = delete;

    void setHidden(const QWindow& window, bool isHidden) override;
    [[nodiscard]] CaptureHidingStatus status() const override;

private:
    struct Core;
    void publish(CaptureVisibility visibility, const QString& explanation);

    /// Shared with the coroutine that asks, which may outlive this object.
    std::shared_ptr<Core> m_core;
};

}  // namespace corvellan

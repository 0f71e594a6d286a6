#pragma once

#include "Platform/Permissions.h"

namespace corvellan {

class AlertPresenter;

/// Starts the settings program of the running desktop; tells in an alert where to look when it has none.
class DesktopSettings final : public SystemSettings {
public:
    /// It must outlive this.
    explicit DesktopSettings(AlertPresenter& alerts) : m_alerts(alerts) {}

    void openPrivacyPane(PrivacyPane pane) override;

private:
    AlertPresenter& m_alerts;
};

}  // namespace corvellan

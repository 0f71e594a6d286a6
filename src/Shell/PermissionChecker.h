#pragma once

#include <QCoroTask>
#include <QString>

#include "Platform/Alerts.h"
#include "Platform/Permissions.h"

namespace corvellan {

enum class PermissionStatus { granted, denied, unknown };

struct PermissionState {
    PermissionStatus microphone = PermissionStatus::unknown;
    PermissionStatus screenRecording = PermissionStatus::unknown;

    /// `unknown` counts as not granted.
    [[nodiscard]] bool allGranted() const {
        return microphone == PermissionStatus::granted && screenRecording == PermissionStatus::granted;
    }

    bool operator==(const PermissionState&) const = default;
};

/// Reads the two permissions, asks for the microphone, and explains what is missing. Holds no state: every
/// answer is read afresh. What it is made of outlives it. Main thread.
class PermissionChecker {
public:
    PermissionChecker(PermissionSource& source, SystemSettings& settings, AlertPresenter& alerts);

    /// The microphone first, then the screen.
    QCoro::Task<PermissionState> check();
    QCoro::Task<PermissionStatus> checkMicrophone();
    /// Never `unknown`.
    QCoro::Task<PermissionStatus> checkScreenRecording();
    QCoro::Task<bool> requestMicrophone();

    /// Blocks the program's windows until the user has answered; resumes then.
    QCoro::Task<void> showMissingPermissionsAlert(PermissionState state);

    /// The alert's text: the missing items, numbered, and what their lack means.
    [[nodiscard]] static QString informativeText(PermissionState state);
    /// "granted", "denied" or "unknown".
    [[nodiscard]] static QString statusText(PermissionStatus status);

private:
    PermissionSource& m_source;
    SystemSettings& m_settings;
    AlertPresenter& m_alerts;
};

}  // namespace corvellan

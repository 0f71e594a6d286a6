#pragma once

#include <expected>
#include <QCoroTask>
#include <QString>

#include "Base/Error.h"

namespace corvellan {

/// What the system says of this program's access to a device.
enum class CaptureAuthorization { notDetermined, restricted, denied, authorized };

enum class PrivacyPane { microphone, screenCapture };

/// The system's permissions, read afresh every time. Main thread.
class PermissionSource {
public:
    virtual ~PermissionSource() = default;

    virtual QCoro::Task<CaptureAuthorization> microphoneAuthorization() = 0;
    /// Asks for the microphone where that was not decided yet; otherwise the earlier decision.
    virtual QCoro::Task<bool> requestMicrophoneAccess() = 0;
    /// What the screen and the system's sound can give. Tried, since nobody can be asked; any failure
    /// counts as refused.
    virtual QCoro::Task<std::expected<void, Error>> shareableContent() = 0;
};

/// The desktop's own settings. Main thread.
class SystemSettings {
public:
    virtual ~SystemSettings() = default;

    /// Opens the page that decides about the pane, or explains shortly where to look when this desktop
    /// has none. A failure shows nothing.
    virtual void openPrivacyPane(PrivacyPane pane) = 0;
};

}  // namespace corvellan

#pragma once

#include <expected>

#include "DesktopPermissionSource.h"
#include "Platform/Linux/PulseDefaultSource.h"

namespace corvellan {

/// What the sound server's answer means for the microphone.
[[nodiscard]] inline CaptureAuthorization microphoneVerdict(
    const std::expected<PulseDefaultSource, PulseLookUpFailure>& source, Confinement confinement) {
    if (source)
        return source->isMonitor ? CaptureAuthorization::denied : CaptureAuthorization::authorized;
    switch (source.error()) {
    case PulseLookUpFailure::refused: return CaptureAuthorization::restricted;
    case PulseLookUpFailure::noSource: return CaptureAuthorization::denied;
    case PulseLookUpFailure::noServer:
        // A sandbox without the permission for sound hides the server.
        return confinement == Confinement::sandboxed ? CaptureAuthorization::restricted
                                                     : CaptureAuthorization::notDetermined;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan

#pragma once

#include <optional>
#include <QString>

#include "Shell/PermissionChecker.h"

namespace corvellan {

/// A permission as the settings show it.
struct PermissionRow {
    QString label;
    QString detail;
    std::optional<PermissionStatus> status;

    /// "Granted", "Not requested", or for a denied one its detail and " — not allowed".
    [[nodiscard]] QString statusText() const;
    /// "green", "gray" or "red".
    [[nodiscard]] QString statusColor() const;
};

}  // namespace corvellan

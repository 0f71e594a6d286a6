#pragma once

#include <optional>
#include <QString>

#include "Clock.h"

namespace corvellan {

enum class IsoFraction { required, absent };

/// An ISO 8601 internet date and time: full date, "T", time to the second and zone ("Z" or
/// "+hh:mm"), with fractional seconds or without as asked, and nothing else. Fractions are cut to
/// milliseconds. Empty for anything else, for days that do not exist, and for leap seconds.
[[nodiscard]] std::optional<WallTime> parseIso8601(QStringView text, IsoFraction fraction);

/// As `parseIso8601`, first with fractional seconds, then without.
[[nodiscard]] std::optional<WallTime> parseIso8601(QStringView text);

/// "2026-03-01T09:05:00.250Z".
[[nodiscard]] QString iso8601(WallTime time);

/// The form of the debug log: "2026-03-01 09:05:00 +0000".
[[nodiscard]] QString logStamp(WallTime time);

}  // namespace corvellan

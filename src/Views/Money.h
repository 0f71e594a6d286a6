#pragma once

#include <QString>

namespace corvellan {

/// An amount in short: "$2.5M" from a million on, "$2K" from a thousand on, else "$999". The unit is chosen before
/// rounding, so that 999,999 reads "$1000K", and negative amounts are never shortened.
[[nodiscard]] QString formatUSD(double value);

}  // namespace corvellan

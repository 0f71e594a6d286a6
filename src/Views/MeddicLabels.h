#pragma once

#include <array>
#include <QLatin1StringView>

#include "Models/Types.h"

namespace corvellan {

/// The criteria as lists name them, in the order of `MeddicScore::values`; one differs from `meddicDisplayNames`.
inline constexpr std::array<QLatin1StringView, meddicCriteria> meddicLabels{
    QLatin1StringView{"Metrics"},          QLatin1StringView{"Economic Buyer"}, QLatin1StringView{"Decision Criteria"},
    QLatin1StringView{"Decision Process"}, QLatin1StringView{"Pain"},           QLatin1StringView{"Champion"},
};

inline constexpr std::array<QLatin1StringView, meddicCriteria> meddicLetters{
    QLatin1StringView{"M"}, QLatin1StringView{"E"}, QLatin1StringView{"D"},
    QLatin1StringView{"D"}, QLatin1StringView{"I"}, QLatin1StringView{"C"},
};

}  // namespace corvellan

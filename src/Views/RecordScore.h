#pragma once

#include "Models/Types.h"

namespace corvellan {

/// The colour of a finished session's MEDDIC score: 5 or 6 green, 3 or 4 yellow, else red at 70 %. It is stricter
/// than that of a running call: what is over is judged harder.
[[nodiscard]] constexpr Tint recordScoreTint(int score) {
    constexpr int good = 5;
    constexpr int fair = 3;
    constexpr double poorOpacity = 0.7;
    if (score >= good)
        return {.role = ColorRole::green};
    return score >= fair ? Tint{.role = ColorRole::yellow} : Tint{.role = ColorRole::red, .opacity = poorOpacity};
}

}  // namespace corvellan

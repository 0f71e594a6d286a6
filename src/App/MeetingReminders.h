#pragma once

#include <optional>
#include <QString>
#include <vector>

#include "Base/Clock.h"
#include "Models/Briefing.h"

namespace corvellan {

/// The first meeting, in the order given, that starts after `now` and at most two minutes later. One that
/// was reminded of last, and those whose start can't be read, are passed over. Null when there is none.
[[nodiscard]] const CalendarMeeting* meetingToRemindOf(const std::vector<CalendarMeeting>& meetings, WallTime now,
                                                       const std::optional<QString>& lastNotifiedId);

}  // namespace corvellan

#pragma once

#include <QString>
#include <QVariantList>

#include "Models/Briefing.h"

/// What a meeting's card shows, as finished texts. Pure functions, callable from any thread.
namespace corvellan::meeting {

/// The display name, or the address up to its first "@".
[[nodiscard]] QString nameOf(const MeetingAttendee& attendee);
/// Maps with "name" and "email", of the first six.
[[nodiscard]] QVariantList attendees(const CalendarMeeting& meeting);
/// "+2 more"; empty up to six.
[[nodiscard]] QString moreAttendees(const CalendarMeeting& meeting);

// Each is empty where there is nothing to show.

[[nodiscard]] QString companyName(const CalendarMeeting& meeting);
/// "· Germany".
[[nodiscard]] QString companyCountry(const CalendarMeeting& meeting);
/// "· $48K".
[[nodiscard]] QString companyRevenue(const CalendarMeeting& meeting);

}  // namespace corvellan::meeting

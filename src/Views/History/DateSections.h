#pragma once

#include <cstddef>
#include <QString>
#include <vector>

#include "Base/CalendarDays.h"
#include "SessionFilter.h"

namespace corvellan {

/// Neighbouring records of one day.
struct DateSection {
    QString label;          ///< "Today", "Yesterday", or the date.
    std::size_t first = 0;  ///< Where its records begin among the filtered ones.
    std::size_t count = 0;

    bool operator==(const DateSection&) const = default;
};

/// In the order of the filtered records. A day whose records another day's stand between has two sections.
[[nodiscard]] std::vector<DateSection> groupedSections(const std::vector<SessionIndexEntry>& records,
                                                       const RecordPlaces& filtered, WallTime now,
                                                       const CalendarDays& days);

}  // namespace corvellan

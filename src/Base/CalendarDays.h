#pragma once

#include <memory>
#include <QString>

#include "Clock.h"
#include "DateText.h"

namespace corvellan {

/// The days of the calendar that a person lives by. Made once for many dates: a day costs about a microsecond.
/// One thread at a time.
class CalendarDays {
public:
    explicit CalendarDays(const DateStyle& style);
    ~CalendarDays();
    CalendarDays(const CalendarDays&) = delete;
    CalendarDays& operator=(const CalendarDays&) = delete;

    /// From midnight to the next one, which is not part of it. Not 24 hours where the clocks change.
    struct Day {
        WallTime begin{};
        WallTime end{};

        [[nodiscard]] bool contains(WallTime time) const { return begin <= time && time < end; }
    };

    [[nodiscard]] Day dayOf(WallTime time) const;
    /// The same time of day, that many days earlier.
    [[nodiscard]] WallTime daysBefore(WallTime time, int days) const;
    /// As `corvellan::mediumDate`.
    [[nodiscard]] QString mediumDate(WallTime time) const;

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace corvellan

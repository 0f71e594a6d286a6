#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "Base/CalendarDays.h"
#include "Models/EnumTable.h"
#include "Services/Protocols/SessionStoreProtocol.h"

namespace corvellan {

/// Which kind of sessions the history shows.
enum class FilterMode { live, train, all };

struct FilterModeRow {
    FilterMode value;
    std::string_view raw;
};

inline constexpr std::array filterModeRows{
    FilterModeRow{FilterMode::live, "Live"},
    FilterModeRow{FilterMode::train, "Train"},
    FilterModeRow{FilterMode::all, "All"},
};

[[nodiscard]] constexpr std::string_view rawValue(FilterMode mode) {
    return rowOf(filterModeRows, mode).raw;
}

/// How far back the history goes.
enum class TimeRange { day, week, month, allTime };

struct TimeRangeRow {
    TimeRange value;
    std::string_view raw;
};

inline constexpr std::array timeRangeRows{
    TimeRangeRow{TimeRange::day, "24h"},
    TimeRangeRow{TimeRange::week, "7d"},
    TimeRangeRow{TimeRange::month, "30d"},
    TimeRangeRow{TimeRange::allTime, "All"},
};

[[nodiscard]] constexpr std::string_view rawValue(TimeRange range) {
    return rowOf(timeRangeRows, range).raw;
}

/// The earliest date that is still in; absent for all time. By the calendar: where the clocks change, a day
/// earlier is not 24 hours earlier.
[[nodiscard]] std::optional<WallTime> cutoff(TimeRange range, WallTime now, const CalendarDays& days);

/// Places in the index, in its order.
using RecordPlaces = std::vector<std::uint32_t>;

[[nodiscard]] RecordPlaces filteredRecords(const std::vector<SessionIndexEntry>& records, FilterMode mode,
                                           std::optional<WallTime> cutoff);

}  // namespace corvellan

#include "SessionFilter.h"

namespace corvellan {

std::optional<WallTime> cutoff(TimeRange range, WallTime now, const CalendarDays& days) {
    constexpr int week = 7;
    constexpr int month = 30;
    switch (range) {
    case TimeRange::day: return days.daysBefore(now, 1);
    case TimeRange::week: return days.daysBefore(now, week);
    case TimeRange::month: return days.daysBefore(now, month);
    case TimeRange::allTime: return std::nullopt;
    }
    Q_UNREACHABLE();
}

RecordPlaces filteredRecords(const std::vector<SessionIndexEntry>& records, FilterMode mode,
                             std::optional<WallTime> cutoff) {
    const auto isIn = [mode, earliest = cutoff.value_or(WallTime::min())](const SessionIndexEntry& record) {
        const bool isOfMode = mode == FilterMode::all || record.wasTrainMode == (mode == FilterMode::train);
        return isOfMode && record.createdDate >= earliest;
    };
    RecordPlaces places;
    places.reserve(records.size());
    for (std::size_t place = 0; place < records.size(); ++place)
        if (isIn(records[place]))
            places.push_back(static_cast<std::uint32_t>(place));
    return places;
}

}  // namespace corvellan

#pragma once

#include <array>
#include <cstdint>
#include <QString>

#include "Models/Types.h"
#include "SessionFilter.h"

namespace corvellan {

/// What the filtered records come to. Sums stop at the largest number.
struct SessionStatistics {
    std::int64_t sessions = 0;
    std::int64_t meddicSum = 0;
    std::int64_t durationSecs = 0;
    std::array<std::int64_t, meddicCriteria> criteriaMet{};

    [[nodiscard]] static SessionStatistics of(const std::vector<SessionIndexEntry>& records,
                                              const RecordPlaces& places);

    /// 0 to 6; 0 for no records.
    [[nodiscard]] double avgMeddic() const;
    /// "3.5/6".
    [[nodiscard]] QString avgMeddicText() const;
    /// Reads the unrounded average: what shows as "4.0/6" may still be yellow.
    [[nodiscard]] ColorRole avgMeddicColor() const;
    /// Minutes and seconds, "3m 12s"; "0m" for no records.
    [[nodiscard]] QString avgDuration() const;
    /// "42m", from an hour on "2h 5m".
    [[nodiscard]] QString totalDuration() const;
    /// Of the records, how many have the criterion: 0 to 1, 0 for no records.
    [[nodiscard]] double meddicCriterionRate(int criterion) const;
    /// "66%": truncated, not rounded.
    [[nodiscard]] QString meddicCriterionText(int criterion) const;
};

}  // namespace corvellan

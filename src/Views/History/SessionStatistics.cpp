#include "SessionStatistics.h"

#include <limits>

#include "Base/Text.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t secondsPerMinute = 60;
constexpr std::int64_t secondsPerHour = 3600;

/// Durations are whatever a server said.
std::int64_t sum(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (!__builtin_add_overflow(left, right, &result))
        return result;
    return left < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

}  // namespace

SessionStatistics SessionStatistics::of(const std::vector<SessionIndexEntry>& records, const RecordPlaces& places) {
    SessionStatistics statistics;
    statistics.sessions = static_cast<std::int64_t>(places.size());
    for (const auto place : places) {
        const SessionIndexEntry& record = records[place];
        statistics.meddicSum += record.meddicScore;
        statistics.durationSecs = sum(statistics.durationSecs, record.durationSecs);
        for (std::size_t i = 0; i < statistics.criteriaMet.size(); ++i)
            statistics.criteriaMet[i] += record.meddicCriteriaMet[i] ? 1 : 0;
    }
    return statistics;
}

double SessionStatistics::avgMeddic() const {
    return sessions == 0 ? 0 : static_cast<double>(meddicSum) / static_cast<double>(sessions);
}

QString SessionStatistics::avgMeddicText() const {
    return text::fixed(avgMeddic(), 1) + u"/6"_s;
}

ColorRole SessionStatistics::avgMeddicColor() const {
    constexpr double good = 4.0;
    constexpr double fair = 2.0;
    if (avgMeddic() >= good)
        return ColorRole::green;
    return avgMeddic() >= fair ? ColorRole::yellow : ColorRole::red;
}

QString SessionStatistics::avgDuration() const {
    if (sessions == 0)
        return u"0m"_s;
    return formattedDuration(durationSecs / sessions);
}

QString SessionStatistics::totalDuration() const {
    const auto minutes = durationSecs / secondsPerMinute;
    if (durationSecs < secondsPerHour)
        return u"%1m"_s.arg(minutes);
    return u"%1h %2m"_s.arg(durationSecs / secondsPerHour).arg(minutes % secondsPerMinute);
}

double SessionStatistics::meddicCriterionRate(int criterion) const {
    const auto met = criteriaMet.at(static_cast<std::size_t>(criterion));
    return sessions == 0 ? 0 : static_cast<double>(met) / static_cast<double>(sessions);
}

QString SessionStatistics::meddicCriterionText(int criterion) const {
    // In whole numbers: 29 of 100 would come to 28.999... by way of a fraction.
    constexpr std::int64_t percent = 100;
    const auto met = criteriaMet.at(static_cast<std::size_t>(criterion));
    return u"%1%"_s.arg(sessions == 0 ? 0 : met * percent / sessions);
}

}  // namespace corvellan

#include "DateSections.h"

namespace corvellan {

using namespace Qt::StringLiterals;

std::vector<DateSection> groupedSections(const std::vector<SessionIndexEntry>& records, const RecordPlaces& filtered,
                                         WallTime now, const CalendarDays& days) {
    const auto today = days.dayOf(now);
    const auto yesterday = days.dayOf(days.daysBefore(now, 1));
    const auto labelOf = [&](WallTime date) {
        if (today.contains(date))
            return u"Today"_s;
        return yesterday.contains(date) ? u"Yesterday"_s : days.mediumDate(date);
    };
    std::vector<DateSection> sections;
    CalendarDays::Day present;
    for (std::size_t place = 0; place < filtered.size(); ++place) {
        const WallTime date = records[filtered[place]].createdDate;
        // Only the first record of a day is looked at closely.
        if (sections.empty() || !present.contains(date)) {
            present = days.dayOf(date);
            if (QString label = labelOf(date); sections.empty() || sections.back().label != label)
                sections.push_back({.label = std::move(label), .first = place});
        }
        ++sections.back().count;
    }
    return sections;
}

}  // namespace corvellan

#include "Briefing.h"

#include "Base/Iso8601.h"

using namespace Qt::StringLiterals;

namespace corvellan {

std::optional<WallTime> CalendarMeeting::startDate() const {
    return parseIso8601(start);
}

QString CalendarMeeting::timeRange(const DateStyle& style) const {
    const auto shown = [&style](const QString& stamp) {
        const auto time = parseIso8601(stamp);
        return time ? shortTime(*time, style) : stamp;
    };
    return shown(start) + u" – "_s + shown(end);
}

}  // namespace corvellan

#include "CalendarDays.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/timezone.h>
#include <algorithm>

namespace corvellan {

namespace {

UDate icuDate(WallTime time) {
    return static_cast<UDate>(time.time_since_epoch().count());
}

WallTime wallTime(UDate date) {
    return WallTime{std::chrono::milliseconds{static_cast<std::int64_t>(date)}};
}

/// The day of UTC. The first and the last day that can be told of are cut off where time ends.
CalendarDays::Day universalDay(WallTime time) {
    using std::chrono::milliseconds;
    constexpr milliseconds whole = std::chrono::days{1};
    const milliseconds now = time.time_since_epoch();
    const milliseconds since = now % whole < milliseconds{0} ? now % whole + whole : now % whole;
    const milliseconds begin = now < milliseconds::min() + since ? milliseconds::min() : now - since;
    const milliseconds end = begin > milliseconds::max() - whole ? milliseconds::max() : begin + whole;
    return {.begin = WallTime{begin}, .end = WallTime{end}};
}

WallTime universallyBefore(WallTime time, int days) {
    using std::chrono::milliseconds;
    const milliseconds span = std::chrono::days{days};
    const bool isBeyond = time.time_since_epoch() < milliseconds::min() + std::max(span, milliseconds{0});
    return isBeyond ? WallTime::min() : time - span;
}

}  // namespace

/// Null where ICU has no data at all; days are then those of UTC, and dates empty.
struct CalendarDays::Parts {
    std::unique_ptr<icu::Calendar> calendar;
    std::unique_ptr<icu::DateFormat> format;
};

CalendarDays::CalendarDays(const DateStyle& style) : m_parts(std::make_unique<Parts>()) {
    const icu::Locale locale{style.locale.constData()};
    const std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::createTimeZone(
        {reinterpret_cast<const char16_t*>(style.zone.utf16()), static_cast<std::int32_t>(style.zone.size())})};
    UErrorCode status = U_ZERO_ERROR;
    m_parts->calendar.reset(icu::Calendar::createInstance(*zone, locale, status));
    if (U_FAILURE(status))
        m_parts->calendar.reset();
    m_parts->format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, locale));
    if (m_parts->format)
        m_parts->format->setTimeZone(*zone);
}

CalendarDays::~CalendarDays() = default;

CalendarDays::Day CalendarDays::dayOf(WallTime time) const {
    if (!m_parts->calendar)
        return universalDay(time);
    icu::Calendar& calendar = *m_parts->calendar;
    UErrorCode status = U_ZERO_ERROR;
    const auto midnight = [&] {
        for (const auto field : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND})
            calendar.set(field, 0);
        return wallTime(calendar.getTime(status));
    };
    calendar.setTime(icuDate(time), status);
    Day day{.begin = midnight()};
    calendar.add(UCAL_DATE, 1, status);
    // Where the clocks change at midnight there may be none, and the day begins later.
    day.end = midnight();
    return U_SUCCESS(status) ? day : universalDay(time);
}

WallTime CalendarDays::daysBefore(WallTime time, int days) const {
    if (!m_parts->calendar)
        return universallyBefore(time, days);
    UErrorCode status = U_ZERO_ERROR;
    m_parts->calendar->setTime(icuDate(time), status);
    m_parts->calendar->add(UCAL_DATE, -days, status);
    const auto earlier = wallTime(m_parts->calendar->getTime(status));
    return U_SUCCESS(status) ? earlier : universallyBefore(time, days);
}

QString CalendarDays::mediumDate(WallTime time) const {
    if (!m_parts->format)
        return {};
    icu::UnicodeString shown;
    m_parts->format->format(icuDate(time), shown);
    return QString{reinterpret_cast<const QChar*>(shown.getBuffer()), shown.length()};
}

}  // namespace corvellan

#include "DateText.h"

#include <unicode/datefmt.h>
#include <unicode/timezone.h>

#include <memory>
#include <QLocale>
#include <QTimeZone>

namespace corvellan {

namespace {

icu::UnicodeString unicodeString(const QString& text) {
    return {reinterpret_cast<const UChar*>(text.utf16()), static_cast<std::int32_t>(text.size())};
}

QString textOf(const icu::UnicodeString& string) {
    return QString{reinterpret_cast<const QChar*>(string.getBuffer()), string.length()};
}

QString written(WallTime time, const DateStyle& style, icu::DateFormat::EStyle date, icu::DateFormat::EStyle clock) {
    const std::unique_ptr<icu::DateFormat> format{
        icu::DateFormat::createDateTimeInstance(date, clock, icu::Locale{style.locale.constData()})};
    if (!format)
        return {};
    format->adoptTimeZone(icu::TimeZone::createTimeZone(unicodeString(style.zone)));
    icu::UnicodeString shown;
    format->format(static_cast<UDate>(time.time_since_epoch().count()), shown);
    return textOf(shown);
}

}  // namespace

DateStyle DateStyle::system() {
    return {.locale = QLocale::system().name().toLatin1(), .zone = QString::fromLatin1(QTimeZone::systemTimeZoneId())};
}

QString shortTime(WallTime time, const DateStyle& style) {
    return written(time, style, icu::DateFormat::kNone, icu::DateFormat::kShort);
}

QString mediumDate(WallTime time, const DateStyle& style) {
    return written(time, style, icu::DateFormat::kMedium, icu::DateFormat::kNone);
}

QString shortDateTime(WallTime time, const DateStyle& style) {
    return written(time, style, icu::DateFormat::kShort, icu::DateFormat::kShort);
}

QString mediumDateShortTime(WallTime time, const DateStyle& style) {
    return written(time, style, icu::DateFormat::kMedium, icu::DateFormat::kShort);
}

}  // namespace corvellan

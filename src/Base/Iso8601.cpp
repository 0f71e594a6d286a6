#include "Iso8601.h"

#include <cstdio>
#include <QChar>

namespace corvellan {

namespace {

/// Reads a text from its start; every step fails without moving on.
class Scanner {
public:
    explicit Scanner(QStringView text) : m_rest(text) {}

    std::optional<int> digits(qsizetype count) {
        if (m_rest.size() < count)
            return std::nullopt;
        int value = 0;
        for (const QChar character : m_rest.first(count)) {
            if (character < u'0' || character > u'9')
                return std::nullopt;
            value = value * 10 + (character.unicode() - u'0');
        }
        m_rest = m_rest.sliced(count);
        return value;
    }

    bool skip(QChar expected) {
        if (m_rest.isEmpty() || m_rest.front() != expected)
            return false;
        m_rest = m_rest.sliced(1);
        return true;
    }

    /// One or more digits as milliseconds; what is finer is cut off.
    std::optional<int> fraction() {
        int value = 0;
        int scale = 100;
        bool any = false;
        while (const auto digit = digits(1)) {
            value += *digit * scale;
            scale /= 10;
            any = true;
        }
        return any ? std::optional{value} : std::nullopt;
    }

    [[nodiscard]] bool atEnd() const { return m_rest.isEmpty(); }

private:
    QStringView m_rest;
};

std::optional<std::chrono::minutes> zoneOffset(Scanner& scanner) {
    if (scanner.skip(u'Z'))
        return std::chrono::minutes{0};
    const bool isWest = scanner.skip(u'-');
    if (!isWest && !scanner.skip(u'+'))
        return std::nullopt;
    const auto hours = scanner.digits(2);
    if (!hours || !scanner.skip(u':'))
        return std::nullopt;
    const auto minutes = scanner.digits(2);
    if (!minutes || *hours > 23 || *minutes > 59)
        return std::nullopt;
    const auto offset = std::chrono::hours{*hours} + std::chrono::minutes{*minutes};
    return isWest ? -offset : offset;
}

}  // namespace

std::optional<WallTime> parseIso8601(QStringView text, IsoFraction fraction) {
    using namespace std::chrono;
    Scanner scanner{text};
    const auto yearNumber = scanner.digits(4);
    if (!yearNumber || !scanner.skip(u'-'))
        return std::nullopt;
    const auto monthNumber = scanner.digits(2);
    if (!monthNumber || !scanner.skip(u'-'))
        return std::nullopt;
    const auto dayNumber = scanner.digits(2);
    if (!dayNumber || !scanner.skip(u'T'))
        return std::nullopt;
    const auto hour = scanner.digits(2);
    if (!hour || !scanner.skip(u':'))
        return std::nullopt;
    const auto minute = scanner.digits(2);
    if (!minute || !scanner.skip(u':'))
        return std::nullopt;
    const auto second = scanner.digits(2);
    if (!second || *hour > 23 || *minute > 59 || *second > 59)
        return std::nullopt;
    int millisecond = 0;
    if (fraction == IsoFraction::required) {
        if (!scanner.skip(u'.'))
            return std::nullopt;
        const auto digits = scanner.fraction();
        if (!digits)
            return std::nullopt;
        millisecond = *digits;
    }
    const auto offset = zoneOffset(scanner);
    if (!offset || !scanner.atEnd())
        return std::nullopt;
    const year_month_day date{year{*yearNumber}, month{static_cast<unsigned>(*monthNumber)},
                              day{static_cast<unsigned>(*dayNumber)}};
    if (!date.ok())
        return std::nullopt;
    return sys_days{date} + hours{*hour} + minutes{*minute} + seconds{*second} + milliseconds{millisecond} - *offset;
}

std::optional<WallTime> parseIso8601(QStringView text) {
    if (const auto time = parseIso8601(text, IsoFraction::required))
        return time;
    return parseIso8601(text, IsoFraction::absent);
}

namespace {

struct Fields {
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

Fields fieldsOf(WallTime time) {
    using namespace std::chrono;
    const auto days = floor<std::chrono::days>(time);
    const year_month_day date{days};
    const hh_mm_ss clock{time - days};
    return {.year = static_cast<int>(date.year()),
            .month = static_cast<unsigned>(date.month()),
            .day = static_cast<unsigned>(date.day()),
            .hour = static_cast<int>(clock.hours().count()),
            .minute = static_cast<int>(clock.minutes().count()),
            .second = static_cast<int>(clock.seconds().count()),
            .millisecond = static_cast<int>(clock.subseconds().count())};
}

}  // namespace

QString iso8601(WallTime time) {
    const auto f = fieldsOf(time);
    return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", f.year, f.month, f.day, f.hour, f.minute, f.second,
                             f.millisecond);
}

QString logStamp(WallTime time) {
    const auto f = fieldsOf(time);
    return QString::asprintf("%04d-%02u-%02u %02d:%02d:%02d +0000", f.year, f.month, f.day, f.hour, f.minute, f.second);
}

}  // namespace corvellan

#include "Base/CalendarDays.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvellan {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

const DateStyle berlin{"de_DE", u"Europe/Berlin"_s};

WallTime at(int month, int day, std::chrono::minutes time) {
    return std::chrono::sys_days{std::chrono::year{2026} / month / day} + time;
}

}  // namespace

TEST(CalendarDaysTest, aDayGoesFromMidnightToMidnightOfTheZone) {
    const CalendarDays days{berlin};
    const auto day = days.dayOf(at(3, 2, 8h));
    EXPECT_EQ(day.begin, at(3, 1, 23h));
    EXPECT_EQ(day.end, at(3, 2, 23h));
    EXPECT_TRUE(day.contains(at(3, 1, 23h)));
    EXPECT_FALSE(day.contains(at(3, 2, 23h)));
    EXPECT_EQ(days.dayOf(day.begin).begin, day.begin);
    EXPECT_EQ(days.dayOf(day.end).begin, day.end);
}

TEST(CalendarDaysTest, theDayOfAClockChangeIsShorterOrLonger) {
    const CalendarDays days{berlin};
    const auto spring = days.dayOf(at(3, 29, 12h));
    EXPECT_EQ(spring.end - spring.begin, 23h);
    const auto autumn = days.dayOf(at(10, 25, 12h));
    EXPECT_EQ(autumn.end - autumn.begin, 25h);
}

TEST(CalendarDaysTest, earlierDaysKeepTheTimeOfDay) {
    const CalendarDays days{berlin};
    EXPECT_EQ(days.daysBefore(at(3, 2, 8h), 1), at(3, 1, 8h));
    EXPECT_EQ(days.daysBefore(at(3, 29, 12h), 1), at(3, 28, 13h)) << "the clocks went forward in between";
    EXPECT_EQ(days.daysBefore(at(3, 2, 8h), 30), std::chrono::sys_days{std::chrono::year{2026} / 1 / 31} + 8h);
}

TEST(CalendarDaysTest, datesAreWrittenAsElsewhere) {
    const CalendarDays days{berlin};
    EXPECT_EQ(days.mediumDate(at(3, 2, 8h)), mediumDate(at(3, 2, 8h), berlin));
    EXPECT_EQ(days.mediumDate(at(3, 2, 8h)), u"02.03.2026"_s);
    EXPECT_EQ(days.mediumDate(at(3, 1, 23h)), u"02.03.2026"_s);
}

TEST(CalendarDaysTest, anUnknownZoneIsUniversalTime) {
    const CalendarDays days{{"de_DE", u"Nowhere/Atall"_s}};
    EXPECT_EQ(days.dayOf(at(3, 2, 8h)).begin, at(3, 2, 0h));
}

TEST(CalendarDaysTest, theEndsOfTimeAreDaysToo) {
    const CalendarDays days{berlin};
    for (const WallTime end : {WallTime::min(), WallTime::max()}) {
        const auto day = days.dayOf(end);
        EXPECT_LE(day.begin, day.end);
        static_cast<void>(days.daysBefore(end, 30));
        static_cast<void>(days.mediumDate(end));
    }
}

}  // namespace corvellan

#include "Base/DateText.h"

#include <gtest/gtest.h>

#include <chrono>

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const WallTime morning = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 8h + 5min + 59s;

TEST(DateTextTest, theTimeOfDayFollowsTheLocaleAndTheZone) {
    EXPECT_EQ(shortTime(morning, {"de_DE", u"UTC"_s}), u"08:05"_s);
    EXPECT_EQ(shortTime(morning, {"de_DE", u"Europe/Berlin"_s}), u"09:05"_s);
    EXPECT_EQ(shortTime(morning, {"de_DE", u"Asia/Kolkata"_s}), u"13:35"_s);
    // Of which kind the blank is differs from one edition of the locale's data to the next.
    auto american = shortTime(morning, {"en_US", u"America/New_York"_s});
    EXPECT_EQ(american.replace(u'\u202f', u' '), u"3:05 AM"_s);
}

TEST(DateTextTest, daysAreWrittenInTheFormOfTheLocale) {
    const DateStyle german{"de_DE", u"Europe/Berlin"_s};
    EXPECT_EQ(mediumDate(morning, german), u"02.03.2026"_s);
    EXPECT_EQ(shortDateTime(morning, german), u"02.03.26, 09:05"_s);
    EXPECT_EQ(mediumDateShortTime(morning, german), u"02.03.2026, 09:05"_s);

    const DateStyle american{"en_US", u"America/New_York"_s};
    EXPECT_EQ(mediumDate(morning, american), u"Mar 2, 2026"_s);
    EXPECT_EQ(shortDateTime(morning, american).replace(u'\u202f', u' '), u"3/2/26, 3:05 AM"_s);
    EXPECT_EQ(mediumDateShortTime(morning, american).replace(u'\u202f', u' '), u"Mar 2, 2026, 3:05 AM"_s);
}

TEST(DateTextTest, theDayIsThatOfTheZone) {
    EXPECT_EQ(mediumDate(morning, {"en_US", u"Pacific/Honolulu"_s}), u"Mar 1, 2026"_s);
}

TEST(DateTextTest, summerTimeIsTheZonesOwn) {
    const WallTime summer = std::chrono::sys_days{std::chrono::year{2026} / 7 / 2} + 8h;
    EXPECT_EQ(shortTime(summer, {"de_DE", u"Europe/Berlin"_s}), u"10:00"_s);
}

TEST(DateTextTest, anUnknownZoneIsUtc) {
    EXPECT_EQ(shortTime(morning, {"de_DE", u"Nowhere/Here"_s}), u"08:05"_s);
}

TEST(DateTextTest, timesFarAwayAreShownToo) {
    EXPECT_FALSE(shortTime(WallTime::max(), {"de_DE", u"UTC"_s}).isEmpty());
    EXPECT_FALSE(shortTime(WallTime::min(), {"de_DE", u"UTC"_s}).isEmpty());
}

TEST(DateTextTest, theUsersOwnStyleNamesAZone) {
    EXPECT_FALSE(DateStyle::system().zone.isEmpty());
}

}  // namespace
}  // namespace corvellan::test

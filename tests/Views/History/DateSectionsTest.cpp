#include "Views/History/DateSections.h"

#include <gtest/gtest.h>

#include "HistoryRecords.h"

namespace corvellan::test {

using namespace std::chrono_literals;

namespace {

std::vector<DateSection> sectionsOf(const std::vector<SessionIndexEntry>& records) {
    const CalendarDays days{berlin()};
    return groupedSections(records, allOf(records), noonish, days);
}

}  // namespace

TEST(DateSectionsTest, noRecordsHaveNoSections) {
    EXPECT_TRUE(sectionsOf({}).empty());
}

TEST(DateSectionsTest, daysAreTodayYesterdayAndThenDates) {
    const WallTime midnight = noonish - 11h;
    const std::vector records{entryAt(noonish),
                              entryAt(midnight),
                              entryAt(midnight - 1ms),
                              entryAt(midnight - 24h),
                              entryAt(midnight - 24h - 1ms),
                              entryAt(midnight - 30h)};
    EXPECT_EQ(sectionsOf(records),
              (std::vector<DateSection>{{u"Today"_s, 0, 2}, {u"Yesterday"_s, 2, 2}, {u"28.02.2026"_s, 4, 2}}));
}

TEST(DateSectionsTest, aDayInterruptedByAnotherHasTwoSections) {
    const std::vector records{entryAt(noonish), entryAt(noonish - 24h), entryAt(noonish - 1h)};
    EXPECT_EQ(sectionsOf(records),
              (std::vector<DateSection>{{u"Today"_s, 0, 1}, {u"Yesterday"_s, 1, 1}, {u"Today"_s, 2, 1}}));
}

TEST(DateSectionsTest, theDayIsThatOfTheUsersZone) {
    const CalendarDays honolulu{{"en_US", u"Pacific/Honolulu"_s}};
    // 10:00 UTC is midnight in Honolulu.
    const std::vector records{entryAt(noonish), entryAt(noonish - 1ms)};
    const auto sections = groupedSections(records, allOf(records), noonish, honolulu);
    EXPECT_EQ(sections, (std::vector<DateSection>{{u"Today"_s, 0, 1}, {u"Yesterday"_s, 1, 1}}));
}

TEST(DateSectionsTest, aDayToComeHasItsDate) {
    EXPECT_EQ(sectionsOf({entryAt(noonish + 24h)}), (std::vector<DateSection>{{u"03.03.2026"_s, 0, 1}}));
}

TEST(DateSectionsTest, onlyFilteredRecordsAreGrouped) {
    const CalendarDays days{berlin()};
    const std::vector records{entryAt(noonish), entryAt(noonish - 24h), entryAt(noonish - 25h)};
    EXPECT_EQ(groupedSections(records, {1, 2}, noonish, days), (std::vector<DateSection>{{u"Yesterday"_s, 0, 2}}));
}

TEST(DateSectionsTest, datesBeyondEveryCalendarEndSomewhere) {
    const auto sections = sectionsOf({entryAt(WallTime::max()), entryAt(noonish), entryAt(WallTime::min())});
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[1].label, u"Today"_s);
}

}  // namespace corvellan::test

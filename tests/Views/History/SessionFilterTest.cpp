#include "Views/History/SessionFilter.h"

#include <gtest/gtest.h>

#include "HistoryRecords.h"

namespace corvellan::test {

using namespace std::chrono_literals;

TEST(SessionFilterTest, modesAndRangesBearTheirTextsInOrder) {
    EXPECT_EQ(rawValue(FilterMode::live), "Live");
    EXPECT_EQ(rawValue(FilterMode::train), "Train");
    EXPECT_EQ(rawValue(FilterMode::all), "All");
    EXPECT_EQ(rawValue(TimeRange::day), "24h");
    EXPECT_EQ(rawValue(TimeRange::week), "7d");
    EXPECT_EQ(rawValue(TimeRange::month), "30d");
    EXPECT_EQ(rawValue(TimeRange::allTime), "All");
}

TEST(SessionFilterTest, theModeKeepsLiveTrainOrAll) {
    const std::vector records{entryAt(noonish), entryAt(noonish, true), entryAt(noonish)};
    EXPECT_EQ(filteredRecords(records, FilterMode::live, std::nullopt), (RecordPlaces{0, 2}));
    EXPECT_EQ(filteredRecords(records, FilterMode::train, std::nullopt), (RecordPlaces{1}));
    EXPECT_EQ(filteredRecords(records, FilterMode::all, std::nullopt), (RecordPlaces{0, 1, 2}));
}

TEST(SessionFilterTest, theCutoffGoesBackByTheCalendar) {
    const CalendarDays days{berlin()};
    EXPECT_EQ(cutoff(TimeRange::day, noonish, days), noonish - 24h);
    EXPECT_EQ(cutoff(TimeRange::week, noonish, days), noonish - 7 * 24h);
    EXPECT_EQ(cutoff(TimeRange::month, noonish, days), noonish - 30 * 24h);
    EXPECT_EQ(cutoff(TimeRange::allTime, noonish, days), std::nullopt);
    const WallTime afterTheChange = std::chrono::sys_days{std::chrono::year{2026} / 3 / 29} + 10h;
    EXPECT_EQ(cutoff(TimeRange::day, afterTheChange, days), afterTheChange - 23h);
}

TEST(SessionFilterTest, aRecordOfExactlyADayAgoStaysIn) {
    const CalendarDays days{berlin()};
    const std::vector records{entryAt(noonish - 24h + 1ms), entryAt(noonish - 24h), entryAt(noonish - 24h - 1ms)};
    const auto earliest = cutoff(TimeRange::day, noonish, days);
    EXPECT_EQ(filteredRecords(records, FilterMode::all, earliest), (RecordPlaces{0, 1}));
}

TEST(SessionFilterTest, modeAndRangeBothCount) {
    const std::vector records{entryAt(noonish, true), entryAt(noonish), entryAt(noonish - 48h, true)};
    EXPECT_EQ(filteredRecords(records, FilterMode::train, noonish - 24h), (RecordPlaces{0}));
}

TEST(SessionFilterTest, recordsOfTheFutureAndOfTheBeginningOfTimeAreKept) {
    const std::vector records{entryAt(WallTime::max()), entryAt(WallTime::min())};
    EXPECT_EQ(filteredRecords(records, FilterMode::all, std::nullopt), (RecordPlaces{0, 1}));
    EXPECT_EQ(filteredRecords(records, FilterMode::all, noonish), (RecordPlaces{0}));
}

}  // namespace corvellan::test

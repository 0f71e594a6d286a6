#include "Views/History/SessionStatistics.h"

#include <gtest/gtest.h>

#include "HistoryRecords.h"

namespace corvellan::test {

namespace {

SessionStatistics of(const std::vector<SessionIndexEntry>& records) {
    return SessionStatistics::of(records, allOf(records));
}

SessionStatistics withDurations(const std::vector<std::int64_t>& durations) {
    std::vector<SessionIndexEntry> records;
    for (const auto duration : durations)
        records.push_back(scored({}, duration));
    return of(records);
}

/// `sum` spread over as many records as it takes.
SessionStatistics withScores(const std::vector<int>& scores) {
    std::vector<SessionIndexEntry> records;
    for (const int score : scores)
        records.push_back(scored(scoreOf(score)));
    return of(records);
}

}  // namespace

TEST(SessionStatisticsTest, noRecordsComeToNothing) {
    const auto none = of({});
    EXPECT_EQ(none.sessions, 0);
    EXPECT_EQ(none.avgMeddic(), 0);
    EXPECT_EQ(none.avgMeddicText(), u"0.0/6"_s);
    EXPECT_EQ(none.avgDuration(), u"0m"_s);
    EXPECT_EQ(none.totalDuration(), u"0m"_s);
    EXPECT_EQ(none.meddicCriterionRate(0), 0);
    EXPECT_EQ(none.meddicCriterionText(0), u"0%"_s);
}

TEST(SessionStatisticsTest, theAverageScoreHasOneDecimalAndAColor) {
    struct Row {
        std::vector<int> scores;
        QString text;
        ColorRole color;
    };
    for (const Row& row : {Row{{4}, u"4.0/6"_s, ColorRole::green}, Row{{6}, u"6.0/6"_s, ColorRole::green},
                           Row{{4, 3}, u"3.5/6"_s, ColorRole::yellow}, Row{{2}, u"2.0/6"_s, ColorRole::yellow},
                           Row{{1, 2}, u"1.5/6"_s, ColorRole::red}, Row{{0}, u"0.0/6"_s, ColorRole::red}}) {
        const auto statistics = withScores(row.scores);
        EXPECT_EQ(statistics.avgMeddicText(), row.text);
        EXPECT_EQ(statistics.avgMeddicColor(), row.color) << qPrintable(row.text);
    }
}

TEST(SessionStatisticsTest, anAverageThatRoundsUpToFourStaysYellow) {
    std::vector scores(20, 4);
    scores.back() = 3;
    const auto statistics = withScores(scores);
    EXPECT_DOUBLE_EQ(statistics.avgMeddic(), 3.95);
    EXPECT_EQ(statistics.avgMeddicText(), u"4.0/6"_s);
    EXPECT_EQ(statistics.avgMeddicColor(), ColorRole::yellow);
}

TEST(SessionStatisticsTest, durationsAreMinutesAndSecondsOrHours) {
    struct Row {
        std::vector<std::int64_t> durations;
        QString average, total;
    };
    for (const Row& row :
         {Row{{192}, u"3m 12s"_s, u"3m"_s}, Row{{59}, u"0m 59s"_s, u"0m"_s}, Row{{100, 101}, u"1m 40s"_s, u"3m"_s},
          Row{{2520}, u"42m 0s"_s, u"42m"_s}, Row{{3599}, u"59m 59s"_s, u"59m"_s}, Row{{3600}, u"60m 0s"_s, u"1h 0m"_s},
          Row{{7500}, u"125m 0s"_s, u"2h 5m"_s}, Row{{3600, 3900}, u"62m 30s"_s, u"2h 5m"_s}}) {
        const auto statistics = withDurations(row.durations);
        EXPECT_EQ(statistics.avgDuration(), row.average);
        EXPECT_EQ(statistics.totalDuration(), row.total);
    }
}

TEST(SessionStatisticsTest, absurdDurationsDoNotOverflow) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(withDurations({most, most}).durationSecs, most);
    EXPECT_EQ(withDurations({least, least}).durationSecs, least);
}

TEST(SessionStatisticsTest, aCriterionsRateIsTruncatedToPercent) {
    const std::vector records{scored({.metrics = true, .champion = true}), scored({.metrics = true}),
                              scored({.champion = false})};
    const auto statistics = of(records);
    EXPECT_DOUBLE_EQ(statistics.meddicCriterionRate(0), 2.0 / 3);
    EXPECT_EQ(statistics.meddicCriterionText(0), u"66%"_s);
    EXPECT_EQ(statistics.meddicCriterionText(1), u"0%"_s);
    EXPECT_EQ(statistics.meddicCriterionText(5), u"33%"_s);
}

TEST(SessionStatisticsTest, everyWholePercentageOfAHundredReadsAsItself) {
    for (std::int64_t met = 0; met <= 100; ++met) {
        SessionStatistics statistics{.sessions = 100};
        statistics.criteriaMet[3] = met;
        EXPECT_EQ(statistics.meddicCriterionText(3), QString::number(met) + u'%');
    }
}

TEST(SessionStatisticsTest, onlyFilteredRecordsCount) {
    const std::vector records{scored(scoreOf(6), 60), scored(scoreOf(0), 600)};
    const auto statistics = SessionStatistics::of(records, {1});
    EXPECT_EQ(statistics.sessions, 1);
    EXPECT_EQ(statistics.avgMeddicText(), u"0.0/6"_s);
    EXPECT_EQ(statistics.totalDuration(), u"10m"_s);
}

}  // namespace corvellan::test

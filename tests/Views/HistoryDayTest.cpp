#include <gtest/gtest.h>

#include "HistoryWorld.h"

namespace corvellan::test {

using namespace std::chrono_literals;

namespace {

/// It is eleven o'clock in Berlin: midnight is thirteen hours away.
class HistoryDayTest : public testing::Test {
protected:
    void SetUp() override {
        world.keep(world.recordOf({.companyName = u"Nordwind"_s}));
        world.appear();
    }
    QString day() { return days().value(0); }
    /// Of each row.
    QStringList days() {
        const auto* const rows = world.view().rows();
        QStringList days;
        for (int row = 0; row < rows->rowCount(); ++row)
            days << rows->data(rows->index(row), SessionListModel::sectionRole).toString();
        return days;
    }
    void pass(std::chrono::nanoseconds time) { settleAfter(world.fixture.clock, time); }
    [[nodiscard]] qsizetype timesBuilt() const {
        return world.fixture.debugLines().count(u"HISTORY_VIEW: records.count=1"_s);
    }

    HistoryWorld world;
};

}  // namespace

TEST_F(HistoryDayTest, todayBecomesYesterdayAtMidnightAndADateAtTheNext) {
    pass(13h - 1ms);
    EXPECT_EQ(day(), u"Today"_s);
    EXPECT_EQ(timesBuilt(), 1);
    pass(1ms);
    EXPECT_EQ(day(), u"Yesterday"_s);
    pass(24h);
    EXPECT_EQ(day(), u"02.03.2026"_s);
    EXPECT_EQ(timesBuilt(), 3);
}

TEST_F(HistoryDayTest, aMidnightThatTheComputerSleptThroughIsNoticedWithinAMinute) {
    world.fixture.clock.advanceWallAlone(24h);
    EXPECT_EQ(day(), u"Today"_s);
    pass(1min);
    EXPECT_EQ(day(), u"Yesterday"_s);
}

TEST_F(HistoryDayTest, aClockThatIsSetBackOverMidnightIsNoticedWithinAMinute) {
    world.keep(world.recordOf({.companyName = u"Yesterday's"_s}, 24h));
    ASSERT_EQ(days(), (QStringList{u"Today"_s, u"Yesterday"_s}));
    world.fixture.clock.advanceWallAlone(-12h);
    pass(1min - 1ms);
    EXPECT_EQ(days(), (QStringList{u"Today"_s, u"Yesterday"_s}));
    pass(1ms);
    EXPECT_EQ(days(), (QStringList{u"02.03.2026"_s, u"Today"_s}));

    // The right time is back, and what was to come is over.
    world.fixture.clock.advanceWallAlone(12h);
    pass(1min);
    EXPECT_EQ(days(), (QStringList{u"Today"_s, u"Yesterday"_s}));
}

TEST_F(HistoryDayTest, aMidnightWithARecordOpenShowsInTheListAfterwards) {
    auto* const detail = world.open(0);
    ASSERT_TRUE(detail);
    pass(13h);
    EXPECT_EQ(world.view().detail(), detail);
    EXPECT_EQ(timesBuilt(), 1);
    detail->back();
    EXPECT_EQ(day(), u"Yesterday"_s);
}

TEST_F(HistoryDayTest, aListThatNobodySeesIsNotKeptUp) {
    world.view().disappear();
    pass(48h);
    EXPECT_EQ(timesBuilt(), 1);
    world.appear();
    EXPECT_EQ(day(), u"02.03.2026"_s);
}

}  // namespace corvellan::test

#include "Views/SessionHistoryView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HistoryWorld.h"

namespace corvellan::test {

using namespace std::chrono_literals;

namespace {

class SessionHistoryViewTest : public testing::Test {
protected:
    SessionHistoryView& view() { return world.view(); }
    QString card(int row, const QByteArray& role) { return view().statCards()->value(row, role).toString(); }
    QVariant rate(int row, const QByteArray& role) { return view().criterionRates()->value(row, role); }
    QStringList titles() {
        QStringList all;
        for (int row = 0; row < view().rows()->rowCount(); ++row)
            all << SessionListModel::title(view().rows()->record(row));
        return all;
    }
    SessionRecord company(const QString& name, std::chrono::milliseconds ago = {}, bool wasTrainMode = false) {
        return world.recordOf({.wasTrainMode = wasTrainMode, .companyName = name, .callId = u"call-"_s + name}, ago);
    }
    [[nodiscard]] qsizetype lines(const QString& text) { return world.fixture.debugLines().count(text); }

    HistoryWorld world;
};

}  // namespace

// MARK: - Without records

TEST_F(SessionHistoryViewTest, withoutRecordsAndSyncItIsEmpty) {
    world.appear();
    EXPECT_EQ(view().state(), u"empty"_s);
    EXPECT_EQ(view().rows()->rowCount(), 0);
    EXPECT_EQ(view().storeProblem(), QString{});
}

TEST_F(SessionHistoryViewTest, untilTheStoreHasAnsweredItLoads) {
    EXPECT_EQ(view().state(), u"loading"_s);
    ASSERT_TRUE(spinUntil([this] { return view().state() == u"empty"; }));
}

TEST_F(SessionHistoryViewTest, whileSyncingItSaysSo) {
    world.fixture.http.gate.close();
    view().appear();
    ASSERT_TRUE(spinUntil([this] { return view().state() == u"syncing"; }));
    world.fixture.http.gate.open();
    ASSERT_TRUE(spinUntil([this] { return view().state() == u"empty"; }));
}

TEST_F(SessionHistoryViewTest, withoutAStoreItSaysThatSessionsAreNotKept) {
    world.session().setModelContext(nullptr);
    view().appear();
    world.quieten();
    EXPECT_EQ(view().state(), u"empty"_s);
    EXPECT_EQ(view().storeProblem(), u"The store of past sessions is not open; sessions are not kept."_s);
    world.session().setModelContext(&world.store());
    EXPECT_EQ(view().storeProblem(), QString{});
}

TEST_F(SessionHistoryViewTest, theStoreMayOpenLater) {
    world.session().setModelContext(nullptr);
    view().appear();
    world.quieten();
    world.session().setModelContext(&world.store());
    world.keep(company(u"Nordwind"_s));
    EXPECT_EQ(titles(), QStringList{u"Nordwind"_s});
}

// MARK: - List and filters

TEST_F(SessionHistoryViewTest, recordsComeNewestFirst) {
    world.keep({company(u"old"_s, 48h), company(u"new"_s), company(u"middle"_s, 24h)});
    world.appear();
    EXPECT_EQ(titles(), (QStringList{u"new"_s, u"middle"_s, u"old"_s}));
}

TEST_F(SessionHistoryViewTest, theRowsAreThereBeforeTheListAppearsForTheFirstTime) {
    EXPECT_TRUE(titles().isEmpty());
    world.keep(company(u"Nordwind"_s));
    EXPECT_EQ(titles(), QStringList{u"Nordwind"_s});
    EXPECT_EQ(lines(u"HISTORY_VIEW: records.count=1"_s), 0);
    world.appear();
    EXPECT_EQ(lines(u"HISTORY_VIEW: records.count=1"_s), 1);
}

TEST_F(SessionHistoryViewTest, filtersAreNamedByTheirTexts) {
    EXPECT_EQ(SessionHistoryView::filterModes(), (QStringList{u"Live"_s, u"Train"_s, u"All"_s}));
    EXPECT_EQ(SessionHistoryView::timeRanges(), (QStringList{u"24h"_s, u"7d"_s, u"30d"_s, u"All"_s}));
    EXPECT_EQ(view().filterModeIndex(), 2);
    EXPECT_EQ(view().timeRangeIndex(), 3);
}

TEST_F(SessionHistoryViewTest, bothFiltersNarrowTheList) {
    world.keep({company(u"live"_s), company(u"train"_s, 0s, true), company(u"a day old"_s, 24h),
                company(u"older"_s, 24h + 1ms)});
    world.appear();
    view().setFilterModeIndex(0);
    EXPECT_EQ(titles(), (QStringList{u"live"_s, u"a day old"_s, u"older"_s}));
    view().setTimeRangeIndex(0);
    EXPECT_EQ(titles(), (QStringList{u"live"_s, u"a day old"_s}));
    view().setFilterModeIndex(1);
    EXPECT_EQ(titles(), QStringList{u"train"_s});
    view().setFilterModeIndex(7);
    view().setTimeRangeIndex(-1);
    EXPECT_EQ(view().filterMode(), FilterMode::train);
    EXPECT_EQ(view().timeRange(), TimeRange::day);
}

TEST_F(SessionHistoryViewTest, aFilterWithoutMatchesSaysSoAndTheListStays) {
    world.keep(company(u"live"_s, 48h));
    world.appear();
    EXPECT_EQ(view().noMatchText(), QString{});
    view().setFilterMode(FilterMode::train);
    EXPECT_EQ(view().noMatchText(), u"No train sessions yet"_s);
    EXPECT_EQ(view().state(), u"list"_s) << "the pickers are still there";
    view().setTimeRange(TimeRange::day);
    view().setFilterMode(FilterMode::live);
    EXPECT_EQ(view().noMatchText(), u"No live sessions yet"_s);
    view().setFilterMode(FilterMode::all);
    EXPECT_EQ(view().noMatchText(), u"No all sessions yet"_s);
}

TEST_F(SessionHistoryViewTest, theCardsSumUpWhatIsFiltered) {
    world.keep({world.recordOf({.durationSecs = 3600, .meddic = {.metrics = true, .champion = true}}),
                world.recordOf({.durationSecs = 3900, .meddic = {.metrics = true}}),
                world.recordOf({.durationSecs = 10, .wasTrainMode = true})});
    world.appear();
    view().setFilterMode(FilterMode::live);
    EXPECT_EQ(card(0, "title"), u"Sessions"_s);
    EXPECT_EQ(card(0, "value"), u"2"_s);
    EXPECT_EQ(card(0, "colorName"), u"cyan"_s);
    EXPECT_EQ(card(1, "title"), u"Avg MEDDIC"_s);
    EXPECT_EQ(card(1, "value"), u"1.5/6"_s);
    EXPECT_EQ(card(1, "colorName"), u"red"_s);
    EXPECT_EQ(card(2, "title"), u"Avg Duration"_s);
    EXPECT_EQ(card(2, "value"), u"62m 30s"_s);
    EXPECT_EQ(card(2, "colorName"), u"gray"_s);
    EXPECT_EQ(card(3, "title"), u"Total Time"_s);
    EXPECT_EQ(card(3, "value"), u"2h 5m"_s);
    EXPECT_EQ(card(3, "colorName"), u"gray"_s);
    EXPECT_EQ(rate(0, "letter"), u"M"_s);
    EXPECT_EQ(rate(0, "rate"), u"100%"_s);
    EXPECT_EQ(rate(0, "isHigh"), true);
    EXPECT_EQ(rate(5, "rate"), u"50%"_s);
    EXPECT_EQ(rate(5, "isHigh"), false) << "more than half, not half";
    EXPECT_EQ(rate(5, "spoken"), u"Champion: 50%"_s);
}

TEST_F(SessionHistoryViewTest, eachTimeTheListAppearsItSyncs) {
    world.keep(company(u"Nordwind"_s));
    world.appear();
    EXPECT_EQ(world.fixture.http.requests.size(), 1U);
    world.open(0);
    EXPECT_EQ(world.fixture.http.requests.size(), 1U);
    view().detail()->back();
    world.quieten();
    EXPECT_EQ(world.fixture.http.requests.size(), 2U);
    view().syncHistory();
    world.quieten();
    EXPECT_EQ(world.fixture.http.requests.size(), 3U);
}

TEST_F(SessionHistoryViewTest, whatTheServerKnowsComesIn) {
    world.appear();
    world.fixture.http.answer(200, R"([{"id": "0f4a1c9e-7f0e-4b52-9a68-6a3d2b1c0d9e", "session_id": "s", "mode": "live",
        "company_name": "Elsewhere", "started_at": "2026-03-01T09:00:00Z", "ended_at": "2026-03-01T09:10:00Z",
        "duration_sec": 600, "turns": 9, "meddic": {}, "disc": {}, "coaching_points": []}])");
    view().syncHistory();
    ASSERT_TRUE(spinUntil([this] { return view().state() == u"list"; }));
    EXPECT_EQ(titles(), QStringList{u"Elsewhere"_s});
}

TEST_F(SessionHistoryViewTest, theDebugLogTellsTheNumberOfRecords) {
    world.keep({company(u"a"_s), company(u"b"_s)});
    EXPECT_EQ(lines(u"HISTORY_VIEW: records.count=2"_s), 0) << "nothing is built until it is shown";
    world.appear();
    EXPECT_EQ(lines(u"HISTORY_VIEW: records.count=2"_s), 1);
    view().setFilterMode(FilterMode::live);
    EXPECT_EQ(lines(u"HISTORY_VIEW: records.count=2"_s), 2);
}

// MARK: - One record

TEST_F(SessionHistoryViewTest, aRowOpensItsRecordAndBackClosesIt) {
    world.keep({company(u"first"_s), company(u"second"_s, 1h)});
    world.appear();
    ASSERT_NE(world.open(1), nullptr);
    EXPECT_EQ(view().detail()->companyName(), u"second"_s);
    view().detail()->back();
    EXPECT_EQ(view().detail(), nullptr);
    EXPECT_EQ(view().lastOpenRow(), 1);
}

TEST_F(SessionHistoryViewTest, filtersOutliveARecordButNotTheView) {
    world.keep({company(u"live"_s), company(u"train"_s, 1h, true)});
    world.appear();
    view().setFilterMode(FilterMode::train);
    view().setTimeRange(TimeRange::week);
    world.open(0);
    view().detail()->back();
    EXPECT_EQ(view().filterMode(), FilterMode::train);
    EXPECT_EQ(view().timeRange(), TimeRange::week);
    EXPECT_EQ(titles(), QStringList{u"train"_s});
    view().disappear();
    world.appear();
    EXPECT_EQ(view().filterMode(), FilterMode::all);
    EXPECT_EQ(view().timeRange(), TimeRange::allTime);
    EXPECT_EQ(titles().size(), 2);
}

TEST_F(SessionHistoryViewTest, anOpenRecordIsClosedWithTheView) {
    world.keep(company(u"Nordwind"_s));
    world.appear();
    world.open(0);
    view().disappear();
    EXPECT_EQ(view().detail(), nullptr);
}

TEST_F(SessionHistoryViewTest, rowsThatAreNotThereOpenNothing) {
    world.keep(company(u"Nordwind"_s));
    world.appear();
    view().open(-1);
    view().open(1);
    world.keep(company(u"later"_s));
    EXPECT_EQ(view().detail(), nullptr);
}

TEST_F(SessionHistoryViewTest, aRecordThatCannotBeReadLeavesTheListAndTheReason) {
    FakeStore broken;
    broken.records.push_back(company(u"Nordwind"_s));
    broken.fetchError = Error{TransportError{u"The disk is gone."_s}};
    world.session().setModelContext(&broken);
    view().appear();
    ASSERT_TRUE(spinUntil([this] { return view().state() == u"list"; }));
    view().open(0);
    ASSERT_TRUE(spinUntil([this] { return !view().openProblem().isEmpty(); }));
    EXPECT_EQ(view().openProblem(), u"The disk is gone."_s);
    EXPECT_EQ(view().detail(), nullptr);
    broken.fetchError.reset();
    ASSERT_NE(world.open(0), nullptr);
    EXPECT_EQ(view().openProblem(), QString{});
    view().disappear();
    world.quieten();
    world.session().setModelContext(nullptr);
}

// MARK: - A session that has just ended

TEST_F(SessionHistoryViewTest, theNewestRecordOpensWhenTheListAppearsAfterACall) {
    world.session().setLastSummary(SummaryPayload{.callId = u"call-new"_s});
    world.keep({company(u"new"_s), company(u"old"_s, 1h)});
    view().appear();
    ASSERT_TRUE(spinUntil([this] { return view().detail() != nullptr; }));
    EXPECT_EQ(view().detail()->companyName(), u"new"_s);
    EXPECT_TRUE(view().detail()->isFresh());
}

TEST_F(SessionHistoryViewTest, theNewestRecordOpensWhenTheSummaryComesWhileTheListShows) {
    world.keep(company(u"old"_s, 1h));
    world.appear();
    world.session().setLastSummary(SummaryPayload{.callId = u"call-new"_s});
    world.keep(company(u"new"_s));
    ASSERT_TRUE(spinUntil([this] { return view().detail() != nullptr; }));
    EXPECT_EQ(view().detail()->companyName(), u"new"_s) << "not the one that was newest until then";
}

TEST_F(SessionHistoryViewTest, aSummaryThatComesBeforeTheFirstRecordWaitsForIt) {
    world.appear();
    world.session().setLastSummary(SummaryPayload{.callId = u"call-new"_s});
    EXPECT_EQ(view().state(), u"empty"_s);
    world.keep(company(u"new"_s));
    ASSERT_TRUE(spinUntil([this] { return view().detail() != nullptr; }));
}

TEST_F(SessionHistoryViewTest, goingBackMakesARecordStopBeingFresh) {
    world.session().setLastSummary(SummaryPayload{.callId = u"call-new"_s});
    world.keep(company(u"new"_s));
    view().appear();
    ASSERT_TRUE(spinUntil([this] { return view().detail() != nullptr; }));
    view().detail()->back();
    EXPECT_FALSE(world.session().lastSummary());
    world.quieten();
    EXPECT_EQ(view().detail(), nullptr) << "the list that appears opens nothing by itself";
    EXPECT_FALSE(world.open(0)->isFresh());
}

TEST_F(SessionHistoryViewTest, aRatingReachesTheOpenRecordAndTheStore) {
    const QUuid id = world.keep(company(u"Nordwind"_s));
    world.appear();
    world.open(0)->rateHelpful();
    ASSERT_TRUE(spinUntil([this] { return view().detail()->record().feedbackRating == 1; }));
    world.quieten();
    EXPECT_EQ(world.stored(id).feedbackRating, 1);
    EXPECT_TRUE(view().detail()->showsStoredFeedback());
}

}  // namespace corvellan::test

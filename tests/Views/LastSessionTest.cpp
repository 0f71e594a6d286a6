#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class LastSessionTest : public testing::Test {
protected:
    HomeView& home() { return fixture.home(); }
    LastSession& lastSession() { return *home().lastSession(); }

    HomeFixture fixture;
};

SessionRecord recordAt(WallTime time) {
    auto record = SessionRecord::make({.durationSecs = 135,
                                       .meddic = {.metrics = true, .economicBuyer = true, .champion = true},
                                       .companyName = u"Nordwind"_s},
                                      time);
    return record;
}

const WallTime march = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 8h;

TEST_F(LastSessionTest, withoutRecordsThereIsNoLastSession) {
    FakeStore store;
    EXPECT_FALSE(lastSession().isThere()) << "the store is still being opened";
    fixture.giveStore(store);
    EXPECT_FALSE(lastSession().isThere());
    EXPECT_EQ(lastSession().title(), QString{});
    fixture.forgetHome();
}

TEST_F(LastSessionTest, theNewestRecordIsTheLastSession) {
    FakeStore store;
    store.records = {recordAt(march - 24h), recordAt(march), recordAt(march - 48h)};
    store.records[0].companyName = u"Older"_s;
    QSignalSpy changes{&lastSession(), &LastSession::changed};
    fixture.giveStore(store);
    ASSERT_TRUE(lastSession().isThere());
    EXPECT_EQ(lastSession().title(), u"Nordwind"_s);
    EXPECT_EQ(lastSession().score(), u"3/6"_s);
    EXPECT_EQ(lastSession().scoreColor(), u"yellow"_s);
    EXPECT_EQ(lastSession().caption(), u"02.03.2026 · 2m 15s"_s);
    EXPECT_FALSE(lastSession().wasTraining());
    EXPECT_GE(changes.count(), 1);

    auto newer = recordAt(march + 1h);
    newer.companyName.reset();
    newer.scenario = u"Tough CFO"_s;
    newer.wasTrainMode = true;
    complete(store.insert(newer));
    settle();
    EXPECT_EQ(lastSession().title(), u"Tough CFO"_s);
    EXPECT_TRUE(lastSession().wasTraining());
    fixture.forgetHome();
}

TEST_F(LastSessionTest, aSessionWithoutCompanyAndScenarioIsJustASession) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].companyName.reset();
    fixture.giveStore(store);
    home();
    settle();
    EXPECT_EQ(lastSession().title(), u"Session"_s);
    fixture.forgetHome();
}

TEST_F(LastSessionTest, aColdCallHasNoScore) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].audienceRaw = u"cold_call"_s;
    fixture.giveStore(store);
    home();
    settle();
    ASSERT_TRUE(lastSession().isThere());
    EXPECT_EQ(lastSession().score(), QString{});
    fixture.forgetHome();
}

TEST_F(LastSessionTest, aPoorScoreIsDimRed) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].meddicData.clear();
    fixture.giveStore(store);
    home();
    settle();
    EXPECT_EQ(lastSession().score(), u"0/6"_s);
    EXPECT_EQ(lastSession().scoreColor(), u"red"_s);
    EXPECT_EQ(lastSession().scoreOpacity(), 0.7);
    fixture.forgetHome();
}

}  // namespace

}  // namespace corvellan::test

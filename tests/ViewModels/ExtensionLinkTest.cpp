#include "ExtensionLinkFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

TEST_F(ExtensionLinkTest, startingAnewReplacesBothChannels) {
    fixture.http.answer(200, status(true));
    start();
    start();
    EXPECT_EQ(listeners(), 2U);
    EXPECT_EQ(polls(), 2U);
    EXPECT_EQ(std::ranges::count(fixture.log, "listener.disconnect"), 1);
    settleAfter(fixture.clock, 30s);
    EXPECT_EQ(listeners(), 2U);
    EXPECT_EQ(polls(), 3U);
}

TEST_F(ExtensionLinkTest, stoppingEndsBothChannels) {
    fixture.http.answer(200, status(true));
    start();
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(fixture.did("listener.disconnect"));
    EXPECT_TRUE(session().isQuiet());
    settleAfter(fixture.clock, 120s);
    EXPECT_EQ(listeners(), 1U);
    EXPECT_EQ(polls(), 1U);
}

TEST_F(ExtensionLinkTest, stoppingGivesUpAPollUnderWay) {
    fixture.http.gate.close();
    start();
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(session().isQuiet());
}

TEST_F(ExtensionLinkTest, aRunningLinkLeavesTheSessionQuiet) {
    start();
    EXPECT_TRUE(session().isQuiet());
}

TEST_F(ExtensionLinkTest, stoppingWhatNeverRanIsHarmless) {
    session().stopSensorPolling();
    settle();
    EXPECT_TRUE(session().isQuiet());
}

}  // namespace corvellan::test

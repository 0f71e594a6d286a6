#include "Services/Alarm.h"

#include <gtest/gtest.h>

#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;

struct AlarmTest : testing::Test {
    ManualClock clock;
    int rings = 0;
};

TEST_F(AlarmTest, ringsOnceAtItsTime) {
    Alarm alarm{mainExecutor(), clock};
    alarm.set(20s, [this] { ++rings; });
    settleAfter(clock, 20s - 1ns);
    EXPECT_EQ(rings, 0);
    EXPECT_TRUE(alarm.isSet());
    settleAfter(clock, 1ns);
    EXPECT_EQ(rings, 1);
    EXPECT_FALSE(alarm.isSet());
    settleAfter(clock, 1h);
    EXPECT_EQ(rings, 1);
}

TEST_F(AlarmTest, aNewSettingReplacesTheOld) {
    Alarm alarm{mainExecutor(), clock};
    alarm.set(10s, [this] { rings += 100; });
    alarm.set(20s, [this] { ++rings; });
    settleAfter(clock, 1min);
    EXPECT_EQ(rings, 1);
}

TEST_F(AlarmTest, canBeSetAgainWhileItRings) {
    Alarm alarm{mainExecutor(), clock};
    std::function<void()> ring = [&] {
        ++rings;
        alarm.set(20s, ring);
    };
    alarm.set(20s, ring);
    settleAfter(clock, 1min);
    EXPECT_EQ(rings, 3);
}

TEST_F(AlarmTest, isSilentOnceCancelledEvenWhenAlreadyDue) {
    Alarm alarm{mainExecutor(), clock};
    alarm.set(1s, [this] { ++rings; });
    clock.advance(1s);
    alarm.cancel();
    settle();
    EXPECT_EQ(rings, 0);
}

TEST_F(AlarmTest, isSilentOnceGoneEvenWhenAlreadyDue) {
    {
        Alarm alarm{mainExecutor(), clock};
        alarm.set(1s, [this] { ++rings; });
        clock.advance(1s);
    }
    settle();
    EXPECT_EQ(rings, 0);
}

TEST_F(AlarmTest, mayEndItsOwnerWhileItRings) {
    auto alarm = std::make_unique<Alarm>(mainExecutor(), clock);
    alarm->set(1s, [&] {
        alarm.reset();
        ++rings;
    });
    settleAfter(clock, 1s);
    EXPECT_EQ(rings, 1);
}

}  // namespace
}  // namespace corvellan::test

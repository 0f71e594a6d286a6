#include "Base/Tasks.h"

#include <gtest/gtest.h>

#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;

TEST(TasksTest, aTaskStartsAtTheNextTurnAndNotAtOnce) {
    bool hasStarted = false;
    const auto task = CancellableTask::start([&](std::stop_token) -> QCoro::Task<void> {
        hasStarted = true;
        co_return;
    });
    EXPECT_FALSE(hasStarted);
    settle();
    EXPECT_TRUE(hasStarted);
    EXPECT_TRUE(task.isFinished());
}

TEST(TasksTest, aTaskCancelledBeforeItsStartStillRuns) {
    bool wasCancelled = false;
    const auto task = CancellableTask::start([&](std::stop_token stop) -> QCoro::Task<void> {
        wasCancelled = stop.stop_requested();
        co_return;
    });
    task.cancel();
    settle();
    EXPECT_TRUE(wasCancelled);
}

TEST(TasksTest, sleepEndsWhenTheClockGetsThere) {
    ManualClock clock;
    std::optional<SleepEnd> end;
    const auto task = CancellableTask::start(
        [&](std::stop_token stop) -> QCoro::Task<void> { end = co_await sleep(clock, 1s, stop); });
    settleAfter(clock, 999ms);
    EXPECT_FALSE(end.has_value());
    settleAfter(clock, 1ms);
    EXPECT_EQ(end, SleepEnd::elapsed);
    EXPECT_TRUE(task.isFinished());
}

TEST(TasksTest, cancellingInterruptsASleep) {
    ManualClock clock;
    std::optional<SleepEnd> end;
    const auto task = CancellableTask::start(
        [&](std::stop_token stop) -> QCoro::Task<void> { end = co_await sleep(clock, 1h, stop); });
    settle();
    task.cancel();
    EXPECT_FALSE(end.has_value());
    settle();
    EXPECT_EQ(end, SleepEnd::interrupted);
    EXPECT_FALSE(clock.nextDeadline().has_value());
}

TEST(TasksTest, untilStoppedWaitsForTheEndOfTheWork) {
    ManualClock clock;
    std::stop_source stop;
    auto work = [](ManualClock& time) -> QCoro::Task<void> { co_await sleep(time, 1s); }(clock);
    auto waiting = untilStopped(std::move(work), stop.get_token());
    settleAfter(clock, 999ms);
    EXPECT_FALSE(waiting.isReady());
    settleAfter(clock, 1ms);
    EXPECT_TRUE(waiting.isReady());
    // The stop that comes later finds nobody.
    stop.request_stop();
    settle();
}

TEST(TasksTest, untilStoppedTakesWorkThatHasEndedAlready) {
    auto work = []() -> QCoro::Task<void> { co_return; }();
    EXPECT_TRUE(untilStopped(std::move(work), {}).isReady());
}

TEST(TasksTest, untilStoppedLeavesWorkThatHangsToItself) {
    ManualClock clock;
    std::stop_source stop;
    bool hasWorkEnded = false;
    auto work = [](ManualClock& time, bool& hasEnded) -> QCoro::Task<void> {
        co_await sleep(time, 1h);
        hasEnded = true;
    }(clock, hasWorkEnded);
    auto waiting = untilStopped(std::move(work), stop.get_token());
    settle();
    EXPECT_FALSE(waiting.isReady());
    stop.request_stop();
    EXPECT_FALSE(waiting.isReady()) << "nothing goes on inside the request";
    settle();
    EXPECT_TRUE(waiting.isReady());
    EXPECT_FALSE(hasWorkEnded);
    settleAfter(clock, 1h);
    EXPECT_TRUE(hasWorkEnded);
}

TEST(TasksTest, aSlotCancelsTheOldTaskWhenItTakesANewOne) {
    ManualClock clock;
    std::vector<std::string> events;
    const auto sleeper = [&](std::string name) {
        return CancellableTask::start([&, name](std::stop_token stop) -> QCoro::Task<void> {
            const auto end = co_await sleep(clock, 1s, stop);
            events.push_back(name + (end == SleepEnd::elapsed ? " elapsed" : " interrupted"));
        });
    };
    TaskSlot slot;
    slot = sleeper("first");
    settle();
    slot = sleeper("second");
    settleAfter(clock, 1s);
    EXPECT_EQ(events, (std::vector<std::string>{"first interrupted", "second elapsed"}));
}

TEST(TasksTest, aGroupWaitsForEveryChildAndOneThatEndsEarlyEndsNothingElse) {
    ManualClock clock;
    std::vector<std::string> events;
    std::stop_source stop;
    auto all = [](ManualClock& time, std::stop_token token, std::vector<std::string>& log) -> QCoro::Task<void> {
        TaskGroup group{token};
        group.add([&](std::stop_token) -> QCoro::Task<void> {
            log.emplace_back("early");
            co_return;
        });
        group.add([&](std::stop_token inner) -> QCoro::Task<void> {
            co_await sleep(time, 1h, inner);
            log.emplace_back("late");
        });
        co_await group.wait();
        log.emplace_back("all");
    }(clock, stop.get_token(), events);
    settle();
    EXPECT_EQ(events, (std::vector<std::string>{"early"}));
    stop.request_stop();
    complete(std::move(all));
    EXPECT_EQ(events, (std::vector<std::string>{"early", "late", "all"}));
}

TEST(TasksTest, anAnnouncementWakesAllWhoWaitForItAndNotTheLateComers) {
    Announcement announcement;
    int woken = 0;
    const auto waiter = [&] {
        static_cast<void>(CancellableTask::start([&](std::stop_token) -> QCoro::Task<void> {
            co_await announcement.next();
            ++woken;
        }));
    };
    waiter();
    waiter();
    settle();
    announcement.announce();
    EXPECT_EQ(woken, 0);
    settle();
    EXPECT_EQ(woken, 2);
    waiter();
    settle();
    EXPECT_EQ(woken, 2);
    announcement.announce();
    settle();
    EXPECT_EQ(woken, 3);
}

TEST(TasksTest, theSystemClockWakesSleepers) {
    SystemClock clock;
    const auto start = clock.now();
    bool isOver = false;
    const auto task = CancellableTask::start([&](std::stop_token stop) -> QCoro::Task<void> {
        co_await sleep(clock, 20ms, stop);
        isOver = true;
    });
    EXPECT_TRUE(spinUntil([&] { return isOver; }));
    EXPECT_GE(clock.now() - start, 20ms);
    EXPECT_TRUE(task.isFinished());
}

}  // namespace
}  // namespace corvellan::test

#include "Base/Executor.h"

#include <gtest/gtest.h>

#include <thread>

#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

TEST(ExecutorTest, runsPostedWorkInOrder) {
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        mainExecutor().post([&order, i] { order.push_back(i); });
    EXPECT_TRUE(order.empty());
    settle();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST(ExecutorTest, workPostedDuringWorkRunsAfterIt) {
    std::vector<int> order;
    mainExecutor().post([&] {
        mainExecutor().post([&] { order.push_back(3); });
        order.push_back(1);
    });
    mainExecutor().post([&] { order.push_back(2); });
    settle();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(ExecutorTest, runWorksThereAndResumesTheCallerHere) {
    WorkerThread worker{"test"};
    std::thread::id workedOn;
    auto task = [](Executor& there, std::thread::id& where) -> QCoro::Task<std::thread::id> {
        const int value = co_await there.run([&where]() -> QCoro::Task<int> {
            where = std::this_thread::get_id();
            co_return 42;
        });
        EXPECT_EQ(value, 42);
        co_return std::this_thread::get_id();
    }(worker.executor(), workedOn);

    EXPECT_EQ(complete(std::move(task)), std::this_thread::get_id());
    EXPECT_NE(workedOn, std::this_thread::get_id());
    EXPECT_NE(workedOn, std::thread::id{});
}

TEST(ExecutorTest, runOnItselfStartsAtOnce) {
    bool hasStarted = false;
    auto task = mainExecutor().run([&]() -> QCoro::Task<void> {
        hasStarted = true;
        co_return;
    });
    EXPECT_TRUE(hasStarted);
    complete(std::move(task));
}

TEST(ExecutorTest, callHandsAPlainResultOver) {
    WorkerThread worker{"test"};
    EXPECT_EQ(complete(worker.executor().call([] { return std::string{"done"}; })), "done");
}

TEST(ExecutorTest, runAndWaitBlocksUntilTheWorkIsDone) {
    WorkerThread worker{"test"};
    bool isDone = false;
    runAndWait(worker.executor(), [&] { isDone = true; });
    EXPECT_TRUE(isDone);
    runAndWait(mainExecutor(), [&] { isDone = false; });
    EXPECT_FALSE(isDone);
}

TEST(ExecutorTest, aWorkerEndsAfterTheWorkThatWasPosted) {
    std::atomic<int> count = 0;
    {
        WorkerThread worker{"test"};
        for (int i = 0; i < 100; ++i)
            worker.executor().post([&] { ++count; });
    }
    EXPECT_EQ(count, 100);
}

}  // namespace
}  // namespace corvellan::test

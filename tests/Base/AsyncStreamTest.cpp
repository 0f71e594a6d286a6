#include "Base/AsyncStream.h"

#include <gtest/gtest.h>

#include <thread>

#include "Support/TestLoop.h"

namespace corvellan::test {
namespace {

using Ints = AsyncStream<int>;

QCoro::Task<std::vector<int>> readAll(Ints stream, std::stop_token stop) {
    std::vector<int> values;
    while (true) {
        auto next = co_await stream.next(stop);
        if (!next || !*next)
            co_return values;
        values.push_back(**next);
    }
}

QCoro::Task<Ints::Next> readOne(Ints stream, std::stop_token stop = {}) {
    co_return co_await stream.next(stop);
}

TEST(AsyncStreamTest, yieldsWhatWasPushedInOrderAndThenTheEnd) {
    auto [stream, producer] = Ints::make();
    producer.push(1);
    producer.push(2);
    producer.push(3);
    producer.finish();

    EXPECT_EQ(complete(readAll(stream, {})), (std::vector{1, 2, 3}));
}

TEST(AsyncStreamTest, yieldsTheErrorAfterWhatWasPushedBefore) {
    auto [stream, producer] = Ints::make();
    producer.push(7);
    producer.fail(TransportError{QStringLiteral("gone")});

    EXPECT_EQ(**complete(readOne(stream)), 7);
    const auto end = complete(readOne(stream));
    ASSERT_FALSE(end.has_value());
    EXPECT_EQ(end.error().errorDescription(), QStringLiteral("gone"));
    // The end is read again and again.
    EXPECT_FALSE(complete(readOne(stream)).has_value());
}

TEST(AsyncStreamTest, wakesAWaitingReader) {
    auto [stream, producer] = Ints::make();
    auto reading = readOne(stream);
    settle();
    producer.push(5);

    EXPECT_EQ(**complete(std::move(reading)), 5);
}

TEST(AsyncStreamTest, anotherReaderMayFollow) {
    auto [stream, producer] = Ints::make();
    producer.push(1);
    producer.push(2);

    EXPECT_EQ(**complete(readOne(stream)), 1);
    const auto copy = stream;
    EXPECT_EQ(**complete(readOne(copy)), 2);
}

TEST(AsyncStreamTest, aStoppedReaderEndsTheStreamAndTerminatesItOnce) {
    auto [stream, producer] = Ints::make();
    int terminations = 0;
    producer.onTermination([&] { ++terminations; });
    std::stop_source stop;
    auto reading = readAll(stream, stop.get_token());
    producer.push(1);
    settle();

    stop.request_stop();
    EXPECT_EQ(complete(std::move(reading)), (std::vector{1}));
    producer.push(2);
    producer.finish();
    EXPECT_EQ(terminations, 1);
    EXPECT_TRUE(producer.hasEnded());
    EXPECT_TRUE(complete(readAll(stream, {})).empty());
}

TEST(AsyncStreamTest, nothingResumesInsideTheStopRequest) {
    auto [stream, producer] = Ints::make();
    std::stop_source stop;
    bool hasResumed = false;
    auto reading = [](Ints from, std::stop_token token, bool& resumed) -> QCoro::Task<void> {
        static_cast<void>(co_await from.next(token));
        resumed = true;
    }(stream, stop.get_token(), hasResumed);
    settle();

    stop.request_stop();
    EXPECT_FALSE(hasResumed);
    complete(std::move(reading));
    EXPECT_TRUE(hasResumed);
}

TEST(AsyncStreamTest, endsWhenTheLastReadingEndGoes) {
    int terminations = 0;
    auto made = std::make_optional(Ints::make());
    const auto producer = made->second;
    producer.onTermination([&] { ++terminations; });
    made.reset();

    EXPECT_EQ(terminations, 1);
    EXPECT_TRUE(producer.hasEnded());
}

TEST(AsyncStreamTest, finishTerminatesAndLateListenersHearAtOnce) {
    auto [stream, producer] = Ints::make();
    producer.finish();
    int terminations = 0;
    producer.onTermination([&] { ++terminations; });
    EXPECT_EQ(terminations, 1);
}

TEST(AsyncStreamTest, losesNothingBetweenThreads) {
    constexpr int perThread = 20'000;
    auto [stream, producer] = Ints::make();
    auto reading = readAll(stream, {});
    {
        std::jthread first{[producer = producer] {
            for (int i = 0; i < perThread; ++i)
                producer.push(2 * i);
        }};
        std::jthread second{[producer = producer] {
            for (int i = 0; i < perThread; ++i)
                producer.push(2 * i + 1);
        }};
    }
    producer.finish();

    const auto values = complete(std::move(reading));
    ASSERT_EQ(values.size(), 2U * perThread);
    int lastEven = -2;
    int lastOdd = -1;
    for (const int value : values) {
        int& last = value % 2 == 0 ? lastEven : lastOdd;
        ASSERT_EQ(value, last + 2);
        last = value;
    }
}

TEST(AsyncStreamTest, aProducerThatComesLateDoesNotWakeForWhatWasRead) {
    corvellan::detail::StreamState<int> state;
    corvellan::detail::StreamWaiter sleeper{.executor = &mainExecutor(), .handle = std::noop_coroutine()};
    state.push(new corvellan::detail::StreamState<int>::Node{.value = 1, .error = std::nullopt, .next = nullptr});
    ASSERT_TRUE(state.fill());
    state.waiter = &sleeper;
    // The push of above, had it been held up before its last step.
    state.wakeReader();
    EXPECT_EQ(state.waiter.load(), &sleeper);

    state.push(new corvellan::detail::StreamState<int>::Node{.value = 2, .error = std::nullopt, .next = nullptr});
    EXPECT_EQ(state.waiter.load(), nullptr);
    settle();
}

TEST(AsyncStreamTest, pingPongBetweenThreadsNeverLosesAWakeUp) {
    constexpr int rounds = 5'000;
    WorkerThread worker{"test"};
    auto [there, toWorker] = Ints::make();
    auto [back, toMain] = Ints::make();
    auto echo = worker.executor().run([there = there, toMain = toMain] {
        return [](Ints from, Ints::Producer to) -> QCoro::Task<void> {
            while (true) {
                auto next = co_await from.next();
                if (!next || !*next)
                    co_return;
                to.push(**next + 1);
            }
        }(there, toMain);
    });
    auto play = [](Ints from, Ints::Producer to) -> QCoro::Task<int> {
        int value = 0;
        for (int i = 0; i < rounds; ++i) {
            to.push(value);
            auto next = co_await from.next();
            value = **next;
        }
        to.finish();
        co_return value;
    }(back, toWorker);

    EXPECT_EQ(complete(std::move(play), std::chrono::seconds{60}), rounds);
    complete(std::move(echo));
}

}  // namespace
}  // namespace corvellan::test

#include <gtest/gtest.h>

#include "ScreenShareFixture.h"

namespace corvellan::test {

namespace {

class ScreenShareRunTest : public ScreenShareFixture {};

INSTANTIATE_TEST_SUITE_P(Placements, ScreenShareRunTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

TEST_P(ScreenShareRunTest, isStoppedAtFirst) {
    EXPECT_FALSE(isRunning());
    stop();
    EXPECT_FALSE(isRunning());
}

TEST_P(ScreenShareRunTest, startsWithALineInTheLog) {
    start();
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(log.infos(), QStringList{u"start session=s-1 interval=10.000000s"_s});
    start({.intervalSeconds = 2.5});
    EXPECT_EQ(log.infos().last(), u"start session=s-1 interval=2.500000s"_s);
}

TEST_P(ScreenShareRunTest, waitsASecondOnceAndThenTheIntervalAfterEachTick) {
    start({.intervalSeconds = 2.5});
    EXPECT_TRUE(desktop().pictured.empty());
    tick(1s, 2500ms);
    EXPECT_EQ(desktop().pictured.size(), 1U);
    tick(2500ms, 2500ms);
    tick(2500ms, 2500ms);
    EXPECT_EQ(desktop().pictured.size(), 3U);
}

TEST_P(ScreenShareRunTest, aStopEndsTheLoop) {
    start();
    tick(1s);
    stop();
    EXPECT_FALSE(isRunning());
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt) << "nothing waits any more";
    EXPECT_EQ(desktop().pictured.size(), 1U);
}

TEST_P(ScreenShareRunTest, aStartAfterAStopUploadsTheSamePictureAgain) {
    start();
    tick(1s);
    stop();
    settleService();
    start();
    tick(1s);
    EXPECT_EQ(server.requests.size(), 2);
}

TEST_P(ScreenShareRunTest, aStartWhileRunningForgetsTheLastFrameAndTheOldLoop) {
    start();
    tick(1s);
    start();
    tick(1s);
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_EQ(desktop().opened, 2);
    tick(10s);
    EXPECT_EQ(desktop().pictured.size(), 3U) << "one loop, not two";
}

TEST_P(ScreenShareRunTest, anAddressThatIsNoneLeavesItStopped) {
    start();
    for (const QString& base : {u"http://a b"_s, u"http://host:port"_s, u"http://[::1"_s}) {
        complete(service->start(u"s-1"_s, base, std::nullopt, {}));
        EXPECT_EQ(log.errors().last(), u"invalid http base: "_s + base);
        EXPECT_FALSE(isRunning());
    }
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt) << "the loop before it has ended too";
    EXPECT_EQ(log.infos().size(), 1);
}

TEST_P(ScreenShareRunTest, aStopWaitsForNoUploadAndTheUploadMayStillFinish) {
    server.respond = [](const auto&) { return QByteArray{}; };
    start();
    clock.advance(1s);
    ASSERT_TRUE(hasUploaded(1));
    stop();
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(log.infos().size(), 1) << "the server has not answered yet";
    server.answerHeld(LoopbackHttpServer::reply(200));
    ASSERT_TRUE(spinUntil([&] { return log.infos().size() == 2; }));
    EXPECT_TRUE(log.infos().last().startsWith(u"frame uploaded"_s));
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
}

TEST_P(ScreenShareRunTest, aLateUploadOfAnEarlierRunCountsNotForTheNewOne) {
    server.respond = [](const auto&) { return QByteArray{}; };
    start();
    clock.advance(1s);
    ASSERT_TRUE(hasUploaded(1));
    start();
    server.answerHeld(LoopbackHttpServer::reply(200));
    ASSERT_TRUE(spinUntil([&] { return log.infos().filter(u"frame uploaded"_s).size() == 1; }));
    server.answer(200);
    clock.advance(1s);
    ASSERT_TRUE(sleeps(10s));
    EXPECT_EQ(server.requests.size(), 2) << "the first frame of the new run uploads";
}

TEST_P(ScreenShareRunTest, aStopDuringACaptureUploadsNothing) {
    start();
    bool isStopped = false;
    desktop().onPicture = [&] {
        stop();
        isStopped = true;
    };
    clock.advance(1s);
    ASSERT_TRUE(spinUntil([&] { return isStopped; }));
    settleService();
    // A marker: a new run's upload is the first.
    desktop().onPicture = [] {};
    start({}, u"later"_s);
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests.first().header("Authorization"), "Bearer later");
}

TEST_P(ScreenShareRunTest, goesWhileItWaits) {
    start();
    service.reset();
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
    EXPECT_TRUE(desktop().pictured.empty());
}

TEST_P(ScreenShareRunTest, goesWhileItCaptures) {
    start();
    desktop().onPicture = [this] { service.reset(); };
    clock.advance(1s);
    ASSERT_TRUE(spinUntil([&] { return !service; }));
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
    EXPECT_TRUE(server.requests.isEmpty());
}

TEST_P(ScreenShareRunTest, goesWhileItUploads) {
    server.respond = [](const auto&) { return QByteArray{}; };
    start();
    clock.advance(1s);
    ASSERT_TRUE(hasUploaded(1));
    service.reset();
    server.answerHeld(LoopbackHttpServer::reply(200));
    ASSERT_TRUE(spinUntil([&] { return log.infos().size() == 2; }));
    settleService();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
}

TEST_P(ScreenShareRunTest, anIntervalThatIsNoneIsNoPause) {
    for (const double interval : {0.0, -3.0}) {
        start({.intervalSeconds = interval});
        clock.advance(1s);
        ASSERT_TRUE(sleeps(0s)) << interval;
        stop();
        settleService();
    }
}

}  // namespace

}  // namespace corvellan::test

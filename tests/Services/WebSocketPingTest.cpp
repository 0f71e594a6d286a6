#include "WebSocketServiceFixture.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TEST_P(WebSocketServiceTest, pingsEvery20SecondsAsControlFrames) {
    connectRaw();
    drainAfter(20s - 1ns);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    drainAfter(1ns);
    EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 1; }));
    for (int expected = 2; expected <= 4; ++expected) {
        drainAfter(20s);
        EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == expected; }));
    }
    EXPECT_EQ(raw.count(RawServer::textOpcode), 1);  // The one of `connectRaw`.
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(WebSocketServiceTest, aFailedPingIsLoggedAndEndsNothing) {
    raw.answersPings = false;
    connectRaw();
    Reader reader{coach->receive()};
    drainAfter(20s);
    ASSERT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 1; }));
    drainAfter(60s - 1ns);
    EXPECT_TRUE(log.errors().isEmpty());
    drainAfter(1ns);
    EXPECT_EQ(log.errors(), QStringList{u"Ping failed: The connection timed out."_s});
    EXPECT_TRUE(spinUntil([&] { return raw.count(RawServer::pingOpcode) == 4; }));
    EXPECT_FALSE(reader.hasEnded());
    EXPECT_EQ(sendFailure(), u"sent"_s);
}

TEST_P(WebSocketServiceTest, pingsGoOnFailingOnADeadConnection) {
    connectRaw();
    Reader reader{coach->receive()};
    raw.reset();
    ASSERT_TRUE(reader.waitForEnd());
    drainAfter(40s);
    EXPECT_EQ(log.errors(), (QStringList{u"Ping failed: The remote host closed the connection"_s,
                                         u"Ping failed: The remote host closed the connection"_s}));
}

TEST_P(WebSocketServiceTest, pingsEndWithDisconnect) {
    connectRaw();
    complete(coach->disconnect());
    drainAfter(1h);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    EXPECT_TRUE(log.errors().isEmpty());
    EXPECT_FALSE(clock.nextDeadline());
}

TEST_P(WebSocketServiceTest, aReplacedConnectionIsPingedNoMore) {
    connectRaw();
    drainAfter(10s);
    connect();
    drainAfter(19s);
    EXPECT_EQ(raw.count(RawServer::pingOpcode), 0);
    EXPECT_TRUE(log.errors().isEmpty());
}

}  // namespace
}  // namespace corvellan::test

#include "HttpClientFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

TEST_F(HttpClientTest, takesABodyOfTheLargestSize) {
    const QByteArray largest(maxBodyBytes, 'x');
    serve(answer("200 OK", largest));
    EXPECT_TRUE(body(client->send(get(url()), {})) == largest);
}

TEST_F(HttpClientTest, refusesAByteMore) {
    serve(answer("200 OK", QByteArray(maxBodyBytes + 1, 'x')));
    const auto answered = complete(client->send(get(url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, leavesABodyThatNeverEnds) {
    server.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\n\r\n"); };
    ASSERT_TRUE(server.listen());
    begin();
    const QByteArray piece(64 * 1024, 'x');
    // The server goes on for as long as anybody reads.
    EXPECT_TRUE(spinUntil([&] {
        if (!server.isGone() && server.bytesToWrite() == 0)
            server.write(piece);
        return result.has_value() && server.isGone();
    }));
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, givesUpAfterAMinute) {
    server.onRequest = [](RawServer&) {};
    ASSERT_TRUE(server.listen());
    begin();
    settleAfter(clock, 60s - 1ms);
    EXPECT_FALSE(result);
    settleAfter(clock, 1ms);
    ASSERT_TRUE(ends());
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().errorDescription(), u"The connection timed out."_s);
    EXPECT_TRUE(spinUntil([&] { return server.isGone(); }));
}

TEST_F(HttpClientTest, givesUpABodyThatTrickles) {
    server.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n"); };
    ASSERT_TRUE(server.listen());
    begin();
    for (int i = 0; i < 59; ++i) {
        server.write("x");
        settleAfter(clock, 1s);
    }
    EXPECT_FALSE(result);
    settleAfter(clock, 1s);
    ASSERT_TRUE(ends());
    EXPECT_FALSE(*result);
}

TEST_F(HttpClientTest, anAnswerTenMegabytesOverTheBoundIsLeft) {
    constexpr qint64 announced = maxBodyBytes + 10LL * 1024 * 1024;
    server.onRequest = [](RawServer& raw) {
        raw.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(announced) + "\r\n\r\n");
        raw.write(QByteArray(announced, 'x'));
    };
    ASSERT_TRUE(server.listen());
    const auto answered = complete(client->send(get(server.url(u"http"_s)), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server's answer is too long."_s);
}

TEST_F(HttpClientTest, aChunkedAnswerThatBreaksOffFails) {
    server.onRequest = [](RawServer& raw) {
        raw.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n");
        raw.finish();
    };
    ASSERT_TRUE(server.listen());
    EXPECT_FALSE(complete(client->send(get(server.url(u"http"_s)), {})));
}

TEST_F(HttpClientTest, headersThatNeverEndAreLeftUnreadAndThenGivenUp) {
    for (const auto& piece : {QByteArray(64 * 1024, 'x'), QByteArray{"X-Endless: and on it goes\r\n"}.repeated(2000)}) {
        RawServer endless;
        endless.onRequest = [](RawServer& raw) { raw.write("HTTP/1.1 200 OK\r\nX-Endless: "); };
        ASSERT_TRUE(endless.listen());
        result.reset();
        underWay = keep(client->send(get(endless.url(u"http"_s)), {}));
        // The engine first goes through what came of the connection before, letter by letter.
        ASSERT_TRUE(spinUntil([&] { return !endless.request().isEmpty(); }, 60s));
        // More than the system's own buffers hold: whoever takes all of it keeps it in memory.
        constexpr qint64 most = 64LL * 1024 * 1024;
        qint64 written = 0;
        EXPECT_FALSE(spinUntil(
            [&] {
                if (endless.bytesToWrite() == 0) {
                    endless.write(piece);
                    written += piece.size();
                }
                return written >= most;
            },
            1s));
        settleAfter(clock, 60s);
        ASSERT_TRUE(ends());
        ASSERT_FALSE(*result);
        EXPECT_EQ(result->error().errorDescription(), u"The connection timed out."_s);
    }
}

}  // namespace corvellan::test

#include <gtest/gtest.h>

#include "ScreenShareFixture.h"

namespace corvellan::test {

namespace {

class ScreenShareUploadTest : public ScreenShareFixture {};

INSTANTIATE_TEST_SUITE_P(Placements, ScreenShareUploadTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

TEST_P(ScreenShareUploadTest, aFrameGoesToItsSessionWithHashAndToken) {
    show(picture(20));
    start();
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    const auto& request = server.requests.first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/session/s-1/frame");
    EXPECT_EQ(request.header("Content-Type"), "image/jpeg");
    EXPECT_EQ(request.header("Authorization"), "Bearer secret");
    EXPECT_EQ(QImage::fromData(request.body, "jpeg").size(), QSize(90, 80));
}

TEST_P(ScreenShareUploadTest, theHashIsDecimalInTheHeaderAndHexadecimalInTheLog) {
    show(picture(20));
    start();
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests.first().header("X-Frame-Hash"), "1048575");
    EXPECT_EQ(log.infos().last(), u"frame uploaded bytes=%1 hash=0xfffff"_s.arg(server.requests.first().body.size()));
}

TEST_P(ScreenShareUploadTest, theHashIsUnsigned) {
    show(picture(64));
    start();
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests.first().header("X-Frame-Hash"), "18446744073709551615");
    EXPECT_TRUE(log.infos().last().endsWith(u"hash=0xffffffffffffffff"_s));
}

TEST_P(ScreenShareUploadTest, withoutATokenTheHeaderIsLeftOutAndTheUploadAttempted) {
    start({}, std::nullopt);
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    for (const auto& [name, value] : server.requests.first().headers)
        EXPECT_NE(name.toLower(), "authorization");
}

TEST_P(ScreenShareUploadTest, theFirstTickUploadsWhateverTheHash) {
    show(picture(0));
    start();
    tick(1s);
    EXPECT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests.first().header("X-Frame-Hash"), "0");
    EXPECT_TRUE(log.infos().last().endsWith(u"hash=0x0"_s));
}

TEST_P(ScreenShareUploadTest, sevenBitsApartDoNotUploadAndEightDo) {
    start();
    tick(1s);
    show(picture(7));
    tick(10s);
    EXPECT_EQ(server.requests.size(), 1);
    EXPECT_EQ(log.infos().size(), 2) << "what has not changed is silent";
    show(picture(8));
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(ScreenShareUploadTest, slowDriftAddsUpUntilItCounts) {
    // Each step is small; the comparison is with the last frame that arrived.
    start();
    tick(1s);
    for (const int bits : {3, 6}) {
        show(picture(bits));
        tick(10s);
    }
    EXPECT_EQ(server.requests.size(), 1);
    show(picture(9));
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_EQ(server.requests.last().header("X-Frame-Hash"), "511");
}

TEST_P(ScreenShareUploadTest, theThresholdIsAnOption) {
    start({.changeThreshold = 0});
    tick(1s);
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2) << "nothing is below 0";
}

TEST_P(ScreenShareUploadTest, aFailedUploadIsTriedAgainWithTheSamePicture) {
    server.answer(500);
    start();
    tick(1s);
    EXPECT_EQ(log.errors(), QStringList{u"upload failed: Frame upload HTTP 500"_s});
    server.answer(200);
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_EQ(server.requests.at(0).body, server.requests.at(1).body);
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2);
}

TEST_P(ScreenShareUploadTest, aFailedUploadLeavesTheHashOfTheLastThatArrived) {
    start();
    tick(1s);
    show(picture(8));
    server.answer(503);
    tick(10s);
    // Back to the picture that the server has: nothing to send.
    show(picture(0));
    tick(10s);
    EXPECT_EQ(server.requests.size(), 2);
}

TEST_P(ScreenShareUploadTest, everyStatusFrom200To299IsSuccess) {
    for (const int status : {200, 204, 299}) {
        server.answer(status);
        start();
        tick(1s);
        tick(10s);
    }
    EXPECT_EQ(server.requests.size(), 3);
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(ScreenShareUploadTest, everyOtherStatusFails) {
    QStringList expected;
    for (const int status : {300, 304, 401, 404, 413, 500}) {
        server.answer(status);
        start();
        tick(1s);
        expected += u"upload failed: Frame upload HTTP %1"_s.arg(status);
    }
    EXPECT_EQ(log.errors(), expected);
}

TEST_P(ScreenShareUploadTest, anExpiredTokenFailsUntilTheNextStart) {
    server.respond = [](const auto& request) {
        return LoopbackHttpServer::reply(request.header("Authorization") == "Bearer fresh" ? 200 : 401);
    };
    start({}, u"stale"_s);
    tick(1s);
    tick(10s);
    EXPECT_EQ(log.errors(), QStringList(2, u"upload failed: Frame upload HTTP 401"_s));
    start({}, u"fresh"_s);
    tick(1s);
    EXPECT_EQ(log.errors().size(), 2);
    EXPECT_EQ(log.infos().filter(u"frame uploaded"_s).size(), 1);
}

TEST_P(ScreenShareUploadTest, aServerOutOfReachIsToldAndTheLoopGoesOn) {
    complete(service->start(u"s-1"_s, u"http://127.0.0.1:1"_s, std::nullopt, {}));
    ASSERT_TRUE(sleeps(1s));
    tick(1s);
    tick(10s);
    ASSERT_EQ(log.errors().size(), 2);
    EXPECT_TRUE(log.errors().first().startsWith(u"upload failed: "_s));
}

TEST_P(ScreenShareUploadTest, aServerThatIsSilentIsGivenUpAfter60Seconds) {
    server.respond = [](const auto&) { return QByteArray{}; };
    start();
    clock.advance(1s);
    ASSERT_TRUE(hasUploaded(1));
    ASSERT_TRUE(sleeps(60s));
    clock.advance(60s);
    ASSERT_TRUE(sleeps(10s));
    EXPECT_EQ(log.errors(), QStringList{u"upload failed: The connection timed out."_s});
}

TEST_P(ScreenShareUploadTest, aSlowUploadDelaysTheNextCapture) {
    server.respond = [](const auto&) { return QByteArray{}; };
    start();
    clock.advance(1s);
    ASSERT_TRUE(hasUploaded(1));
    clock.advance(25s);
    settleService();
    EXPECT_EQ(desktop().pictured.size(), 1U);
    server.answerHeld(LoopbackHttpServer::reply(200));
    ASSERT_TRUE(sleeps(10s));
    EXPECT_EQ(desktop().pictured.size(), 1U);
}

TEST_P(ScreenShareUploadTest, largeFramesAreSentAt1280Pixels) {
    QImage large{2560, 1440, QImage::Format_RGB32};
    large.fill(Qt::blue);
    show(large);
    start();
    tick(1s);
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(QImage::fromData(server.requests.first().body, "jpeg").size(), QSize(1280, 720));
}

TEST_P(ScreenShareUploadTest, aPictureThatJpegDoesNotKnowIsNotUploaded) {
    QImage strip{70'000, 1, QImage::Format_RGB32};
    strip.fill(Qt::blue);
    show(strip);
    start();
    tick(1s);
    EXPECT_EQ(log.errors(), QStringList{u"jpeg encode failed"_s});
    EXPECT_TRUE(server.requests.isEmpty());
    show(picture(0));
    tick(10s);
    EXPECT_EQ(server.requests.size(), 1) << "the loop goes on";
}

}  // namespace

}  // namespace corvellan::test

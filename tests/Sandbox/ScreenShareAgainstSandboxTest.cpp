#include <QImage>

#include "Services/HttpClient.h"
#include "Services/ScreenShare/ScreenShareService.h"
#include "SignedInFixture.h"
#include "Support/FakeScreenCaptures.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

/// The program's own upload of a made-up screen.
class ScreenShareAgainstSandboxTest : public SignedInFixture {
protected:
    void SetUp() override {
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
        start();
        client = std::make_unique<WireClient>(coachUrl());
        client->send(R"({"type":"start_session","sim_mode":false,"audience":"direct_sale"})");
        client->send(R"({"type":"set_screen_share","enabled":true})");
        session = client->next()[u"session_id"_s].toString();
        QImage picture{1600, 900, QImage::Format_RGB32};
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgb((x / 9) % 256, (y / 5) % 256, 128));
        captures.desktop->picture = picture;
    }
    void TearDown() override {
        service.reset();
        http.reset();
        // What was under way comes to its end while the clock is still there.
        settle();
    }
    void share(const QString& token) {
        complete(service->start(session, u"http://127.0.0.2:%1"_s.arg(box->coachPort()), token, {}));
        settleAfter(clock, 1s);
    }

    FakeScreenCaptures captures;
    std::unique_ptr<HttpClient> http = std::make_unique<HttpClient>(mainExecutor(), clock);
    std::unique_ptr<ScreenShareService> service =
        std::make_unique<ScreenShareService>(ScreenShareService::Environment{.executor = mainExecutor(),
                                                                             .worker = mainExecutor(),
                                                                             .clock = clock,
                                                                             .http = *http,
                                                                             .captures = captures,
                                                                             .ownProcessId = 10});
    std::unique_ptr<WireClient> client;
    QString session;
};

}  // namespace

TEST_F(ScreenShareAgainstSandboxTest, theScreenArrivesAsAPicture) {
    share(tokenFor());
    ASSERT_TRUE(spinUntil([&] { return logs(u"frames"_s); }));
    const auto figures = get(u"/sandbox/frames"_s).array();
    ASSERT_EQ(figures.size(), 1);
    EXPECT_EQ(figures[0][u"frames"_s].toInt(), 1);
    const auto frame = QImage::fromData(getBody(u"/sandbox/frames/"_s + session), "JPEG");
    EXPECT_EQ(frame.size(), QSize(1280, 720));
    EXPECT_FALSE(logs(u"refused"_s));
    EXPECT_FALSE(logs(u"shares no screen"_s));
}

TEST_F(ScreenShareAgainstSandboxTest, nothingArrivesWithATokenThatIsOver) {
    const QString token = tokenFor();
    box->accounts().revoke(token);
    share(token);
    ASSERT_TRUE(spinUntil([&] { return logs(u"refused /session/"_s); }));
    EXPECT_TRUE(get(u"/sandbox/frames"_s).array().isEmpty());
}

}  // namespace corvellan::test

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Services/HttpClient.h"
#include "Services/ScreenShare/FrameHash.h"
#include "Services/ScreenShare/ScreenShareService.h"
#include "Support/FakeScreenCaptures.h"
#include "Support/LogCapture.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

enum class Placement { inlined, threaded };

inline std::string placementName(const testing::TestParamInfo<Placement>& info) {
    return info.param == Placement::inlined ? "inlined" : "threaded";
}

/// The service between a made-up desktop and a real server. Every test runs with the service on the main thread
/// and on its own.
class ScreenShareFixture : public testing::TestWithParam<Placement> {
protected:
    static constexpr std::int64_t ownProcessId = 10;

    ScreenShareFixture() {
        // The machine's own proxy is not for loopback.
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
        if (GetParam() == Placement::threaded)
            m_thread.emplace("network");
        http = std::make_unique<HttpClient>(executor(), clock);
        service = std::make_unique<ScreenShareService>(ScreenShareService::Environment{.executor = executor(),
                                                                                       .worker = m_worker.executor(),
                                                                                       .clock = clock,
                                                                                       .http = *http,
                                                                                       .captures = captures,
                                                                                       .ownProcessId = ownProcessId});
        show(picture(0));
    }
    ~ScreenShareFixture() override {
        service.reset();
        http.reset();
        settleService();
    }
    void SetUp() override { ASSERT_TRUE(server.listen()); }

    [[nodiscard]] Executor& executor() { return m_thread ? m_thread->executor() : mainExecutor(); }

    void settleService() {
        settle();
        complete(executor().call([] {}));
        settle();
    }

    /// A picture whose hash has the lowest `bits` bits set: its cells darken so often.
    static QImage picture(int bits) {
        QImage image{90, 80, QImage::Format_RGB32};
        for (int y = 0; y < 80; ++y) {
            int grey = 200;
            for (int x = 0; x < 90; ++x) {
                if (x > 0 && x % 10 == 0 && y / 10 * 8 + x / 10 - 1 < bits)
                    grey -= 20;
                image.setPixel(x, y, qRgb(grey, grey, grey));
            }
        }
        return image;
    }
    void show(const QImage& image) { desktop().picture = image; }
    [[nodiscard]] FakeScreenCaptures::Desktop& desktop() { return *captures.desktop; }

    void start(const ScreenShareOptions& options = {}, const std::optional<QString>& token = u"secret"_s) {
        complete(service->start(u"s-1"_s, server.base(), token, options));
        ASSERT_TRUE(sleeps(1s));
    }
    void stop() { complete(service->stop()); }
    bool isRunning() { return complete(service->isRunning()); }

    /// True when the loop waits for `duration` and nothing else comes before.
    bool sleeps(std::chrono::nanoseconds duration) {
        return spinUntil([&] { return clock.nextDeadline() == clock.now() + duration; });
    }
    /// Lets one tick run to its end; `pause` is what came before it.
    void tick(std::chrono::nanoseconds pause, std::chrono::nanoseconds interval = 10s) {
        ASSERT_EQ(clock.nextDeadline(), clock.now() + pause);
        clock.advance(pause);
        ASSERT_TRUE(sleeps(interval));
    }
    bool hasUploaded(qsizetype count) {
        return spinUntil([&] { return server.requests.size() == count; });
    }

    LoopbackHttpServer server;
    LogCapture log{u"ScreenShare"_s};
    ManualClock clock;
    FakeScreenCaptures captures;

private:
    std::optional<WorkerThread> m_thread;
    WorkerThread m_worker{"worker"};

protected:
    std::unique_ptr<HttpClient> http;
    std::unique_ptr<ScreenShareService> service;
};

}  // namespace corvellan::test

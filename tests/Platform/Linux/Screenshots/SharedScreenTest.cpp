// From another program's window on a real X server to a server that takes frames.

#include <gtest/gtest.h>

#include <unistd.h>

#include <optional>

#include "Platform/Linux/Screenshots/X11ScreenCaptures.h"
#include "Services/HttpClient.h"
#include "Services/ScreenShare/ScreenShareService.h"
#include "Support/LogCapture.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/PrivateDisplay.h"
#include "Support/X11Keyboard.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class SharedScreenTest : public testing::Test {
protected:
    SharedScreenTest() {
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
    }
    void SetUp() override {
        ASSERT_TRUE(server.listen());
        display.emplace();
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> paint(QSize size) {
        return display->start({(QCoreApplication::applicationDirPath() + u"/PaintedWindow"_s).toStdString(), "40", "60",
                               std::to_string(size.width()), std::to_string(size.height())});
    }
    void start() {
        captures.emplace(worker.executor(), clock, display->name());
        service.emplace(ScreenShareService::Environment{.executor = network.executor(),
                                                        .worker = worker.executor(),
                                                        .clock = clock,
                                                        .http = http,
                                                        .captures = *captures,
                                                        .ownProcessId = getpid()});
        complete(service->start(u"s-1"_s, server.base(), u"secret"_s, {.intervalSeconds = 0.1}));
    }
    /// A frame that is red on the left and blue on the right arrives in that size.
    bool arrives(QSize size) {
        return spinUntil([&] {
            if (server.requests.isEmpty())
                return false;
            const auto frame = QImage::fromData(server.requests.last().body, "jpeg");
            return frame.size() == size && isNear(frame.pixel(10, 10), qRgb(0xC8, 0x1E, 0x1E)) &&
                   isNear(frame.pixel(size.width() - 10, size.height() - 10), qRgb(0x1E, 0x1E, 0xC8));
        });
    }
    static bool isNear(QRgb one, QRgb other) {
        constexpr int jpegError = 12;
        return std::abs(qRed(one) - qRed(other)) < jpegError && std::abs(qGreen(one) - qGreen(other)) < jpegError &&
               std::abs(qBlue(one) - qBlue(other)) < jpegError;
    }

    SystemClock clock;
    WorkerThread network{"test-network"};
    WorkerThread worker{"test-worker"};
    LoopbackHttpServer server;
    HttpClient http{network.executor(), clock};
    LogCapture log{u"ScreenShare"_s};
    std::optional<PrivateDisplay> display;
    std::optional<X11ScreenCaptures> captures;
    std::optional<ScreenShareService> service;
};

TEST_F(SharedScreenTest, theFrontWindowArrivesAndThenTheScreenWhenWeAreInFront) {
    const auto program = paint({300, 200});
    start();
    ASSERT_TRUE(arrives({300, 200}));
    EXPECT_EQ(server.requests.last().target, "/session/s-1/frame");
    // A window of this process takes the keyboard, and covers part of the other.
    const OtherProgram own{display->name()};
    EXPECT_TRUE(spinUntil([&] {
        const auto frame = QImage::fromData(server.requests.last().body, "jpeg");
        return frame.size() == QSize{640, 480};
    }));
}

TEST_F(SharedScreenTest, aDisplayThatEndsIsAFailureAMomentAndNoMore) {
    const auto program = paint({300, 200});
    start();
    ASSERT_TRUE(arrives({300, 200}));
    display->kill();
    EXPECT_TRUE(spinUntil([&] { return log.errors().contains(u"capture failed: The X server can't be reached."_s); }));
    EXPECT_TRUE(complete(service->isRunning()));
}

}  // namespace

}  // namespace corvellan::test

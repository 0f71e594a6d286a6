#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "Services/WebSocketService.h"
#include "Support/LogCapture.h"
#include "Support/LoopbackServer.h"
#include "Support/RawServer.h"
#include "Support/StreamReader.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

enum class Where { inlineOnMain, onWorker };

using Reader = StreamReader<ReceivedServerMsg>;

/// The coach's connection beside servers on loopback; every test runs with the service on the main thread
/// and on a thread of its own.
class WebSocketServiceTest : public testing::TestWithParam<Where> {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.listen());
        if (GetParam() == Where::onWorker)
            worker = std::make_unique<WorkerThread>("live");
        coach = std::make_unique<WebSocketService>(executor(), clock, diagnostics);
    }

    void TearDown() override {
        coach.reset();
        worker.reset();
        settle();
    }

    Executor& executor() { return worker ? worker->executor() : mainExecutor(); }

    /// Returns when everything that was handed to the service's executor so far has run.
    void drain() {
        settle();
        complete(executor().call([] {}));
        settle();
    }

    /// As `settleAfter`, for both threads.
    void drainAfter(std::chrono::nanoseconds step) {
        const auto end = clock.now() + step;
        drain();
        while (const auto next = clock.nextDeadline()) {
            if (*next > end)
                break;
            clock.advance(*next - clock.now());
            drain();
        }
        clock.advance(end - clock.now());
        drain();
    }

    /// Connected, with the handshake done.
    void connect() {
        const auto before = server.count();
        ASSERT_TRUE(complete(coach->connect(server.url(QStringLiteral("/ws?token=secret")))).has_value());
        ASSERT_TRUE(spinUntil([&] { return server.count() == before + 1; }));
    }

    /// Connected to `raw`, with the handshake done.
    void connectRaw() {
        ASSERT_TRUE(raw.listen());
        ASSERT_TRUE(complete(coach->connect(raw.url())).has_value());
        ASSERT_TRUE(complete(coach->send({ClientMsg::Ping{}})).has_value());
    }

    /// How a send ends now; "sent" when it does not fail.
    QString sendFailure() {
        const auto sent = complete(coach->send({ClientMsg::Ping{}}));
        return sent ? QStringLiteral("sent") : sent.error().errorDescription();
    }

    static inline const QString pong = QStringLiteral("{\"type\":\"pong\"}");

    ManualClock clock;
    LogCapture log{QStringLiteral("WebSocket")};
    LoopbackServer server;
    RawServer raw;
    Diagnostics diagnostics;
    std::unique_ptr<WorkerThread> worker;
    std::unique_ptr<WebSocketService> coach;
};

}  // namespace corvellan::test

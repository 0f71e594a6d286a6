#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Services/ClientSocket.h"
#include "Support/LoopbackServer.h"
#include "Support/RawServer.h"
#include "Support/TestLoop.h"

namespace corvellan::test {
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// What a reader of one socket saw.
struct Seen {
    QStringList texts;
    QList<QByteArray> binaries;
    std::optional<SocketEnd> end;
    int ends = 0;

    [[nodiscard]] std::string reason() const {
        return end ? end->error.errorDescription().toStdString() : std::string{"no end"};
    }
};

/// One socket on the main thread, with a well-behaved server and a raw one at hand.
class ClientSocketTest : public testing::Test {
protected:
    void TearDown() override {
        socket.reset();
        settle();
    }

    void open(const QUrl& url) {
        socket = ClientSocket::open(mainExecutor(), clock, url);
        socket->read({.text = [this](const QString& text) { seen.texts.append(text); },
                      .binary = [this](const QByteArray& bytes) { seen.binaries.append(bytes); },
                      .ended =
                          [this](const SocketEnd& end) {
                              seen.end = end;
                              ++seen.ends;
                          }});
    }

    /// Upgraded and open; `raw` stays with the test.
    void openRaw() {
        ASSERT_TRUE(raw.listen());
        open(raw.url());
        ASSERT_TRUE(spinUntil([&] { return socket->isOpen(); }));
    }

    bool waitForEnd() {
        return spinUntil([&] { return seen.end.has_value(); });
    }

    /// What a send says now.
    std::string sendFailure() {
        const auto sent = complete(socket->send(u"late"_s));
        return sent ? std::string{"sent"} : sent.error().errorDescription().toStdString();
    }

    ManualClock clock;
    RawServer raw;
    LoopbackServer server;
    Seen seen;
    std::shared_ptr<ClientSocket> socket;
};

}  // namespace corvellan::test

#include "Sandbox/WireProxy.h"

#include <QTcpServer>
#include <QTcpSocket>

#include "Sandbox/Listening.h"
#include "SandboxFixture.h"

namespace corvellan::test {

namespace {

using sandbox::WireFault;
using sandbox::WireProxy;

/// A server behind a proxy, and a client in front of it.
class WireProxyTest : public testing::Test {
protected:
    void open(WireFault fault) {
        ASSERT_TRUE(server.listen(QHostAddress{u"127.0.0.1"_s}));
        proxy = std::make_unique<WireProxy>(fault, server.serverPort(), clock, log);
        const auto port = proxy->listen({QHostAddress{u"127.0.0.1"_s}}, 0);
        ASSERT_TRUE(port);
        client.connectToHost(QHostAddress{u"127.0.0.1"_s}, *port);
        ASSERT_TRUE(spinUntil([&] { return server.hasPendingConnections(); }));
        peer = server.nextPendingConnection();
        ASSERT_TRUE(spinUntil([&] { return client.state() == QAbstractSocket::ConnectedState; }));
    }
    [[nodiscard]] static bool receives(QTcpSocket& socket, const QByteArray& expected) {
        spinUntil([&] { return socket.bytesAvailable() >= expected.size(); }, std::chrono::seconds{5});
        const auto bytes = socket.readAll();
        EXPECT_EQ(bytes, expected);
        return bytes == expected;
    }
    [[nodiscard]] bool logs(const QString& text) const {
        return std::ranges::any_of(lines, [&](const QString& line) { return line.contains(text); });
    }

    ManualClock clock;
    QStringList lines;
    sandbox::EventLog log{clock, [this](const QString& line) { lines.append(line); }};
    QTcpServer server;
    std::unique_ptr<WireProxy> proxy;
    QTcpSocket client;
    QTcpSocket* peer = nullptr;
};

}  // namespace

TEST_F(WireProxyTest, passesBytesAndClosesUntilTheFaultIsDue) {
    open({.kind = WireFault::Kind::drop, .amount = 1000});
    client.write("hello");
    EXPECT_TRUE(receives(*peer, "hello"));
    peer->write("welcome");
    EXPECT_TRUE(receives(client, "welcome"));
    peer->disconnectFromHost();
    EXPECT_TRUE(spinUntil([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
}

TEST_F(WireProxyTest, dropResetsBothEnds) {
    open({.kind = WireFault::Kind::drop, .amount = 10});
    QAbstractSocket::SocketError error = QAbstractSocket::UnknownSocketError;
    QObject::connect(&client, &QTcpSocket::errorOccurred, &client, [&](QAbstractSocket::SocketError e) { error = e; });
    peer->write("0123456789abc");
    EXPECT_TRUE(spinUntil([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_EQ(error, QAbstractSocket::RemoteHostClosedError);
    EXPECT_FALSE(client.readAll().contains('a'));
    EXPECT_TRUE(spinUntil([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(logs(u"connection dropped"_s));
}

TEST_F(WireProxyTest, delayHoldsEveryPieceBackInOrder) {
    open({.kind = WireFault::Kind::delay, .amount = 200});
    client.write("one");
    ASSERT_TRUE(spinUntil([&] { return clock.nextDeadline().has_value(); }));
    settleAfter(clock, std::chrono::milliseconds{199});
    EXPECT_EQ(peer->bytesAvailable(), 0);
    client.write("two");
    client.flush();
    settleAfter(clock, std::chrono::milliseconds{1});
    EXPECT_TRUE(receives(*peer, "one"));
    ASSERT_TRUE(spinUntil([&] { return clock.nextDeadline().has_value(); }));
    settleAfter(clock, std::chrono::milliseconds{200});
    EXPECT_TRUE(receives(*peer, "two"));
}

TEST_F(WireProxyTest, garbleInvertsWhatComesBehindItsMark) {
    open({.kind = WireFault::Kind::garble, .amount = 3});
    peer->write("abcde");
    EXPECT_TRUE(receives(client, QByteArray{"abc"} + static_cast<char>(~'d') + static_cast<char>(~'e')));
    peer->write("f");
    EXPECT_TRUE(receives(client, QByteArray(1, static_cast<char>(~'f'))));
    client.write("untouched");
    EXPECT_TRUE(receives(*peer, "untouched"));
}

TEST_F(WireProxyTest, halfOpenTellsNobody) {
    open({.kind = WireFault::Kind::halfOpen, .amount = 4});
    peer->write("abcdef");
    EXPECT_TRUE(receives(client, "abcd"));
    peer->write("more");
    client.write("hello?");
    peer->disconnectFromHost();
    ASSERT_TRUE(spinUntil([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
    settle();
    EXPECT_EQ(client.bytesAvailable(), 0);
    EXPECT_EQ(client.state(), QAbstractSocket::ConnectedState);
}

TEST_F(WireProxyTest, refusesWhenTheServerIsNotThere) {
    open({.kind = WireFault::Kind::delay, .amount = 0});
    server.close();
    QTcpSocket late;
    bool wasLetIn = false;
    QObject::connect(&late, &QTcpSocket::connected, &late, [&] { wasLetIn = true; });
    late.connectToHost(client.peerAddress(), client.peerPort());
    EXPECT_TRUE(spinUntil([&] { return wasLetIn && late.state() == QAbstractSocket::UnconnectedState; }));
}

// MARK: - In front of the sandbox

class ProxiedSandboxTest : public SandboxFixture {};

TEST_F(ProxiedSandboxTest, dropLosesTheCallWithoutACloseFrame) {
    sandbox::SandboxOptions options;
    options.coachWire = WireFault{.kind = WireFault::Kind::drop, .amount = 1200};
    start(std::move(options));
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session"})");
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    for (int i = 0; i < 5 && !client.isClosed(); ++i)
        client.socket().sendTextMessage(u"{\"type\":\"transcript\",\"source\":\"system\",\"text\":\"Hello there.\"}"_s);
    ASSERT_TRUE(client.closes());
    EXPECT_EQ(client.socket().error(), QAbstractSocket::RemoteHostClosedError);
    EXPECT_TRUE(spinUntil([&] { return logs(u"lost within a session"_s); }));
}

TEST_F(ProxiedSandboxTest, namesTheProxyOfTheProviderToClients) {
    sandbox::SandboxOptions options;
    options.providerWire = WireFault{.kind = WireFault::Kind::garble, .amount = 1'000'000};
    start(std::move(options));
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session"})");
    const auto started = client.next();
    const QUrl url{started[u"openai_realtime_url"_s].toString()};
    EXPECT_EQ(url.port(), box->providerPort());
    WireClient provider{url, started[u"openai_ephemeral_token"_s].toString()};
    EXPECT_EQ(provider.next()[u"type"_s], u"transcription_session.created"_s);
}

}  // namespace corvellan::test

#include <sys/socket.h>

#include <QSslConfiguration>
#include <QSslSocket>

#include "ClientSocketFixture.h"
#include "Support/LoopbackCertificate.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

// How a connection ends.

TEST_F(ClientSocketTest, aCloseFrameWith1000IsANormalEnd) {
    openRaw();
    raw.write(RawServer::frame(RawServer::textOpcode, "hi") + RawServer::frame(RawServer::closeOpcode, "\x03\xe8"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.end->isNormal);
    EXPECT_EQ(seen.texts, QStringList{u"hi"_s});
    EXPECT_EQ(sendFailure(), "The server closed the connection.");
}

TEST_F(ClientSocketTest, aCloseFrameWithoutACodeIsANormalEnd) {
    openRaw();
    raw.write(RawServer::frame(RawServer::closeOpcode, {}));
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, aCloseFrameFollowedByTheEndOfTheStreamIsStillSeen) {
    openRaw();
    raw.write(RawServer::frame(RawServer::textOpcode, "hi") + RawServer::frame(RawServer::closeOpcode, "\x03\xe8"));
    raw.finish();
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.end->isNormal) << seen.reason();
    EXPECT_EQ(seen.texts, QStringList{u"hi"_s});
}

TEST_F(ClientSocketTest, aCloseFrameFollowedByAResetIsStillSeen) {
    for (const auto& [payload, isNormal] :
         {std::pair{QByteArray{"\x03\xe8"}, true}, {QByteArray{"\x03\xf0no"}, false}}) {
        seen = {};
        RawServer resetting;
        ASSERT_TRUE(resetting.listen());
        open(resetting.url());
        ASSERT_TRUE(spinUntil([&] { return socket->isOpen(); }));
        resetting.write(RawServer::frame(RawServer::closeOpcode, payload));
        resetting.reset();
        ASSERT_TRUE(waitForEnd());
        EXPECT_EQ(seen.end->isNormal, isNormal) << seen.reason();
    }
    EXPECT_EQ(seen.reason(), "The connection was closed with code 1008: no");
}

TEST_F(ClientSocketTest, anyOtherCodeIsAFailureThatTellsCodeAndReason) {
    openRaw();
    raw.write(RawServer::frame(RawServer::closeOpcode, "\x03\xf3overloaded"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_EQ(seen.reason(), "The connection was closed with code 1011: overloaded");
    EXPECT_EQ(sendFailure(), "The connection was closed with code 1011: overloaded");
}

TEST_F(ClientSocketTest, aCodeWithoutReasonIsToldAlone) {
    openRaw();
    raw.write(RawServer::frame(RawServer::closeOpcode, "\x0f\xa0"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.reason(), "The connection was closed with code 4000.");
}

TEST_F(ClientSocketTest, theEndOfTheStreamWithoutCloseFrameIsAFailure) {
    openRaw();
    raw.write(RawServer::frame(RawServer::textOpcode, "last words"));
    raw.finish();
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_EQ(seen.texts, QStringList{u"last words"_s});
    EXPECT_EQ(seen.reason(), "The remote host closed the connection");
    EXPECT_EQ(sendFailure(), "The remote host closed the connection");
}

TEST_F(ClientSocketTest, aResetIsAFailure) {
    openRaw();
    raw.reset();
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_EQ(seen.reason(), "The remote host closed the connection");
}

TEST_F(ClientSocketTest, aBrokenFrameIsAFailure) {
    for (const QByteArray& bytes :
         {QByteArray{"\x81\x02\xff\xfe"}, QByteArray{"\x83\x00", 2}, QByteArray{"\xf1\x00", 2},
          QByteArray{"\x88\x01\x03"}, QByteArray{"\x88\x02\x03\xed"}}) {
        seen = {};
        RawServer broken;
        ASSERT_TRUE(broken.listen());
        open(broken.url());
        ASSERT_TRUE(spinUntil([&] { return socket->isOpen(); }));
        broken.write(bytes);
        ASSERT_TRUE(waitForEnd()) << bytes.toHex().constData();
        EXPECT_FALSE(seen.end->isNormal) << bytes.toHex().constData();
        EXPECT_TRUE(seen.reason().starts_with("The connection was closed with code 10")) << seen.reason();
    }
}

TEST_F(ClientSocketTest, aRefusedConnectionIsAFailure) {
    ASSERT_TRUE(server.listen());
    const QUrl nobody = server.url();
    server.stopListening();
    open(nobody);
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_EQ(seen.reason(), "The server does not answer (Connection refused).");
}

TEST_F(ClientSocketTest, anUnreachableHostIsAFailure) {
    // The broadcast address, which the system itself refuses a stream to.
    open(QUrl{u"ws://255.255.255.255:9/"_s});
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_FALSE(seen.reason().empty());
}

TEST_F(ClientSocketTest, anUpgradeThatIsRefusedIsAFailureThatTellsTheStatus) {
    for (const auto& [status, reason] :
         {std::pair{"401 Unauthorized", "The server refused the connection: 401 (Unauthorized)."},
          std::pair{"404 Not Found", "The server refused the connection: 404 (Not Found)."}}) {
        seen = {};
        RawServer refusing;
        // What stands behind the refusal must not be taken for another handshake.
        refusing.onRequest = [status = status](RawServer& self) {
            self.write(QByteArray{"HTTP/1.1 "} + status + "\r\nContent-Length: 9\r\n\r\n" + self.upgradeReply());
        };
        ASSERT_TRUE(refusing.listen());
        open(refusing.url());
        ASSERT_TRUE(waitForEnd());
        EXPECT_EQ(seen.reason(), reason);
        EXPECT_EQ(sendFailure(), reason);
        settle();
        EXPECT_FALSE(socket->isOpen());
        EXPECT_TRUE(spinUntil([&] { return refusing.isGone(); }));
    }
}

TEST_F(ClientSocketTest, garbageInPlaceOfAHandshakeIsAFailure) {
    raw.onRequest = [](RawServer& self) { self.write("SSH-2.0-OpenSSH_9.2\r\n\r\n"); };
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_TRUE(seen.reason().starts_with("What answers at the server's address is no ")) << seen.reason();
}

TEST_F(ClientSocketTest, aWrongAcceptKeyIsAFailure) {
    raw.onRequest = [](RawServer& self) { self.write(self.upgradeReply().replace("Accept: ", "Accept: x")); };
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, anEndInPlaceOfAHandshakeIsAFailure) {
    raw.onRequest = [](RawServer& self) { self.finish(); };
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.reason(), "The remote host closed the connection");
}

TEST_F(ClientSocketTest, aSchemeThatIsNoWebSocketIsAFailure) {
    open(QUrl{u"https://127.0.0.1/"_s});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.reason(), "The server's address does not begin with ws:// or wss://.");
}

TEST_F(ClientSocketTest, aHandshakeOfMoreThan60SecondsIsAFailure) {
    raw.onRequest = [](RawServer&) {};
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    settleAfter(clock, 60s - 1ns);
    EXPECT_FALSE(seen.end);
    settleAfter(clock, 1ns);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(seen.reason(), "The connection timed out.");
    EXPECT_TRUE(spinUntil([&] { return raw.isGone(); }));
}

TEST_F(ClientSocketTest, anOpenConnectionHasNoTimeLimit) {
    openRaw();
    settleAfter(clock, 24h);
    EXPECT_FALSE(seen.end);
    raw.write(RawServer::frame(RawServer::textOpcode, "still here"));
    EXPECT_TRUE(spinUntil([&] { return seen.texts.size() == 1; }));
}

TEST_F(ClientSocketTest, theEndIsToldOnce) {
    openRaw();
    raw.write(RawServer::frame(RawServer::closeOpcode, "\x03\xe8"));
    raw.finish();
    ASSERT_TRUE(waitForEnd());
    socket->close();
    settle();
    EXPECT_EQ(seen.ends, 1);
}

TEST_F(ClientSocketTest, anEndlessHandshakeLineTakesBoundedMemory) {
    constexpr qsizetype flood = 64 * 1024 * 1024;
    raw.onRequest = [](RawServer& self) { self.write(QByteArray(flood, 'x')); };
    ASSERT_TRUE(raw.listen());
    open(raw.url());
    ASSERT_TRUE(spinUntil([&] { return !raw.request().isEmpty(); }));
    // The server gets rid of what the client and the system between them hold, and then no more.
    qint64 left = -1;
    ASSERT_TRUE(spinUntil([&] {
        settle();
        return std::exchange(left, raw.bytesToWrite()) == raw.bytesToWrite();
    }));
    EXPECT_GT(raw.bytesToWrite(), flood / 4);
    EXPECT_FALSE(seen.end);
}

// TLS.

TEST_F(ClientSocketTest, anUntrustedCertificateIsRefused) {
    LoopbackServer secure{QWebSocketServer::SecureMode};
    secure.server().setSslConfiguration(loopbackTls());
    ASSERT_TRUE(secure.listen());
    open(secure.url());
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
    EXPECT_NE(seen.reason().find("certificate"), std::string::npos) << seen.reason();
    EXPECT_EQ(secure.count(), 0U);
}

TEST_F(ClientSocketTest, aServerWithoutTlsFailsASecureConnection) {
    ASSERT_TRUE(server.listen());
    QUrl url = server.url();
    url.setScheme(u"wss"_s);
    open(url);
    // The server waits for a line of HTTP that never comes, the client for TLS.
    settleAfter(clock, 60s);
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, worksOverTls) {
    const TrustInLoopback trust;
    LoopbackServer secure{QWebSocketServer::SecureMode};
    secure.server().setSslConfiguration(loopbackTls());
    ASSERT_TRUE(secure.listen());
    open(secure.url());
    const auto first = complete(socket->send(u"over TLS"_s));
    EXPECT_TRUE(first.has_value()) << seen.reason();
    const auto second = complete(socket->send(QString(300'000, u'x')));
    EXPECT_TRUE(second.has_value());
    ASSERT_TRUE(spinUntil([&] { return secure.count() == 1 && secure.texts().size() == 2; }));
    secure.close(QWebSocketProtocol::CloseCodeNormal);
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(seen.end->isNormal) << seen.reason();
}

TEST_F(ClientSocketTest, aTlsConnectionThatIsLostIsAFailure) {
    const TrustInLoopback trust;
    LoopbackServer secure{QWebSocketServer::SecureMode};
    secure.server().setSslConfiguration(loopbackTls());
    ASSERT_TRUE(secure.listen());
    open(secure.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen() && secure.count() == 1; }));
    secure.last().socket->abort();
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal);
}

TEST_F(ClientSocketTest, garbageInATlsStreamIsAFailure) {
    const TrustInLoopback trust;
    LoopbackServer secure{QWebSocketServer::SecureMode};
    secure.server().setSslConfiguration(loopbackTls());
    ASSERT_TRUE(secure.listen());
    open(secure.url());
    ASSERT_TRUE(spinUntil([&] { return socket->isOpen() && secure.count() == 1; }));
    const auto* const below = secure.server().findChild<QSslSocket*>();
    ASSERT_NE(below, nullptr);
    const QByteArray garbage(64, 'x');
    ASSERT_EQ(::send(static_cast<int>(below->socketDescriptor()), garbage.data(), garbage.size(), 0), 64);
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(seen.end->isNormal) << seen.reason();
}

}  // namespace
}  // namespace corvellan::test

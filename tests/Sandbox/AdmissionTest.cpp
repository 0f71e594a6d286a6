#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

class AdmissionTest : public SignedInFixture {
protected:
    /// The first bytes of a WebSocket, as clients send them.
    [[nodiscard]] QByteArray handshake(const QByteArray& query) const {
        return "GET /ws" + query + " HTTP/1.1\r\nHost: 127.0.0.2:" + QByteArray::number(box->coachPort()) +
               "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
               "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n";
    }
    int statusOf(const Rest& sent) const { return rest(sent).status; }
};

const QByteArray elsewhere{"127.0.0.2"};

}  // namespace

TEST_F(AdmissionTest, aLocalServerWantsNoToken) {
    start();
    for (const auto* const path : {"/calls", "/ext/sensor", "/scenarios"}) {
        EXPECT_EQ(statusOf({.path = path}), 200) << path;
        EXPECT_EQ(statusOf({.path = path, .token = u"nonsense"_s}), 200) << path;
        EXPECT_EQ(rest({.path = path, .moreHeaders = "X: y\r\n"}).status, 200) << path;
    }
    for (const auto* const query : {"", "?token=nonsense"}) {
        WireClient client{QUrl{coachUrl().toString() + QString::fromLatin1(query)}};
        EXPECT_TRUE(client.connects());
    }
}

TEST_F(AdmissionTest, elsewhereEveryRestPathOfAClientWantsAGoodToken) {
    start();
    const QByteArray call = "/calls/" + holdCall().toLatin1();
    const QString session = box->calls().calls().front().sessionId;
    const std::vector<Rest> requests{
        {.path = "/calls"},
        {.path = call},
        {.path = "/scenarios"},
        {.path = "/ext/sensor"},
        {.method = "POST", .path = "/ext/sensor", .body = R"({"event":"context"})"},
        {.method = "POST", .path = call + "/feedback", .body = R"({"rating":1})"},
        {.method = "POST", .path = call + "/outcome", .body = R"({"outcome":"demo_booked"})"},
        {.method = "POST",
         .path = "/session/" + session.toLatin1() + "/frame",
         .body = "\xff\xd8\xff\xe0",
         .contentType = "image/jpeg",
         .moreHeaders = "X-Frame-Hash: 1\r\n"},
    };
    for (auto request : requests) {
        request.host = elsewhere;
        const auto bare = rest(request);
        EXPECT_EQ(bare.status, 401) << request.path.constData();
        EXPECT_EQ(bare.headers.value("www-authenticate"), "Bearer");
        EXPECT_EQ(json(bare)[u"error"_s], u"an access token is wanted"_s);
        request.token = u"a.b.c"_s;
        EXPECT_EQ(statusOf(request), 401) << request.path.constData();
        request.token = tokenFor();
        EXPECT_EQ(statusOf(request) / 100, 2) << request.path.constData();
    }
    // Who was not let in has changed nothing but what the good tokens have.
    EXPECT_EQ(box->calls().calls().front().feedback.size(), 1U);
}

TEST_F(AdmissionTest, whatBrowsersAndTestsAskForWantsNoToken) {
    start();
    for (const auto* const path : {"/health", "/appcast.xml", "/download", "/sandbox/audio", "/sandbox/frames"})
        EXPECT_EQ(statusOf({.path = path, .host = elsewhere}), 200) << path;
}

TEST_F(AdmissionTest, aWebSocketIsRefusedBeforeItsHandshake) {
    start();
    for (const auto& query : {QByteArray{}, QByteArray{"?token="}, QByteArray{"?token=a.b.c"}, QByteArray{"?other=1"},
                              QByteArray{"?token=%zz"}, "?token=x&token=" + tokenFor().toLatin1()}) {
        TcpClient client{box->coachPort(), "127.0.0.2"};
        EXPECT_EQ(plainExchange(client, handshake(query)).status, 401) << query.constData();
        // A handshake would be done with before another client has its answer.
        EXPECT_EQ(statusOf({.path = "/health"}), 200);
        EXPECT_FALSE(client.received().contains("101 Switching")) << client.received().constData();
    }
    EXPECT_TRUE(logs(u"refused a connection: it brings no token"_s));
    EXPECT_TRUE(logs(u"refused a connection: its token is not good, or no longer"_s));
    EXPECT_FALSE(logs(u"#1 connected"_s));
}

TEST_F(AdmissionTest, aWebSocketEntersWithAGoodToken) {
    start();
    const QByteArray token = tokenFor().toLatin1();
    for (const auto& query : {"?token=" + token, "?token=" + QByteArray{token}.replace(".", "%2E")}) {
        TcpClient client{box->coachPort(), "127.0.0.2"};
        EXPECT_EQ(plainExchange(client, handshake(query)).status, 101) << query.constData();
    }
}

TEST_F(AdmissionTest, aTokenThatIsOverOpensNothing) {
    start({.accounts = {.tokenLifetime = 60s}});
    const QString token = tokenFor();
    EXPECT_EQ(statusOf({.path = "/calls", .host = elsewhere, .token = token}), 200);
    clock.advance(60s);
    EXPECT_EQ(statusOf({.path = "/calls", .host = elsewhere, .token = token}), 401);
    const QString revoked = tokenFor();
    box->accounts().revoke(revoked);
    EXPECT_EQ(statusOf({.path = "/calls", .host = elsewhere, .token = revoked}), 401);
    TcpClient client{box->coachPort(), "127.0.0.2"};
    EXPECT_EQ(plainExchange(client, handshake("?token=" + revoked.toLatin1())).status, 401);
}

TEST_F(AdmissionTest, aProxyInFrontChangesNothing) {
    start({.coachWire = sandbox::WireFault{.kind = sandbox::WireFault::Kind::drop, .amount = 1'000'000}});
    EXPECT_EQ(statusOf({.path = "/calls", .host = elsewhere}), 401);
    EXPECT_EQ(statusOf({.path = "/calls"}), 200);
}

TEST_F(AdmissionTest, noTokenReachesTheLog) {
    start();
    const QString token = tokenFor();
    for (const auto& sent : {token, token + u'x'}) {
        TcpClient client{box->coachPort(), "127.0.0.2"};
        std::ignore = plainExchange(client, handshake("?token=" + sent.toLatin1()));
        std::ignore = rest({.path = "/calls", .host = elsewhere, .token = sent});
    }
    EXPECT_TRUE(logs(u"refused /calls"_s));
    EXPECT_FALSE(logs(token));
    EXPECT_FALSE(logs(token.section(u'.', 2)));
}

}  // namespace corvellan::test

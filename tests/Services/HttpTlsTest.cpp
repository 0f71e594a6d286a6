#include "HttpClientFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

TEST_F(HttpClientTest, aServerWithACertificateThatNobodyTrustsIsRefused) {
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen());
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(answered.error().errorDescription().contains(u"certificate"_s))
        << answered.error().errorDescription().toStdString();
    EXPECT_TRUE(secure.requests.isEmpty());
}

TEST_F(HttpClientTest, aTrustedCertificateOfAnotherHostIsRefused) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen(QHostAddress{u"127.0.0.2"_s}));
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_TRUE(secure.requests.isEmpty());
}

TEST_F(HttpClientTest, worksOverTls) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    ASSERT_TRUE(secure.listen());
    secure.answer(200, "over TLS");
    EXPECT_EQ(body(client->send(get(secure.url()), {})), "over TLS");
}

TEST_F(HttpClientTest, noRedirectLeadsOutOfTls) {
    const TrustInLoopback trust;
    LoopbackHttpServer secure{LoopbackHttpServer::Mode::tls};
    LoopbackHttpServer plain;
    ASSERT_TRUE(secure.listen());
    ASSERT_TRUE(plain.listen());
    secure.respond = [&](const LoopbackHttpServer::Request&) {
        return LoopbackHttpServer::reply(302, {}, "Location: " + plain.url().toEncoded() + "\r\n");
    };
    const auto answered = complete(client->send(get(secure.url()), {}));
    ASSERT_FALSE(answered);
    EXPECT_EQ(answered.error().errorDescription(), u"The server redirects to an address that is not safe."_s);
    EXPECT_TRUE(plain.requests.isEmpty());
}

}  // namespace corvellan::test

#include "Services/Auth/TokenEndpoint.h"

#include <gtest/gtest.h>

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

const QString base = u"https://chat.corvellan.example"_s;

}  // namespace

TEST(TokenEndpointTest, asksForTheSignInPageInThisOrder) {
    const auto url = oauth::authorizationUrl(base, "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->toString(QUrl::FullyEncoded),
              u"https://chat.corvellan.example/api/oauth/authorize?response_type=code&client_id=corvellan-tui"
              "&redirect_uri=http://127.0.0.1:9876/callback"
              "&code_challenge=E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM&code_challenge_method=S256"
              "&scope=openid%20email%20profile"_s);
}

TEST(TokenEndpointTest, redeemsACodeInTheseBytes) {
    const auto request = oauth::codeRequest(base, u"a/b+ü&c"_s, "verifier");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->method, "POST");
    EXPECT_EQ(request->url, QUrl{u"https://chat.corvellan.example/api/oauth/token"_s});
    EXPECT_EQ(request->headers, (HttpHeaders{{"Content-Type", "application/x-www-form-urlencoded"}}));
    EXPECT_EQ(request->timeout, std::chrono::seconds{60});
    EXPECT_EQ(request->body,
              "grant_type=authorization_code&client_id=corvellan-tui&code=a/b+ü&c"
              "&redirect_uri=http://127.0.0.1:9876/callback&code_verifier=verifier");
}

TEST(TokenEndpointTest, refreshesInTheseBytes) {
    const auto request = oauth::refreshRequest(base, u"r/+=%&"_s);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->method, "POST");
    EXPECT_EQ(request->url, QUrl{u"https://chat.corvellan.example/api/oauth/token"_s});
    EXPECT_EQ(request->headers, (HttpHeaders{{"Content-Type", "application/x-www-form-urlencoded"}}));
    EXPECT_EQ(request->timeout, std::chrono::seconds{60});
    EXPECT_EQ(request->body, "grant_type=refresh_token&client_id=corvellan-tui&refresh_token=r/+=%&");
}

TEST(TokenEndpointTest, refusesAddressesOfNoServer) {
    for (const auto* const address : {u"", u"chat.corvellan.example", u"file://", u"ftp://chat.example", u"https://",
                                      u"http://[::", u"http://a b", u"http://x:99999"}) {
        const QString text = QString::fromUtf16(address);
        const auto url = oauth::authorizationUrl(text, "c");
        const auto code = oauth::codeRequest(text, u"c"_s, "v");
        const auto refresh = oauth::refreshRequest(text, u"r"_s);
        ASSERT_FALSE(url) << text.toStdString();
        ASSERT_FALSE(code) << text.toStdString();
        ASSERT_FALSE(refresh) << text.toStdString();
        EXPECT_EQ(url.error().errorDescription(), u"Invalid OAuth URL"_s);
        EXPECT_EQ(code.error().kind, AuthError::Kind::invalidURL);
        EXPECT_EQ(refresh.error().kind, AuthError::Kind::invalidURL);
    }
}

TEST(TokenEndpointTest, keepsTheWordsOfARefusal) {
    EXPECT_EQ(oauth::refusalText("{\"error\":\"ü\"}\n"), u"{\"error\":\"ü\"}\n"_s);
    EXPECT_EQ(oauth::refusalText(""), u""_s);
    EXPECT_EQ(oauth::refusalText("fine \xFF"), u""_s);
}

TEST(AuthErrorTest, describesItselfInWords) {
    const auto text = [](AuthError::Kind kind) {
        return AuthError{.kind = kind, .message = u"no such code"_s}.errorDescription();
    };
    EXPECT_EQ(text(AuthError::Kind::tokenExchangeFailed), u"Token exchange failed: no such code"_s);
    EXPECT_EQ(text(AuthError::Kind::invalidURL), u"Invalid OAuth URL"_s);
    EXPECT_EQ(text(AuthError::Kind::noAuthorizationCode), u"No authorization code in callback"_s);
    EXPECT_EQ(text(AuthError::Kind::cancelled), u"Authentication cancelled"_s);
    EXPECT_EQ(text(AuthError::Kind::refreshFailed), u"Token refresh failed"_s);
}

}  // namespace corvellan

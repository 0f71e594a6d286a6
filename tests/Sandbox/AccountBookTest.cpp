#include "Sandbox/AccountBook.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QJsonDocument>

#include "Models/AuthTokens.h"
#include "Support/ManualClock.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace sandbox;

const QByteArray verifier{"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"};
const QString client = u"corvellan-tui"_s;
const QString redirect = u"http://127.0.0.1:9876/callback"_s;
const QString anna = u"anna@fernhill.example"_s;

class AccountBookTest : public testing::Test {
protected:
    using Result = std::expected<IssuedTokens, TokenRefusal>;

    static SignInRequest request() {
        return {.clientId = client,
                .redirectUri = redirect,
                .codeChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s,
                .scope = u"openid email profile"_s,
                .state = {}};
    }
    QString code() { return held->issueCode(request(), anna); }
    Result redeem(const QString& code) { return held->redeemCode(code, client, redirect, verifier); }
    IssuedTokens signIn() { return redeem(code()).value(); }
    static std::string refusal(const Result& result) {
        return result ? "accepted" : (result.error().error + u": "_s + result.error().description).toStdString();
    }
    void use(AccountSettings settings) { held.emplace(std::move(settings), clock); }

    ManualClock clock;
    std::optional<AccountBook> held{std::in_place, AccountSettings{}, clock};
};

const std::string spent = "invalid_grant: no such refresh token: never issued, spent or revoked";

}  // namespace

TEST_F(AccountBookTest, givesTokensForACode) {
    const auto tokens = signIn();
    EXPECT_EQ(jwtSubject(tokens.accessToken), anna);
    EXPECT_EQ(held->userOf(tokens.accessToken), anna);
    EXPECT_EQ(tokens.user, anna);
    EXPECT_EQ(tokens.scope, u"openid email profile"_s);
    EXPECT_EQ(tokens.expiresIn, 3600s);
    EXPECT_TRUE(tokens.refreshToken);
}

TEST_F(AccountBookTest, secretsAreLongAndNeverTheSame) {
    const auto one = signIn();
    const auto other = signIn();
    EXPECT_NE(one.accessToken, other.accessToken);
    EXPECT_NE(one.refreshToken, other.refreshToken);
    const QString first = code();
    EXPECT_NE(first, code());
    EXPECT_GE(first.size(), 43);
    EXPECT_GE(one.refreshToken->size(), 43);
}

TEST_F(AccountBookTest, refusesACodeThatWasNeverIssued) {
    EXPECT_EQ(refusal(redeem(u"code_x"_s)), "invalid_grant: no such code, or long over");
    EXPECT_EQ(refusal(redeem({})), "invalid_grant: no such code, or long over");
}

TEST_F(AccountBookTest, aCodeIsGoodOnce) {
    const QString once = code();
    EXPECT_TRUE(redeem(once));
    EXPECT_EQ(refusal(redeem(once)), "invalid_grant: the code is spent already");
}

TEST_F(AccountBookTest, aCodeThatComesAgainTakesItsTokensBack) {
    const QString stolen = code();
    const auto tokens = redeem(stolen);
    ASSERT_TRUE(tokens);
    std::ignore = redeem(stolen);
    EXPECT_EQ(held->userOf(tokens->accessToken), std::nullopt);
    EXPECT_EQ(refusal(held->refresh(*tokens->refreshToken, client)), spent);
}

TEST_F(AccountBookTest, aCodeExpires) {
    const QString inTime = code();
    const QString late = code();
    clock.advance(60s - 1ms);
    EXPECT_TRUE(redeem(inTime));
    clock.advance(1ms);
    EXPECT_EQ(refusal(redeem(late)), "invalid_grant: the code has expired");
}

TEST_F(AccountBookTest, aCodeIsBoundToItsClientAddressAndChallenge) {
    EXPECT_EQ(refusal(held->redeemCode(code(), u"other"_s, redirect, verifier)),
              "invalid_grant: the code was issued to another client");
    EXPECT_EQ(refusal(held->redeemCode(code(), client, redirect + u'/', verifier)),
              "invalid_grant: the code was issued for another redirect_uri");
    EXPECT_EQ(refusal(held->redeemCode(code(), client, redirect, verifier + 'x')),
              "invalid_grant: the code_verifier does not belong to the code_challenge");
    EXPECT_EQ(refusal(held->redeemCode(code(), client, redirect, {})),
              "invalid_grant: the code_verifier does not belong to the code_challenge");
    // The challenge itself is no verifier.
    EXPECT_FALSE(held->redeemCode(code(), client, redirect, request().codeChallenge.toLatin1()));
}

TEST_F(AccountBookTest, aTryThatFailsSpendsTheCode) {
    const QString tried = code();
    std::ignore = held->redeemCode(tried, client, redirect, "wrong");
    EXPECT_EQ(refusal(redeem(tried)), "invalid_grant: the code is spent already");
}

TEST_F(AccountBookTest, rotatesRefreshTokens) {
    const auto first = signIn();
    const auto second = held->refresh(*first.refreshToken, client);
    ASSERT_TRUE(second);
    EXPECT_EQ(jwtSubject(second->accessToken), anna);
    ASSERT_TRUE(second->refreshToken);
    EXPECT_NE(second->refreshToken, first.refreshToken);
    EXPECT_EQ(refusal(held->refresh(*first.refreshToken, client)), spent);
    // A late twin takes nothing away from the faster one.
    EXPECT_EQ(held->userOf(second->accessToken), anna);
    EXPECT_TRUE(held->refresh(*second->refreshToken, client));
}

TEST_F(AccountBookTest, keepsARefreshTokenWhereItIsTold) {
    use({.refreshTokens = RefreshTokens::keep});
    const auto first = signIn();
    for (int i = 0; i < 3; ++i) {
        const auto next = held->refresh(*first.refreshToken, client);
        ASSERT_TRUE(next);
        EXPECT_FALSE(next->refreshToken);
    }
}

TEST_F(AccountBookTest, givesNoRefreshTokenWhereItIsTold) {
    use({.refreshTokens = RefreshTokens::none});
    EXPECT_FALSE(signIn().refreshToken);
    EXPECT_EQ(refusal(held->refresh({}, client)), spent);
}

TEST_F(AccountBookTest, aRefreshTokenIsBoundToItsClient) {
    const auto tokens = signIn();
    EXPECT_EQ(refusal(held->refresh(*tokens.refreshToken, u"other"_s)),
              "invalid_grant: the refresh token was issued to another client");
    EXPECT_TRUE(held->refresh(*tokens.refreshToken, client));
}

TEST_F(AccountBookTest, anAccessTokenExpires) {
    const auto tokens = signIn();
    clock.advance(3600s - 1ms);
    EXPECT_EQ(held->userOf(tokens.accessToken), anna);
    clock.advance(1ms);
    EXPECT_EQ(held->userOf(tokens.accessToken), std::nullopt);
}

TEST_F(AccountBookTest, anAccessTokenHoldsForEverWhereItIsTold) {
    use({.tokenLifetime = std::nullopt});
    const auto tokens = signIn();
    EXPECT_FALSE(tokens.expiresIn);
    clock.advance(std::chrono::years{50});
    EXPECT_EQ(held->userOf(tokens.accessToken), anna);
}

TEST_F(AccountBookTest, revokingEitherTokenEndsTheSignIn) {
    const auto one = signIn();
    const auto other = signIn();
    EXPECT_TRUE(held->revoke(one.accessToken));
    EXPECT_EQ(held->userOf(one.accessToken), std::nullopt);
    EXPECT_EQ(refusal(held->refresh(*one.refreshToken, client)), spent);
    EXPECT_FALSE(held->revoke(one.accessToken));
    EXPECT_EQ(held->userOf(other.accessToken), anna);
    EXPECT_TRUE(held->revoke(*other.refreshToken));
    EXPECT_EQ(held->userOf(other.accessToken), std::nullopt);
    EXPECT_FALSE(held->revoke({}));
    EXPECT_FALSE(held->revoke(u"nothing"_s));
}

TEST_F(AccountBookTest, believesNoTokenThatItHasNotSigned) {
    const QString token = signIn().accessToken;
    const auto parts = token.split(u'.');
    const auto encoded = [](const QByteArray& json) {
        return QString::fromLatin1(json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
    };
    const QString unsigned_ = encoded(R"({"alg":"none","typ":"JWT"})");
    const AccountBook stranger{{}, clock};
    EXPECT_EQ(stranger.userOf(token), std::nullopt);
    for (const auto& forged : {QString{}, u".."_s, parts[0] + u'.' + parts[1], parts[0] + u'.' + parts[1] + u'.',
                               unsigned_ + u'.' + parts[1] + u'.', unsigned_ + u'.' + parts[1] + u'.' + parts[2],
                               parts[0] + u'.' + encoded(R"({"sub":"eve@x.example"})") + u'.' + parts[2], token + u'=',
                               token + u".x"_s, u'.' + parts[1] + u'.' + parts[2]})
        EXPECT_EQ(held->userOf(forged), std::nullopt) << forged.toStdString();
}

TEST_F(AccountBookTest, aPageIsGoodOnceAndNotForEver) {
    const QString ticket = held->openPage(request());
    EXPECT_TRUE(held->closePage(ticket));
    EXPECT_FALSE(held->closePage(ticket));
    EXPECT_FALSE(held->closePage({}));
    const QString old = held->openPage(request());
    clock.advance(10min);
    EXPECT_FALSE(held->closePage(old));
}

TEST_F(AccountBookTest, remembersNoMoreThanAThousandPages) {
    const QString first = held->openPage(request());
    clock.advance(1ms);
    const QString second = held->openPage(request());
    clock.advance(1ms);
    for (int i = 0; i < 999; ++i)
        std::ignore = held->openPage(request());
    EXPECT_FALSE(held->closePage(first));
    EXPECT_TRUE(held->closePage(second));
}

TEST_F(AccountBookTest, anotherBookTakesUpWhereOneLeft) {
    const auto tokens = signIn();
    AccountBook next{{}, clock};
    next.restore(held->state());
    EXPECT_EQ(next.userOf(tokens.accessToken), anna);
    EXPECT_TRUE(next.refresh(*tokens.refreshToken, client));
}

}  // namespace corvellan::test

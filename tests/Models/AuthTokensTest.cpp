#include "Models/AuthTokens.h"

#include <gtest/gtest.h>

#include <limits>

#include "Models/Protocol.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

// 1,772,445,600 s after the epoch, and most of the next one.
constexpr WallTime now =
    std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + std::chrono::hours{10} + std::chrono::milliseconds{999};
constexpr std::uint64_t nowSeconds = 1'772'445'600;

AuthTokens endingIn(std::uint64_t seconds) {
    return {.accessToken = u"a"_s, .refreshToken = {}, .expiresAt = nowSeconds + seconds};
}

DecodingError failure(const std::expected<AuthTokens, Error>& tokens) {
    EXPECT_FALSE(tokens);
    const auto* const error = tokens ? nullptr : tokens.error().as<DecodingError>();
    EXPECT_TRUE(error);
    return error ? *error : DecodingError{};
}

}  // namespace

TEST(AuthTokensTest, countsAsExpiredSixtySecondsBeforeTheEnd) {
    EXPECT_FALSE(endingIn(60).isValid(now));
    EXPECT_TRUE(endingIn(61).isValid(now));
    // The time is cut to whole seconds: a millisecond later it is another one.
    EXPECT_FALSE(endingIn(61).isValid(now + 1ms));
    EXPECT_FALSE((AuthTokens{.accessToken = u"a"_s, .refreshToken = {}, .expiresAt = 0}).isValid(now));
}

TEST(AuthTokensTest, neverExpiresWithoutAnEnd) {
    EXPECT_TRUE((AuthTokens{.accessToken = u"a"_s}).isValid(now));
    EXPECT_TRUE((AuthTokens{.accessToken = u"a"_s}).isValid(now + std::chrono::years{500}));
}

TEST(AuthTokensTest, readsAFileWithAnAccessTokenAlone) {
    EXPECT_EQ(AuthTokens::decode(R"({"access_token":"a"})"), (AuthTokens{.accessToken = u"a"_s}));
    EXPECT_EQ(AuthTokens::decode(R"({"access_token":"a","refresh_token":null,"expires_at":null,"more":[1]})"),
              (AuthTokens{.accessToken = u"a"_s}));
}

TEST(AuthTokensTest, writesWhatItReads) {
    const AuthTokens whole{
        .accessToken = u"a\"\\ü😀"_s, .refreshToken = u"r"_s, .expiresAt = std::numeric_limits<std::uint64_t>::max()};
    EXPECT_EQ(whole.encode(),
              QByteArray{R"({"access_token":"a\"\\ü😀","refresh_token":"r","expires_at":18446744073709551615})"});
    EXPECT_EQ(AuthTokens::decode(whole.encode()), whole);
    EXPECT_EQ((AuthTokens{.accessToken = u"a"_s}).encode(), QByteArray{R"({"access_token":"a"})"});
}

TEST(AuthTokensTest, refusesFilesThatAreNoTokens) {
    for (const auto* const json :
         {"", "{", R"({"access_token":"a")", "[]", "null", R"({"refresh_token":"r"})", R"({"access_token":7})",
          R"({"access_token":"a","expires_at":-1})", R"({"access_token":"a","expires_at":1.5})",
          R"({"access_token":"a","expires_at":"1"})", "{\"access_token\":\"\xFF\"}"})
        EXPECT_FALSE(AuthTokens::decode(json)) << json;
}

TEST(AuthTokensTest, countsTheEndOfAnAnswerFromNow) {
    EXPECT_EQ(
        AuthTokens::decodeAnswer(R"({"access_token":"a","refresh_token":"r","expires_in":3600,"token_type":"B"})", now),
        (AuthTokens{.accessToken = u"a"_s, .refreshToken = u"r"_s, .expiresAt = nowSeconds + 3600}));
}

TEST(AuthTokensTest, anAnswerWithoutExpiryNeverExpires) {
    const auto tokens = AuthTokens::decodeAnswer(R"({"access_token":"a"})", now);
    EXPECT_EQ(tokens, (AuthTokens{.accessToken = u"a"_s}));
    EXPECT_TRUE(tokens->isValid(now + std::chrono::years{500}));
}

TEST(AuthTokensTest, refusesAnAnswerWhoseEndOverflows) {
    const auto text = [](const char* seconds) {
        return QByteArray{R"({"access_token":"a","expires_in":)"} + seconds + '}';
    };
    // 2^64 - 1 - 1,772,445,600 is the last that fits.
    EXPECT_EQ(AuthTokens::decodeAnswer(text("18446744071937106015"), now)->expiresAt,
              std::numeric_limits<std::uint64_t>::max());
    const auto error = failure(AuthTokens::decodeAnswer(text("18446744071937106016"), now));
    EXPECT_EQ(error.kind, DecodingError::Kind::outOfRange);
    EXPECT_EQ(error.path, u"expires_in"_s);
    EXPECT_EQ(failure(AuthTokens::decodeAnswer(text("-1"), now)).path, u"expires_in"_s);
}

TEST(AuthTokensTest, refusesAnAnswerWithoutAccessToken) {
    const auto error = failure(AuthTokens::decodeAnswer(R"({"error":"invalid_grant"})", now));
    EXPECT_EQ(error.kind, DecodingError::Kind::missingField);
    EXPECT_EQ(error.path, u"access_token"_s);
}

TEST(AuthTokensTest, takesTheSubjectOfASignedToken) {
    // {"sub":"anna@corvellan.example"}
    EXPECT_EQ(jwtSubject(u"e30.eyJzdWIiOiJhbm5hQGNvcnZlbGxhbi5leGFtcGxlIn0.c2ln"_s), u"anna@corvellan.example"_s);
    // {"sub":"ü?>"}: both characters of the URL's alphabet come up.
    EXPECT_EQ(jwtSubject(u".eyJzdWIiOiLDvD8-In0."_s), u"ü?>"_s);
    EXPECT_EQ(jwtSubject(u".eyJzdWIiOiLDvD8+In0."_s), u"ü?>"_s);
}

TEST(AuthTokensTest, findsNoSubjectInOtherTexts) {
    for (const auto* const token : {u"", u".", u"..", u"...", u"a.b", u"a.b.c.d", u"a.!!!!.c", u"a.e30.c",
                                    u"a.eyJzdWIiOjd9.c", u"a.bnVsbA.c", u"a.ü.c", u"a.=.c", u"a.e.c"})
        EXPECT_EQ(jwtSubject(QString::fromUtf16(token)), std::nullopt) << QString::fromUtf16(token).toStdString();
}

}  // namespace corvellan

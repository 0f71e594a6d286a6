#include "Services/Auth/Pkce.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <QSet>

namespace corvellan {

TEST(PkceTest, makesTheChallengeOfTheStandardsOwnExample) {
    EXPECT_EQ(Pkce::challengeOf("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
}

TEST(PkceTest, encodesInTheAlphabetOfUrlsWithoutPadding) {
    EXPECT_EQ(base64URLEncoded(QByteArray::fromHex("fbefbe")), "----");
    EXPECT_EQ(base64URLEncoded(QByteArray::fromHex("ffffff")), "____");
    EXPECT_EQ(base64URLEncoded("a"), "YQ");
    EXPECT_EQ(base64URLEncoded(""), "");
}

TEST(PkceTest, verifiersAreOf43CharactersThatUrlsTake) {
    QSet<QByteArray> seen;
    for (int i = 0; i < 100; ++i) {
        const auto pkce = Pkce::make();
        EXPECT_EQ(pkce.verifier.size(), 43);
        EXPECT_TRUE(std::ranges::all_of(pkce.verifier, [](char character) {
            return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
                   (character >= '0' && character <= '9') || character == '-' || character == '_';
        })) << pkce.verifier.constData();
        EXPECT_EQ(pkce.challenge, Pkce::challengeOf(pkce.verifier));
        seen.insert(pkce.verifier);
    }
    EXPECT_EQ(seen.size(), 100);
}

}  // namespace corvellan

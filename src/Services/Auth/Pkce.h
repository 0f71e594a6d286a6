#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace corvellan {

/// The proof that whoever redeems an authorization code is the one who asked for it (PKCE, method S256).
struct Pkce {
    QByteArray verifier;   ///< 32 random bytes, 43 characters. Stays here until the code is redeemed.
    QByteArray challenge;  ///< What the authorization server sees first.

    /// A new one, from the system's secure random source.
    [[nodiscard]] static Pkce make();

    /// The challenge that belongs to a verifier: its SHA-256.
    [[nodiscard]] static QByteArray challengeOf(QByteArrayView verifier);
};

/// Base64 in the URL-safe alphabet, without padding.
[[nodiscard]] QByteArray base64URLEncoded(const QByteArray& bytes);

}  // namespace corvellan

#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include "Base/Clock.h"
#include "Base/Error.h"

namespace corvellan {

/// The token pair of a signed-in user, as the token file holds it. A plain value.
struct AuthTokens {
    QString accessToken;
    std::optional<QString> refreshToken;
    std::optional<std::uint64_t> expiresAt;  ///< Unix time in whole seconds; absent means never.

    /// More than the file ever needs; what is longer is no token file.
    static constexpr qsizetype maxFileBytes = 1 << 20;

    /// Whether the access token is good for more than another 60 seconds.
    [[nodiscard]] bool isValid(WallTime now) const;

    /// The keys `access_token`, `refresh_token` and `expires_at` of one JSON object.
    [[nodiscard]] static std::expected<AuthTokens, Error> decode(QByteArrayView json);

    /// The body of an authorization server's token answer: `access_token`, `refresh_token`, and the
    /// seconds from `now` in `expires_in`. An end beyond 64 bits is an error.
    [[nodiscard]] static std::expected<AuthTokens, Error> decodeAnswer(QByteArrayView json, WallTime now);

    /// As `decode` reads it; what is absent is left out.
    [[nodiscard]] QByteArray encode() const;

    bool operator==(const AuthTokens&) const = default;
};

/// The claim "sub" of a token of three parts; its signature is not checked. Empty for a text that is
/// no such token, and for one without the claim.
[[nodiscard]] std::optional<QString> jwtSubject(const QString& token);

}  // namespace corvellan

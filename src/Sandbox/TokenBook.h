#pragma once

#include <optional>
#include <QHash>
#include <QString>

#include "Models/Types.h"

namespace corvellan::sandbox {

/// What a token of the transcription provider stands for.
struct TokenGrant {
    QString sessionId;
    AudioSourceTag side = AudioSourceTag::mic;
};

/// The tokens that the coaching server has bought from the provider: random, one a side, good for one
/// connection of one session. One thread.
class TokenBook {
public:
    /// A new token, 256 random bits.
    [[nodiscard]] QString issue(const TokenGrant& grant);

    /// The token would be redeemed.
    [[nodiscard]] bool isGood(const QString& token) const { return m_grants.contains(token); }

    /// Spends the token. Empty for one that was never issued, is spent already, or whose session is over.
    [[nodiscard]] std::optional<TokenGrant> redeem(const QString& token);

    /// Makes the unspent tokens of a session worthless.
    void revoke(const QString& sessionId);

private:
    QHash<QString, TokenGrant> m_grants;
};

}  // namespace corvellan::sandbox

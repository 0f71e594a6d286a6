#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <optional>
#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "Base/Clock.h"

namespace corvellan::sandbox {

/// What becomes of a refresh token that was used.
enum class RefreshTokens {
    rotate,  ///< A new one comes with each answer, and the old one is spent.
    keep,    ///< It stays good, and answers carry none.
    none     ///< There are none at all.
};

struct AccountSettings {
    QStringList users{QStringLiteral("anna@fernhill.example"), QStringLiteral("ben@fernhill.example")};
    /// How long access tokens hold; absent means for ever.
    std::optional<std::chrono::seconds> tokenLifetime = std::chrono::hours{1};
    std::chrono::seconds codeLifetime{60};
    RefreshTokens refreshTokens = RefreshTokens::rotate;
};

/// A sign-in that a client has asked for: what its code will be bound to.
struct SignInRequest {
    QString clientId;
    QString redirectUri;
    QString codeChallenge;
    QString scope;
    std::optional<QString> state;  ///< The client's own; it comes back as it is.
};

/// Why tokens were refused: one of the words of OAuth, and a sentence for the log and for developers.
struct TokenRefusal {
    QString error;
    QString description;
};

/// What a token endpoint hands out.
struct IssuedTokens {
    QString accessToken;
    std::optional<QString> refreshToken;
    std::optional<std::chrono::seconds> expiresIn;
    QString scope;
    QString user;
};

/// Who may sign in, who did, and what they hold: the authorization server's memory. All secrets are 256 random
/// bits. One thread.
class AccountBook {
public:
    /// One sign-in of one user. Its access tokens name it; at most one refresh token belongs to it.
    struct Grant {
        QString user;
        QString clientId;
        QString scope;
        QString refreshToken;  ///< Empty where there is none.
    };
    /// What must outlive a restart for tokens to stay good; the rest is over in minutes.
    struct State {
        QByteArray signingKey;
        QHash<QString, Grant> grants;  ///< By their identifiers.
    };

    /// The clock must outlive the book.
    AccountBook(AccountSettings settings, const Clock& clock);

    [[nodiscard]] const AccountSettings& settings() const { return m_settings; }
    [[nodiscard]] const State& state() const { return m_state; }
    /// Called after each change of `state`.
    std::function<void()> onChanged = [] {};
    /// Takes up where another book left.
    void restore(State state) { m_state = std::move(state); }

    /// A page that asks a user is shown; the ticket names it once. Only so many pages are remembered.
    [[nodiscard]] QString openPage(SignInRequest request);
    /// The user has decided, and the ticket is spent. Empty for one that was never issued, is spent or too old.
    [[nodiscard]] std::optional<SignInRequest> closePage(const QString& ticket);

    /// A code for this user, good once.
    [[nodiscard]] QString issueCode(const SignInRequest& request, const QString& user);

    /// Tokens for a code. Any try spends it; one that was spent before also takes the tokens back that it
    /// brought, since two know it.
    [[nodiscard]] std::expected<IssuedTokens, TokenRefusal> redeemCode(const QString& code, const QString& clientId,
                                                                       const QString& redirectUri,
                                                                       const QByteArray& verifier);

    [[nodiscard]] std::expected<IssuedTokens, TokenRefusal> refresh(const QString& refreshToken,
                                                                    const QString& clientId);

    /// Makes the sign-in worthless that this access or refresh token belongs to. True when there was one.
    bool revoke(const QString& token);

    /// Whose access token this is. Empty for one that is not ours, has expired or was revoked.
    [[nodiscard]] std::optional<QString> userOf(const QString& accessToken) const;

private:
    struct Page {
        SignInRequest request;
        MonotonicTime openedAt;
    };
    struct Code {
        SignInRequest request;
        QString user;
        MonotonicTime issuedAt;
        bool isSpent = false;
        QString grantId;  ///< What it brought.
    };

    [[nodiscard]] IssuedTokens issue(const QString& grantId);
    [[nodiscard]] QString accessToken(const QString& grantId, const Grant& grant) const;
    /// Empty unless we have signed it.
    [[nodiscard]] std::optional<QJsonObject> claims(const QString& accessToken) const;
    void forgetWhatIsOver();

    AccountSettings m_settings;
    const Clock& m_clock;
    State m_state;
    QHash<QString, Page> m_pages;
    QHash<QString, Code> m_codes;
};

}  // namespace corvellan::sandbox

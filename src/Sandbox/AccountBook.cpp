#include "AccountBook.h"

#include <algorithm>
#include <array>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A page may stand open while the user makes coffee.
constexpr auto pageLifetime = 10min;
constexpr qsizetype mostPages = 1000;
/// Spent codes are kept so long, to notice that one comes again.
constexpr auto codeMemory = 10min;

QByteArray base64Url(const QByteArray& bytes) {
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray randomBytes() {
    std::array<quint32, 8> bits{};
    QRandomGenerator::system()->fillRange(bits.data(), bits.size());
    return {reinterpret_cast<const char*>(bits.data()), sizeof bits};
}

QString secret(const QString& prefix) {
    return prefix + QString::fromLatin1(base64Url(randomBytes()));
}

qint64 unixSeconds(WallTime time) {
    return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

QByteArray json(const QJsonObject& object) {
    return QJsonDocument{object}.toJson(QJsonDocument::Compact);
}

std::unexpected<TokenRefusal> invalidGrant(const QString& why) {
    return std::unexpected(TokenRefusal{.error = u"invalid_grant"_s, .description = why});
}

}  // namespace

AccountBook::AccountBook(AccountSettings settings, const Clock& clock)
    : m_settings(std::move(settings)),
      m_clock(clock),
      m_state{.signingKey = randomBytes(), .grants = {}} {}

QString AccountBook::openPage(SignInRequest request) {
    forgetWhatIsOver();
    if (m_pages.size() >= mostPages) {
        const auto older = [](const Page& one, const Page& other) { return one.openedAt < other.openedAt; };
        m_pages.erase(std::ranges::min_element(m_pages, older));
    }
    const QString ticket = secret(u"page_"_s);
    m_pages.insert(ticket, {.request = std::move(request), .openedAt = m_clock.now()});
    return ticket;
}

std::optional<SignInRequest> AccountBook::closePage(const QString& ticket) {
    forgetWhatIsOver();
    const auto found = m_pages.find(ticket);
    if (found == m_pages.end())
        return std::nullopt;
    SignInRequest request = std::move(found->request);
    m_pages.erase(found);
    return request;
}

QString AccountBook::issueCode(const SignInRequest& request, const QString& user) {
    const QString code = secret(u"code_"_s);
    m_codes.insert(code,
                   {.request = request, .user = user, .issuedAt = m_clock.now(), .isSpent = false, .grantId = {}});
    return code;
}

std::expected<IssuedTokens, TokenRefusal> AccountBook::redeemCode(const QString& code, const QString& clientId,
                                                                  const QString& redirectUri,
                                                                  const QByteArray& verifier) {
    forgetWhatIsOver();
    const auto found = m_codes.find(code);
    if (found == m_codes.end())
        return invalidGrant(u"no such code, or long over"_s);
    if (found->isSpent) {
        if (m_state.grants.remove(found->grantId) > 0)
            onChanged();
        return invalidGrant(u"the code is spent already"_s);
    }
    found->isSpent = true;
    const auto& request = found->request;
    if (m_clock.now() - found->issuedAt >= m_settings.codeLifetime)
        return invalidGrant(u"the code has expired"_s);
    if (request.clientId != clientId)
        return invalidGrant(u"the code was issued to another client"_s);
    if (request.redirectUri != redirectUri)
        return invalidGrant(u"the code was issued for another redirect_uri"_s);
    const QByteArray challenge = base64Url(QCryptographicHash::hash(verifier, QCryptographicHash::Sha256));
    if (request.codeChallenge.toLatin1() != challenge)
        return invalidGrant(u"the code_verifier does not belong to the code_challenge"_s);

    found->grantId = secret(u"grant_"_s);
    m_state.grants.insert(
        found->grantId, {.user = found->user, .clientId = clientId, .scope = request.scope, .refreshToken = QString{}});
    if (m_settings.refreshTokens != RefreshTokens::none)
        m_state.grants[found->grantId].refreshToken = secret(u"refresh_"_s);
    auto tokens = issue(found->grantId);
    if (const auto& first = m_state.grants[found->grantId].refreshToken; !first.isEmpty())
        tokens.refreshToken = first;
    onChanged();
    return tokens;
}

std::expected<IssuedTokens, TokenRefusal> AccountBook::refresh(const QString& refreshToken, const QString& clientId) {
    const auto found = std::ranges::find_if(m_state.grants, [&](const Grant& grant) {
        return !refreshToken.isEmpty() && grant.refreshToken == refreshToken;
    });
    if (found == m_state.grants.end())
        return invalidGrant(u"no such refresh token: never issued, spent or revoked"_s);
    if (found->clientId != clientId)
        return invalidGrant(u"the refresh token was issued to another client"_s);
    auto tokens = issue(found.key());
    if (m_settings.refreshTokens == RefreshTokens::rotate) {
        found->refreshToken = secret(u"refresh_"_s);
        tokens.refreshToken = found->refreshToken;
        onChanged();
    }
    return tokens;
}

bool AccountBook::revoke(const QString& token) {
    qsizetype removed = 0;
    if (const auto found = claims(token))
        removed = m_state.grants.remove(found->value(u"sid"_s).toString());
    else
        removed = m_state.grants.removeIf(
            [&](const auto& entry) { return !token.isEmpty() && entry.value().refreshToken == token; });
    if (removed > 0)
        onChanged();
    return removed > 0;
}

std::optional<QString> AccountBook::userOf(const QString& accessToken) const {
    const auto found = claims(accessToken);
    if (!found)
        return std::nullopt;
    const auto expiry = found->value(u"exp"_s);
    if (expiry.isDouble() && unixSeconds(m_clock.wallNow()) >= expiry.toInteger())
        return std::nullopt;
    const auto grant = m_state.grants.constFind(found->value(u"sid"_s).toString());
    return grant == m_state.grants.cend() ? std::nullopt : std::optional{grant->user};
}

IssuedTokens AccountBook::issue(const QString& grantId) {
    const auto& grant = m_state.grants[grantId];
    return {.accessToken = accessToken(grantId, grant),
            .refreshToken = {},
            .expiresIn = m_settings.tokenLifetime,
            .scope = grant.scope,
            .user = grant.user};
}

QString AccountBook::accessToken(const QString& grantId, const Grant& grant) const {
    const qint64 now = unixSeconds(m_clock.wallNow());
    QJsonObject payload{{u"iss"_s, u"corvellan-sandbox"_s},
                        {u"aud"_s, grant.clientId},
                        {u"sub"_s, grant.user},
                        {u"scope"_s, grant.scope},
                        {u"sid"_s, grantId},
                        {u"iat"_s, now},
                        {u"jti"_s, secret({})}};
    if (m_settings.tokenLifetime)
        payload.insert(u"exp"_s, now + qint64{m_settings.tokenLifetime->count()});
    const QByteArray signedPart =
        base64Url(json({{u"alg"_s, u"HS256"_s}, {u"typ"_s, u"JWT"_s}})) + '.' + base64Url(json(payload));
    const QByteArray signature =
        QMessageAuthenticationCode::hash(signedPart, m_state.signingKey, QCryptographicHash::Sha256);
    return QString::fromLatin1(signedPart + '.' + base64Url(signature));
}

std::optional<QJsonObject> AccountBook::claims(const QString& accessToken) const {
    const QByteArray token = accessToken.toUtf8();
    const auto parts = token.split('.');
    if (parts.size() != 3)
        return std::nullopt;
    // Compared as text, so that no other spelling of the same signature passes; the header is ours with it.
    const QByteArray signature = base64Url(
        QMessageAuthenticationCode::hash(parts[0] + '.' + parts[1], m_state.signingKey, QCryptographicHash::Sha256));
    if (signature != parts[2])
        return std::nullopt;
    return QJsonDocument::fromJson(QByteArray::fromBase64(parts[1], QByteArray::Base64UrlEncoding)).object();
}

void AccountBook::forgetWhatIsOver() {
    const auto now = m_clock.now();
    m_pages.removeIf([&](const auto& entry) { return now - entry.value().openedAt >= pageLifetime; });
    const auto codesStay = std::max<std::chrono::nanoseconds>(codeMemory, m_settings.codeLifetime);
    m_codes.removeIf([&](const auto& entry) { return now - entry.value().issuedAt > codesStay; });
}

}  // namespace corvellan::sandbox

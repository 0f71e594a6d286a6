#include "TokenEndpoint.h"

#include <chrono>
#include <QStringDecoder>

namespace corvellan::oauth {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto clientId = "corvellan-tui";
constexpr auto redirectUri = "http://127.0.0.1:9876/callback";
constexpr auto requestTimeout = 60s;
/// Far more than tokens need; a server that sends without end is cut off there.
constexpr qint64 maxAnswerBytes = qint64{1024} * 1024;

std::expected<QUrl, AuthError> endpoint(const QString& authBaseUrl, const QString& pathAndQuery) {
    QUrl url{authBaseUrl + pathAndQuery, QUrl::StrictMode};
    const bool isWeb = url.scheme() == u"http" || url.scheme() == u"https";
    if (!url.isValid() || !isWeb || url.host().isEmpty())
        return std::unexpected(AuthError{.kind = AuthError::Kind::invalidURL, .message = {}});
    return url;
}

std::expected<HttpRequest, AuthError> tokenRequest(const QString& authBaseUrl, QByteArray body) {
    auto url = endpoint(authBaseUrl, u"/api/oauth/token"_s);
    if (!url)
        return std::unexpected(url.error());
    return HttpRequest{.method = "POST",
                       .url = std::move(*url),
                       .headers = {{"Content-Type", "application/x-www-form-urlencoded"}},
                       .body = std::move(body),
                       .timeout = requestTimeout,
                       .maxBodyBytes = maxAnswerBytes};
}

}  // namespace

std::expected<QUrl, AuthError> authorizationUrl(const QString& authBaseUrl, QByteArrayView challenge) {
    const QByteArray query = QByteArray{"?response_type=code&client_id="} + clientId + "&redirect_uri=" + redirectUri +
                             "&code_challenge=" + challenge.toByteArray() +
                             "&code_challenge_method=S256&scope=openid%20email%20profile";
    return endpoint(authBaseUrl, u"/api/oauth/authorize"_s + QString::fromLatin1(query));
}

std::expected<HttpRequest, AuthError> codeRequest(const QString& authBaseUrl, const QString& code,
                                                  QByteArrayView verifier) {
    // A query may hold every character of this redirect URI as it is.
    return tokenRequest(authBaseUrl, QByteArray{"grant_type=authorization_code&client_id="} + clientId +
                                         "&code=" + code.toUtf8() + "&redirect_uri=" + redirectUri +
                                         "&code_verifier=" + verifier.toByteArray());
}

std::expected<HttpRequest, AuthError> refreshRequest(const QString& authBaseUrl, const QString& refreshToken) {
    return tokenRequest(authBaseUrl, QByteArray{"grant_type=refresh_token&client_id="} + clientId +
                                         "&refresh_token=" + refreshToken.toUtf8());
}

QString refusalText(QByteArrayView body) {
    QStringDecoder decode{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString text = decode(body);
    return decode.hasError() ? QString{} : text;
}

}  // namespace corvellan::oauth

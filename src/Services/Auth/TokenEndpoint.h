#pragma once

#include <expected>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QUrl>

#include "AuthError.h"
#include "Services/Protocols/HttpClientProtocol.h"

/// What is asked of an authorization server. Base URLs are those that callers pass: scheme, host and port.
namespace corvellan::oauth {

/// The page on which the user signs in. Fails with `invalidURL`.
[[nodiscard]] std::expected<QUrl, AuthError> authorizationUrl(const QString& authBaseUrl, QByteArrayView challenge);

/// Asks for tokens in return for a code. Code and verifier go into the body as they stand. Fails with
/// `invalidURL`.
[[nodiscard]] std::expected<HttpRequest, AuthError> codeRequest(const QString& authBaseUrl, const QString& code,
                                                                QByteArrayView verifier);

/// Asks for tokens in return for a refresh token, which goes into the body as it stands. Fails with
/// `invalidURL`.
[[nodiscard]] std::expected<HttpRequest, AuthError> refreshRequest(const QString& authBaseUrl,
                                                                   const QString& refreshToken);

/// The body of a refusal; empty when it is not UTF-8.
[[nodiscard]] QString refusalText(QByteArrayView body);

}  // namespace corvellan::oauth

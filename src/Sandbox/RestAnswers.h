#pragma once

#include <expected>
#include <optional>
#include <QHttpServerResponse>
#include <QJsonObject>
#include <QString>

class QHttpServerRequest;

namespace corvellan::sandbox {

/// What the routes of both REST sides share.

/// An answer in JSON that nothing on the way keeps.
[[nodiscard]] QHttpServerResponse jsonAnswer(
    const QJsonObject& object, QHttpServerResponse::StatusCode status = QHttpServerResponse::StatusCode::Ok);

/// {"error": why}. A 401 also says that a Bearer token is wanted.
[[nodiscard]] QHttpServerResponse failure(QHttpServerResponse::StatusCode status, const QString& why);

/// Behind "Authorization: Bearer ". Empty without one.
[[nodiscard]] std::optional<QString> bearerToken(const QHttpServerRequest& request);

/// A longer body of JSON is refused.
inline constexpr qsizetype longestJsonBody = 64 * 1024;

/// The object in the body, or the refusal to answer with.
[[nodiscard]] std::expected<QJsonObject, QHttpServerResponse::StatusCode> jsonBody(const QHttpServerRequest& request);

/// The sentence for a refusal of `jsonBody`.
[[nodiscard]] QHttpServerResponse badBody(QHttpServerResponse::StatusCode status);

}  // namespace corvellan::sandbox

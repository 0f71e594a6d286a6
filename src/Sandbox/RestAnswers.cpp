#include "RestAnswers.h"

#include <QHttpServerRequest>
#include <QJsonDocument>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

using Status = QHttpServerResponse::StatusCode;

QHttpServerResponse jsonAnswer(const QJsonObject& object, Status status) {
    QHttpServerResponse response{"application/json", QJsonDocument{object}.toJson(QJsonDocument::Compact), status};
    response.addHeader("Cache-Control", "no-store");
    return response;
}

QHttpServerResponse failure(Status status, const QString& why) {
    auto response = jsonAnswer({{u"error"_s, why}}, status);
    if (status == Status::Unauthorized)
        response.addHeader("WWW-Authenticate", "Bearer");
    return response;
}

std::optional<QString> bearerToken(const QHttpServerRequest& request) {
    constexpr QByteArrayView scheme{"bearer "};
    const QByteArray value = request.value("authorization").trimmed();
    if (!value.toLower().startsWith(scheme))
        return std::nullopt;
    return QString::fromUtf8(value.sliced(scheme.size()).trimmed());
}

std::expected<QJsonObject, Status> jsonBody(const QHttpServerRequest& request) {
    if (request.value("content-type").split(';').first().trimmed().toLower() != "application/json")
        return std::unexpected(Status::UnsupportedMediaType);
    if (request.body().size() > longestJsonBody)
        return std::unexpected(Status::PayloadTooLarge);
    const auto document = QJsonDocument::fromJson(request.body());
    if (!document.isObject())
        return std::unexpected(Status::BadRequest);
    return document.object();
}

QHttpServerResponse badBody(Status status) {
    if (status == Status::UnsupportedMediaType)
        return failure(status, u"Content-Type is not application/json"_s);
    if (status == Status::PayloadTooLarge)
        return failure(status, u"the body is longer than %1 bytes"_s.arg(longestJsonBody));
    return failure(status, u"the body is no JSON object"_s);
}

}  // namespace corvellan::sandbox

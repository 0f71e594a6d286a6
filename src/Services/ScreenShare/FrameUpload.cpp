#include "FrameUpload.h"

#include "ScreenShareError.h"

namespace corvellan {

using namespace Qt::StringLiterals;

std::optional<QUrl> frameUploadUrl(const QString& httpBase, const QString& sessionId) {
    const QUrl url{httpBase + u"/session/"_s + sessionId + u"/frame"_s, QUrl::StrictMode};
    return url.isValid() ? std::optional{url} : std::nullopt;
}

HttpRequest frameUpload(const QUrl& url, const std::optional<QString>& authToken, std::uint64_t hash, QByteArray jpeg) {
    HttpRequest request{
        .method = "POST",
        .url = url,
        .headers = {{"Content-Type", "image/jpeg"}, {"X-Frame-Hash", QByteArray::number(qulonglong{hash})}},
        .body = std::move(jpeg),
        .timeout = std::chrono::seconds{60},
    };
    if (authToken)
        request.headers.emplace_back("Authorization", "Bearer " + authToken->toUtf8());
    return request;
}

std::expected<void, Error> frameUploadResult(const std::expected<HttpAnswer, Error>& answer) {
    if (!answer)
        return std::unexpected(answer.error());
    constexpr int firstGood = 200;
    constexpr int lastGood = 299;
    if (answer->status < firstGood || answer->status > lastGood)
        return std::unexpected(
            ScreenShareError{.kind = ScreenShareError::Kind::uploadStatus, .status = answer->status});
    return {};
}

}  // namespace corvellan

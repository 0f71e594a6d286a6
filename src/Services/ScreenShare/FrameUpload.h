#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <QString>

#include "Services/Protocols/HttpClientProtocol.h"

namespace corvellan {

/// Where a session's frames go. Absent when base and id make no address.
[[nodiscard]] std::optional<QUrl> frameUploadUrl(const QString& httpBase, const QString& sessionId);

/// One frame as the coaching server takes it.
[[nodiscard]] HttpRequest frameUpload(const QUrl& url, const std::optional<QString>& authToken, std::uint64_t hash,
                                      QByteArray jpeg);

/// What the server's answer means.
[[nodiscard]] std::expected<void, Error> frameUploadResult(const std::expected<HttpAnswer, Error>& answer);

}  // namespace corvellan

#pragma once

#include <chrono>

#include "Protocols/HttpClientProtocol.h"
#include "Protocols/UpdateFeedProtocol.h"

namespace corvellan {

/// Fetches the feed over the shared HTTP session.
class UpdateFeedService final : public UpdateFeedProtocol {
public:
    /// For everything, from the look-up of the host to the last byte.
    static constexpr std::chrono::seconds timeout{60};
    static constexpr qint64 maxBodyBytes = qint64{1024} * 1024;

    /// \param http outlives the service.
    explicit UpdateFeedService(HttpClientProtocol& http) : m_http(http) {}

    QCoro::Task<std::expected<UpdateFeedAnswer, Error>> fetch(QUrl url, std::stop_token stop) override;

private:
    HttpClientProtocol& m_http;
};

}  // namespace corvellan

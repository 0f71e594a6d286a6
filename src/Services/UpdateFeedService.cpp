#include "UpdateFeedService.h"

namespace corvellan {

QCoro::Task<std::expected<UpdateFeedAnswer, Error>> UpdateFeedService::fetch(QUrl url, std::stop_token stop) {
    HttpRequest request{.url = std::move(url), .timeout = timeout, .maxBodyBytes = maxBodyBytes};
    auto answer = co_await m_http.send(std::move(request), std::move(stop));
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return UpdateFeedAnswer{std::move(answer->body)};
}

}  // namespace corvellan

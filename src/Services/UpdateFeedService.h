#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Protocols/UpdateFeedProtocol.h"

namespace corvellan {

/// Fetches over HTTP or HTTPS, through the system's proxy, and follows redirects unless they leave HTTPS.
class UpdateFeedService final : public UpdateFeedProtocol {
public:
    /// For everything, from the look-up of the host to the last byte.
    static constexpr std::chrono::seconds timeout{60};
    static constexpr qsizetype maxBodyBytes = 1024 * 1024;

    /// Both must outlive the service; `executor` runs on a thread with a Qt event loop.
    UpdateFeedService(Executor& executor, Clock& clock);
    /// What is under way fails as cancelled.
    ~UpdateFeedService() override;
    UpdateFeedService(const UpdateFeedService&) = delete;
    UpdateFeedService& operator=(const UpdateFeedService&) = delete;

    QCoro::Task<std::expected<UpdateFeedAnswer, Error>> fetch(QUrl url, std::stop_token stop) override;

private:
    class Download;

    QCoro::Task<std::expected<UpdateFeedAnswer, Error>> fetchInternal(QUrl url, std::stop_token stop);

    Executor& m_executor;
    Clock& m_clock;
    std::vector<std::weak_ptr<Download>> m_downloads;
};

}  // namespace corvellan

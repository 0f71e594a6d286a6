#pragma once

#include <memory>
#include <vector>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Protocols/HttpClientProtocol.h"

class QNetworkAccessManager;

namespace corvellan {

/// HTTP over Qt's network access. See the contract for what its callers need.
///
/// Servers are verified against the system's certificates, and nothing switches that off. Redirects are
/// followed up to 20 times, but never from HTTPS to HTTP; the header `Authorization` goes along to the same
/// scheme, host and port only. Bodies come as they are (no compression is offered), so that a small answer
/// cannot unpack into a huge one.
class HttpClient final : public HttpClientProtocol {
public:
    /// Both must outlive the client; `executor` runs on a thread with a Qt event loop.
    HttpClient(Executor& executor, Clock& clock);
    /// What is under way fails as cancelled.
    ~HttpClient() override;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    QCoro::Task<std::expected<HttpAnswer, Error>> send(HttpRequest request, std::stop_token stop) override;

private:
    class Exchange;

    QCoro::Task<std::expected<HttpAnswer, Error>> sendInternal(HttpRequest request, std::stop_token stop);

    Executor& m_executor;
    Clock& m_clock;
    std::unique_ptr<QNetworkAccessManager> m_manager;  ///< Made by the first request, on the executor.
    std::vector<std::weak_ptr<Exchange>> m_exchanges;
};

}  // namespace corvellan

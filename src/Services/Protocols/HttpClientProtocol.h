#pragma once

#include <chrono>
#include <expected>
#include <QByteArray>
#include <QCoroTask>
#include <QUrl>
#include <stop_token>
#include <utility>
#include <vector>

#include "Base/Error.h"

namespace corvellan {

/// Names and values of header fields, in order.
using HttpHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

/// What goes to a server. The defaults are those of a plain question.
struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;  ///< http or https.
    HttpHeaders headers;
    QByteArray body;
    /// For everything, from looking the host up to the last byte of the answer, redirects included.
    std::chrono::milliseconds timeout = std::chrono::seconds{60};
    /// A longer body is an error, however it comes.
    qint64 maxBodyBytes = qint64{16} * 1024 * 1024;
};

/// What a server answered. Any status is an answer, also a refusal.
struct HttpAnswer {
    int status = 0;
    HttpHeaders headers;
    QByteArray body;

    bool operator==(const HttpAnswer&) const = default;
};

/// The one HTTP session that all REST clients share. Work runs on its own executor; callers are resumed
/// on theirs. Requests run side by side and know nothing of each other: no cookies, no cache.
class HttpClientProtocol {
public:
    virtual ~HttpClientProtocol() = default;

    /// Sends one request and follows its redirects. Fails when there is no whole answer: an address that
    /// is none, a server that is out of reach, is not trusted, breaks off, says too much or too late. A
    /// requested `stop` gives it up as cancelled.
    virtual QCoro::Task<std::expected<HttpAnswer, Error>> send(HttpRequest request, std::stop_token stop) = 0;
};

}  // namespace corvellan

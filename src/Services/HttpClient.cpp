#include "HttpClient.h"

#include <algorithm>
#include <array>
#include <optional>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include "Alarm.h"
#include "Base/Tasks.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Result = std::expected<HttpAnswer, Error>;

constexpr int mostRedirects = 20;
/// What the network thread may read ahead of us.
constexpr qint64 readBufferBytes = qint64{256} * 1024;

std::unexpected<Error> failure(const QString& sentence) {
    return std::unexpected<Error>{TransportError{sentence}};
}

bool isHttp(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == u"http" || url.scheme() == u"https");
}

/// Qt writes headers as they are: a token with a line break could add headers of its own.
bool isPlainHeader(const std::pair<QByteArray, QByteArray>& header) {
    constexpr std::array breaks{'\r', '\n', '\0'};
    return std::ranges::none_of(breaks,
                                [&](char each) { return header.first.contains(each) || header.second.contains(each); });
}

/// Scheme, host and port are one and the same.
bool isSameOrigin(const QUrl& one, const QUrl& other) {
    const auto port = [](const QUrl& url) { return url.port(url.scheme() == u"https" ? 443 : 80); };
    return one.scheme() == other.scheme() && one.host() == other.host() && port(one) == port(other);
}

bool isRedirect(int status) {
    constexpr std::array statuses{301, 302, 303, 307, 308};
    return std::ranges::find(statuses, status) != statuses.end();
}

/// A server has answered in full. Qt counts its refusals as errors too, but they are answers.
bool isWholeAnswer(QNetworkReply::NetworkError error, int status) {
    if (error == QNetworkReply::NoError)
        return status > 0;
    constexpr int firstRefusal = 400;
    if (status < firstRefusal || error == QNetworkReply::ContentReSendError)
        return false;
    const bool isOfContent = error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError;
    const bool isOfServer = error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError;
    return isOfContent || isOfServer || error == QNetworkReply::ProtocolInvalidOperationError;
}

}  // namespace

/// One request and its redirects, on the executor's thread.
class HttpClient::Exchange : public std::enable_shared_from_this<Exchange> {
public:
    Exchange(Executor& executor, Clock& clock, QNetworkAccessManager& manager, HttpRequest request)
        : m_executor(executor),
          m_manager(&manager),
          m_request(std::move(request)),
          m_deadline(executor, clock) {}

    void start() {
        if (!isHttp(m_request.url)) {
            finish(failure(u"The address does not begin with http:// or https://."_s));
            return;
        }
        if (!std::ranges::all_of(m_request.headers, isPlainHeader)) {
            finish(failure(u"A header of the request holds a line break."_s));
            return;
        }
        m_deadline.set(m_request.timeout, [this] { finish(failure(u"The connection timed out."_s)); });
        sendOnce();
    }

    /// Only the first end counts.
    void finish(Result result) {
        if (m_result)
            return;
        m_result = std::move(result);
        m_deadline.cancel();
        m_ended.announce();
        // Posted, since a signal of the reply is often under way.
        m_executor.post([self = shared_from_this()] { self->release(); });
    }

    /// Gives the request up at once. Qt's manager may go afterwards.
    void drop() {
        finish(std::unexpected{Error::cancelled()});
        release();
    }

    static QCoro::Task<Result> result(std::shared_ptr<Exchange> self) {
        if (!self->m_result)
            co_await self->m_ended.next();
        co_return *std::move(self->m_result);
    }

private:
    void sendOnce() {
        QNetworkRequest request{m_request.url};
        for (const auto& [name, value] : m_request.headers)
            request.setRawHeader(name, value);
        request.setRawHeader("Accept-Encoding", "identity");
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
        m_body.clear();
        m_reply.reset(m_manager->sendCustomRequest(request, m_request.method, m_request.body));
        m_reply->setReadBufferSize(readBufferBytes);
        QObject::connect(m_reply.get(), &QNetworkReply::readyRead, m_reply.get(), [this] { read(); });
        QObject::connect(m_reply.get(), &QNetworkReply::finished, m_reply.get(), [this] { onFinished(); });
    }

    void read() {
        if (m_result)
            return;
        m_body += m_reply->readAll();
        if (m_body.size() > m_request.maxBodyBytes)
            finish(failure(u"The server's answer is too long."_s));
    }

    void onFinished() {
        read();
        if (m_result)
            return;
        const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const auto error = m_reply->error();
        const auto target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        if (error == QNetworkReply::NoError && isRedirect(status) && !target.isEmpty())
            follow(status, m_request.url.resolved(target));
        else if (isWholeAnswer(error, status))
            finish(HttpAnswer{.status = status, .headers = headers(), .body = std::move(m_body)});
        else
            finish(failure(m_reply->errorString()));
    }

    [[nodiscard]] HttpHeaders headers() const {
        HttpHeaders found;
        for (const auto& pair : m_reply->rawHeaderPairs())
            found.emplace_back(pair.first, pair.second);
        return found;
    }

    void follow(int status, const QUrl& target) {
        if (++m_redirects > mostRedirects) {
            finish(failure(u"The server redirects too often."_s));
            return;
        }
        if (!isHttp(target) || (m_request.url.scheme() == u"https" && target.scheme() != u"https")) {
            finish(failure(u"The server redirects to an address that is not safe."_s));
            return;
        }
        const bool isSeeOther = status == 303 && m_request.method != "HEAD";
        const bool isMoved = (status == 301 || status == 302) && m_request.method == "POST";
        if (isSeeOther || isMoved) {
            m_request.method = "GET";
            m_request.body.clear();
            dropHeader("Content-Type");
        }
        if (!isSameOrigin(m_request.url, target))
            dropHeader("Authorization");
        m_request.url = target;
        // Posted: the reply to be replaced is in the middle of its signal.
        m_executor.post([weak = weak_from_this()] {
            const auto self = weak.lock();
            if (self && !self->m_result)
                self->sendOnce();
        });
    }

    void dropHeader(QByteArrayView name) {
        std::erase_if(m_request.headers,
                      [&](const auto& header) { return header.first.compare(name, Qt::CaseInsensitive) == 0; });
    }

    void release() {
        if (!m_reply)
            return;
        m_reply->disconnect(m_reply.get());
        m_reply->abort();
        m_reply.reset();
    }

    Executor& m_executor;
    QNetworkAccessManager* m_manager;
    HttpRequest m_request;
    int m_redirects = 0;
    std::unique_ptr<QNetworkReply> m_reply;
    QByteArray m_body;
    Alarm m_deadline;
    std::optional<Result> m_result;
    Announcement m_ended;
};

HttpClient::HttpClient(Executor& executor, Clock& clock) : m_executor(executor), m_clock(clock) {}

HttpClient::~HttpClient() {
    runAndWait(m_executor, [this] {
        for (const auto& weak : std::exchange(m_exchanges, {}))
            if (const auto exchange = weak.lock())
                exchange->drop();
        m_manager.reset();
    });
}

QCoro::Task<Result> HttpClient::send(HttpRequest request, std::stop_token stop) {
    return m_executor.run(
        [this, request = std::move(request), stop = std::move(stop)] { return sendInternal(request, stop); });
}

QCoro::Task<Result> HttpClient::sendInternal(HttpRequest request, std::stop_token stop) {
    if (stop.stop_requested())
        co_return std::unexpected{Error::cancelled()};
    if (!m_manager)
        m_manager = std::make_unique<QNetworkAccessManager>();
    const auto exchange = std::make_shared<Exchange>(m_executor, m_clock, *m_manager, std::move(request));
    std::erase_if(m_exchanges, [](const auto& weak) { return weak.expired(); });
    m_exchanges.push_back(exchange);
    exchange->start();
    auto cancel = [&executor = m_executor, weak = std::weak_ptr{exchange}] {
        executor.post([weak] {
            if (const auto asked = weak.lock())
                asked->drop();
        });
    };
    const std::stop_callback onStop{stop, std::move(cancel)};
    // The client may have gone by the time this ends.
    co_return co_await Exchange::result(exchange);
}

}  // namespace corvellan

#include "UpdateFeedService.h"

#include <optional>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <utility>

#include "Alarm.h"
#include "Base/Tasks.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Result = std::expected<UpdateFeedAnswer, Error>;

std::unexpected<Error> failure(const QString& sentence) {
    return std::unexpected<Error>{TransportError{sentence}};
}

/// A server has answered in full. Qt counts its refusals as errors too, but they are answers.
bool isWholeAnswer(const QNetworkReply& reply) {
    switch (reply.error()) {
    case QNetworkReply::NoError: return true;
    // What Qt makes of the statuses from 400 on.
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::AuthenticationRequiredError:
    case QNetworkReply::ContentConflictError:
    case QNetworkReply::ContentGoneError:
    case QNetworkReply::UnknownContentError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::InternalServerError:
    case QNetworkReply::OperationNotImplementedError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::UnknownServerError: {
        constexpr int firstRefusal = 400;
        return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= firstRefusal;
    }
    default: return false;
    }
}

}  // namespace

/// One GET, on the executor's thread. Qt's manager, and the thread that it keeps, go with it.
class UpdateFeedService::Download : public std::enable_shared_from_this<Download> {
public:
    Download(Executor& executor, Clock& clock) : m_deadline(executor, clock) {}

    void start(const QUrl& url) {
        QNetworkRequest request{url};
        // Bytes come as they are, so that a small answer cannot unpack into a huge one.
        request.setRawHeader("Accept-Encoding", "identity");
        m_reply.reset(m_manager->get(request));
        m_reply->setReadBufferSize(maxBodyBytes);
        QObject::connect(m_reply.get(), &QNetworkReply::readyRead, m_reply.get(), [this] { read(); });
        QObject::connect(m_reply.get(), &QNetworkReply::finished, m_reply.get(), [this] { onFinished(); });
        m_deadline.set(timeout, [this] { finish(failure(u"The connection timed out."_s)); });
    }

    /// Only the first end counts.
    void finish(Result result) {
        if (m_result)
            return;
        m_result = std::move(result);
        m_deadline.cancel();
        m_ended.announce();
    }

    /// Ends everything at once.
    void drop() {
        finish(std::unexpected{Error::cancelled()});
        m_reply.reset();
        m_manager.reset();
    }

    static QCoro::Task<Result> result(std::shared_ptr<Download> self) {
        if (!self->m_result)
            co_await self->m_ended.next();
        co_return *std::move(self->m_result);
    }

private:
    void read() {
        if (m_result)
            return;
        m_body += m_reply->readAll();
        if (m_body.size() > maxBodyBytes)
            finish(failure(u"The server's answer is too long."_s));
    }

    void onFinished() {
        read();
        if (isWholeAnswer(*m_reply))
            finish(UpdateFeedAnswer{std::move(m_body)});
        else
            finish(failure(m_reply->errorString()));
    }

    std::unique_ptr<QNetworkAccessManager> m_manager = std::make_unique<QNetworkAccessManager>();
    std::unique_ptr<QNetworkReply> m_reply;
    Alarm m_deadline;
    QByteArray m_body;
    std::optional<Result> m_result;
    Announcement m_ended;
};

UpdateFeedService::UpdateFeedService(Executor& executor, Clock& clock) : m_executor(executor), m_clock(clock) {}

UpdateFeedService::~UpdateFeedService() {
    runAndWait(m_executor, [this] {
        for (const auto& weak : std::exchange(m_downloads, {}))
            if (const auto download = weak.lock())
                download->drop();
    });
}

QCoro::Task<Result> UpdateFeedService::fetch(QUrl url, std::stop_token stop) {
    return m_executor.run([this, url = std::move(url), stop = std::move(stop)] { return fetchInternal(url, stop); });
}

QCoro::Task<Result> UpdateFeedService::fetchInternal(QUrl url, std::stop_token stop) {
    // Qt's manager would read local files as well.
    if (url.scheme() != u"http" && url.scheme() != u"https")
        co_return failure(u"The address does not begin with http:// or https://."_s);
    if (stop.stop_requested())
        co_return std::unexpected{Error::cancelled()};
    const auto download = std::make_shared<Download>(m_executor, m_clock);
    std::erase_if(m_downloads, [](const auto& weak) { return weak.expired(); });
    m_downloads.push_back(download);
    download->start(url);
    auto cancel = [&executor = m_executor, weak = std::weak_ptr{download}] {
        executor.post([weak] {
            if (const auto asked = weak.lock())
                asked->drop();
        });
    };
    const std::stop_callback onStop{stop, std::move(cancel)};
    // The service may have gone by the time this ends.
    co_return co_await Download::result(download);
}

}  // namespace corvellan

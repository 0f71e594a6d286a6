#include "WebSocketService.h"

#include <QStringDecoder>
#include <utility>

#include "ClientSocket.h"
#include "UrlText.h"

namespace corvellan {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto pingInterval = 20s;

/// Sends one ping; a failed one leaves a line in the log and nothing else.
QCoro::Task<void> ping(std::shared_ptr<ClientSocket> socket, Logger logger) {
    const auto answered = co_await socket->ping();
    if (!answered)
        logger.error(u"Ping failed: "_s + answered.error().errorDescription());
}

}  // namespace

WebSocketService::WebSocketService(Executor& executor, Clock& clock, Diagnostics& diagnostics)
    : m_executor(executor),
      m_clock(clock),
      m_diagnostics(diagnostics),
      m_pings(executor, clock) {}

WebSocketService::~WebSocketService() {
    runAndWait(m_executor, [this] {
        m_pings.cancel();
        finishStream();
        if (const auto socket = std::exchange(m_task, nullptr))
            socket->drop();
    });
}

QCoro::Task<std::expected<void, Error>> WebSocketService::connect(QUrl url) {
    co_await m_executor.call([this, url = std::move(url)] { connectInternal(url); });
    co_return std::expected<void, Error>{};
}

QCoro::Task<std::expected<void, Error>> WebSocketService::send(ClientMsg message) {
    return m_executor.run([this, message = std::move(message)] { return sendInternal(message); });
}

AsyncStream<ReceivedServerMsg> WebSocketService::receive() {
    const std::scoped_lock lock{m_messageStreamMutex};
    if (m_messageStream)
        return *m_messageStream;
    return MessageStream::failed(WebSocketError{WebSocketError::Kind::notConnected});
}

QCoro::Task<void> WebSocketService::disconnect() {
    return m_executor.call([this] { disconnectInternal(); });
}

void WebSocketService::connectInternal(const QUrl& url) {
    // A session that ended without clean-up leaves its connection here; it is closed as it is
    // replaced, so that none stays open with nobody to read it.
    m_pings.cancel();
    finishStream();
    closeTask();

    m_task = ClientSocket::open(m_executor, m_clock, url);
    auto [stream, continuation] = MessageStream::make();
    {
        const std::scoped_lock lock{m_messageStreamMutex};
        m_messageStream = std::move(stream);
    }
    m_messageContinuation = continuation;
    readLoop(m_task, continuation);
    pingLater();
    m_logger.info(u"Connected to "_s + urlForLog(url));
}

QCoro::Task<std::expected<void, Error>> WebSocketService::sendInternal(ClientMsg message) {
    const auto socket = m_task;
    if (!socket)
        co_return std::unexpected(Error{WebSocketError{WebSocketError::Kind::notConnected}});
    const auto bytes = message.encode();
    if (!bytes)
        co_return std::unexpected(bytes.error());
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(*bytes);
    if (decoder.hasError())
        co_return std::unexpected(Error{WebSocketError{WebSocketError::Kind::encodingFailed}});
    co_return co_await socket->send(text);
}

void WebSocketService::disconnectInternal() {
    m_pings.cancel();
    finishStream();
    closeTask();
    m_logger.info(u"Disconnected"_s);
}

void WebSocketService::closeTask() {
    if (const auto socket = std::exchange(m_task, nullptr))
        socket->close();
}

void WebSocketService::finishStream() {
    if (const auto continuation = std::exchange(m_messageContinuation, std::nullopt))
        continuation->finish();
    const std::scoped_lock lock{m_messageStreamMutex};
    m_messageStream.reset();
}

void WebSocketService::readLoop(const std::shared_ptr<ClientSocket>& socket,
                                const MessageStream::Producer& continuation) {
    // By value what it needs, and nothing of the service that changes.
    const auto take = [continuation, logger = m_logger, &clock = m_clock,
                       &diagnostics = m_diagnostics](QByteArrayView frame) {
        const MonotonicTime arrivedAt = clock.now();
        auto message = ServerMsg::decode(frame);
        if (!message) {
            ++diagnostics.messagesDropped;
            logger.error(u"Decode error: "_s + message.error().errorDescription());
            return;
        }
        ++diagnostics.messagesReceived;
        continuation.push({.message = std::move(*message), .arrivedAt = arrivedAt});
    };
    socket->read({.text = [take](const QString& text) { take(text.toUtf8()); },
                  .binary = [take](const QByteArray& bytes) { take(bytes); },
                  .ended =
                      [continuation](const SocketEnd& end) {
                          if (end.isNormal)
                              continuation.finish();
                          else
                              continuation.fail(end.error);
                      }});
}

void WebSocketService::pingLater() {
    m_pings.set(pingInterval, [this] {
        pingLater();
        ping(m_task, m_logger);
    });
}

}  // namespace corvellan

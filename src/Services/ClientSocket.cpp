#include "ClientSocket.h"

#include <algorithm>
#include <coroutine>
#include <QNetworkRequest>
#include <QWebSocket>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

Error timedOut() {
    return TransportError{u"The connection timed out."_s};
}

/// What a user can make something of. Qt's own words stay in it where they tell more.
QString readable(QString reason) {
    constexpr QLatin1StringView function{"QWebSocketPrivate::"};
    if (const qsizetype colon = reason.indexOf(u": "_s); reason.startsWith(function) && colon >= 0)
        reason.remove(0, colon + 2);
    constexpr QLatin1StringView status{"Unhandled http status code: "};
    if (reason.startsWith(status))
        return u"The server refused the connection: "_s + reason.sliced(status.size());
    if (reason.startsWith("Unsupported WebSocket scheme"_L1))
        return u"The server's address does not begin with ws:// or wss://."_s;
    if (reason.contains("handshake"_L1))
        return u"What answers at the server's address is no coaching or transcription server (%1)."_s.arg(reason);
    if (reason == "Connection refused"_L1)
        return u"The server does not answer (Connection refused)."_s;
    if (reason == "Host not found"_L1)
        return u"The server was not found. Is the computer online? (Host not found)"_s;
    if (reason.endsWith("unreachable"_L1))
        return u"The server is out of reach. Is the computer online? (%1)"_s.arg(reason);
    return reason;
}

}  // namespace

/// The result of one send or ping, which comes later; awaited once.
class ClientSocket::Delivery {
public:
    explicit Delivery(Executor& executor) : m_executor(executor) {}

    void settle(Result result) {
        if (m_result)
            return;
        m_result = std::move(result);
        // Posted, since this is often called in the middle of a signal of the socket.
        if (m_waiter)
            m_executor.post([waiter = m_waiter] { waiter.resume(); });
    }

    /// Awaitable that keeps its delivery alive.
    struct Awaiter {
        std::shared_ptr<Delivery> delivery;

        [[nodiscard]] bool await_ready() const { return delivery->m_result.has_value(); }
        void await_suspend(std::coroutine_handle<> handle) const { delivery->m_waiter = handle; }
        [[nodiscard]] Result await_resume() const { return *delivery->m_result; }
    };

private:
    Executor& m_executor;
    std::optional<Result> m_result;
    std::coroutine_handle<> m_waiter;
};

struct ClientSocket::Ping {
    Ping(Executor& executor, Clock& clock, QByteArray sent, std::shared_ptr<Delivery> owed)
        : payload(std::move(sent)),
          delivery(std::move(owed)),
          deadline(executor, clock) {}

    QByteArray payload;
    std::shared_ptr<Delivery> delivery;
    Alarm deadline;
};

ClientSocket::ClientSocket(Executor& executor, Clock& clock)
    : m_executor(executor),
      m_clock(clock),
      m_deadline(executor, clock) {}

ClientSocket::~ClientSocket() {
    drop();
}

std::shared_ptr<ClientSocket> ClientSocket::open(Executor& executor, Clock& clock, const QUrl& url,
                                                 const Headers& headers) {
    Q_ASSERT(executor.isCurrent());
    const std::shared_ptr<ClientSocket> socket{new ClientSocket{executor, clock}};
    socket->start(url, headers);
    return socket;
}

void ClientSocket::start(const QUrl& url, const Headers& headers) {
    QNetworkRequest request{url};
    for (const auto& [name, value] : headers) {
        // Qt writes headers as they are: a token with a line break could add headers of its own.
        if (value.contains('\r') || value.contains('\n')) {
            finish({.isNormal = false, .error = TransportError{u"A header of the request holds a line break."_s}});
            return;
        }
        request.setRawHeader(name, value);
    }

    m_socket = std::make_unique<QWebSocket>();
    m_socket->setMaxAllowedIncomingFrameSize(maxMessageBytes);
    m_socket->setMaxAllowedIncomingMessageSize(maxMessageBytes);
    // One frame a message: cut in pieces, a message may be cut within a character, which not every
    // server (Qt's own neither) puts together again.
    m_socket->setOutgoingFrameSize(QWebSocket::maxOutgoingFrameSize());
    // Bounds what a server can make us hold: a frame is parsed when all of it is there, and a
    // handshake may be an endless line.
    constexpr qint64 frameHeaderRoom = 64 * 1024;
    m_socket->setReadBufferSize(qint64{maxMessageBytes} + frameHeaderRoom);

    QWebSocket* const socket = m_socket.get();
    QObject::connect(socket, &QWebSocket::connected, socket, [this] { onConnected(); });
    QObject::connect(socket, &QWebSocket::textMessageReceived, socket, [this](const QString& text) { onFrame(text); });
    QObject::connect(socket, &QWebSocket::binaryMessageReceived, socket,
                     [this](const QByteArray& bytes) { onFrame(bytes); });
    QObject::connect(socket, &QWebSocket::pong, socket,
                     [this](quint64 /*elapsed*/, const QByteArray& payload) { onPong(payload); });
    QObject::connect(socket, &QWebSocket::bytesWritten, socket, [this] {
        if (!m_isOpen)
            return;
        m_deadline.cancel();  // Something moved.
        settleWritten();
    });
    QObject::connect(socket, &QWebSocket::aboutToClose, socket, [this] { onAboutToClose(); });
    QObject::connect(socket, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error), socket,
                     [this](QAbstractSocket::SocketError error) {
                         m_hasErrorText = true;
                         onLost(error);
                     });
    QObject::connect(socket, &QWebSocket::disconnected, socket,
                     [this] { onLost(QAbstractSocket::RemoteHostClosedError); });

    m_deadline.set(timeout, [this] { finish({.isNormal = false, .error = timedOut()}); });
    socket->open(request);
}

void ClientSocket::read(Handlers handlers) {
    m_handlers = std::move(handlers);
    for (; !m_backlog.empty(); m_backlog.pop_front())
        hand(m_backlog.front());
    if (m_end)
        m_executor.post([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->reportEnd();
        });
}

QCoro::Task<ClientSocket::Result> ClientSocket::send(QString text) {
    const auto delivery = std::make_shared<Delivery>(m_executor);
    begin({.text = std::move(text), .delivery = delivery});
    // This object may be gone when the coroutine goes on.
    co_return co_await Delivery::Awaiter{delivery};
}

QCoro::Task<ClientSocket::Result> ClientSocket::ping() {
    const auto delivery = std::make_shared<Delivery>(m_executor);
    begin({.text = std::nullopt, .delivery = delivery});
    co_return co_await Delivery::Awaiter{delivery};
}

void ClientSocket::close() {
    if (!m_end) {
        m_end = SocketEnd{.isNormal = false, .error = Error::cancelled()};
        const bool wasOpen = std::exchange(m_isOpen, false);
        m_deadline.cancel();
        if (wasOpen)
            m_socket->close(QWebSocketProtocol::CloseCodeNormal);
        failWhatIsUnderWay();
        m_executor.post([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->reportEnd();
        });
    }
    release();
}

void ClientSocket::drop() {
    m_handlers.reset();
    m_isOpen = false;
    m_deadline.cancel();
    if (!m_end)
        m_end = SocketEnd{.isNormal = false, .error = Error::cancelled()};
    failWhatIsUnderWay();
    release();
}

void ClientSocket::onConnected() {
    if (m_end)
        return;
    m_isOpen = true;
    m_deadline.cancel();
    for (auto waiting = std::exchange(m_waiting, {}); !waiting.empty(); waiting.pop_front())
        begin(std::move(waiting.front()));
}

void ClientSocket::onFrame(Frame frame) {
    if (m_end)
        return;
    if (m_handlers)
        hand(frame);
    else
        m_backlog.push_back(std::move(frame));
}

void ClientSocket::onPong(const QByteArray& payload) {
    forgetPing(payload, {});
}

// Qt answers a close frame, or breaks off after a broken one, by itself and tells of it here; a connection
// that is lost without either only names an error or disconnects. Qt tells of any socket below that is
// closed too, so that before the handshake this means nothing.
void ClientSocket::onAboutToClose() {
    if (!m_isOpen)
        return;
    // As a number at once: a server's own code, 4000 for instance, is no value of Qt's enumeration.
    const int code = m_socket->closeCode();
    // The code of a close frame that holds none reads as 1000 too.
    if (code == QWebSocketProtocol::CloseCodeNormal) {
        finish({.isNormal = true, .error = TransportError{u"The server closed the connection."_s}});
        return;
    }
    QString text = u"The connection was closed with code %1"_s.arg(code);
    const QString reason = m_socket->closeReason();
    text += reason.isEmpty() ? u"."_s : u": "_s + reason;
    finish({.isNormal = false, .error = TransportError{std::move(text)}});
}

void ClientSocket::onLost(QAbstractSocket::SocketError error) {
    if (m_end)
        return;
    const auto lose = [this] {
        const QString reason = m_hasErrorText ? readable(m_socket->errorString()) : u"The connection was lost."_s;
        finish({.isNormal = false, .error = TransportError{reason}});
    };
    if (!m_isOpen && error != QAbstractSocket::RemoteHostClosedError) {
        lose();
        return;
    }
    if (std::exchange(m_isLost, true))
        return;
    // Qt looks at received bytes one turn after they came: frames, even a close frame, may still wait
    // when the loss is noticed. And a refused connection disconnects before it names its error.
    QMetaObject::invokeMethod(m_socket.get(), lose, Qt::QueuedConnection);
}

void ClientSocket::begin(Waiting item) {
    if (m_end)
        item.delivery->settle(std::unexpected(m_end->error));
    else if (!m_isOpen)
        m_waiting.push_back(std::move(item));
    else if (item.text)
        write(*item.text, item.delivery);
    else
        writePing(item.delivery);
}

void ClientSocket::write(const QString& text, const std::shared_ptr<Delivery>& delivery) {
    const qint64 before = m_socket->bytesToWrite();
    m_socket->sendTextMessage(text);
    m_bytesQueued += m_socket->bytesToWrite() - before;
    m_writing.push_back({.mark = m_bytesQueued, .delivery = delivery});
    // At once, so that the bytes don't wait for the event loop to come round.
    m_socket->flush();
    settleWritten();
}

void ClientSocket::writePing(const std::shared_ptr<Delivery>& delivery) {
    const QByteArray payload = QByteArray::number(++m_pingCount);
    Ping& ping = m_pings.emplace_back(m_executor, m_clock, payload, delivery);
    ping.deadline.set(timeout, [this, payload] { forgetPing(payload, std::unexpected(timedOut())); });
    m_socket->ping(payload);
    m_socket->flush();
}

void ClientSocket::forgetPing(const QByteArray& payload, const Result& result) {
    const auto isMeant = [&payload](const Ping& ping) { return ping.payload == payload; };
    const auto ping = std::ranges::find_if(m_pings, isMeant);
    if (ping == m_pings.end())
        return;
    ping->delivery->settle(result);
    m_pings.erase(ping);
}

void ClientSocket::settleWritten() {
    // A lost connection drops its buffer: what has not left by then never will.
    if (m_end || m_isLost || m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    // The buffer may hold pings and pongs too, which are not counted: a delivery is late by them at
    // most, never early.
    const qint64 left = m_socket->bytesToWrite();
    while (!m_writing.empty() && m_bytesQueued - m_writing.front().mark >= left) {
        m_writing.front().delivery->settle({});
        m_writing.pop_front();
    }
    watchForStandstill();
}

void ClientSocket::watchForStandstill() {
    if (m_writing.empty())
        m_deadline.cancel();
    else if (!m_deadline.isSet())
        m_deadline.set(timeout, [this] { finish({.isNormal = false, .error = timedOut()}); });
}

void ClientSocket::hand(const Frame& frame) {
    if (const auto* const text = std::get_if<QString>(&frame))
        m_handlers->text(*text);
    else
        m_handlers->binary(std::get<QByteArray>(frame));
}

void ClientSocket::finish(SocketEnd end) {
    if (m_end)
        return;
    m_end = std::move(end);
    m_isOpen = false;
    m_deadline.cancel();
    failWhatIsUnderWay();
    // Posted, since a signal of the socket is often under way.
    m_executor.post([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->release();
        self->reportEnd();
    });
}

void ClientSocket::failWhatIsUnderWay() {
    const auto fail = [this](const std::shared_ptr<Delivery>& delivery) {
        delivery->settle(std::unexpected(m_end->error));
    };
    for (const auto& item : std::exchange(m_waiting, {}))
        fail(item.delivery);
    for (const auto& item : std::exchange(m_writing, {}))
        fail(item.delivery);
    for (const auto& item : m_pings)
        fail(item.delivery);
    m_pings.clear();
}

void ClientSocket::release() {
    if (!m_socket)
        return;
    m_socket->disconnect();
    // Without this a socket that still stands would say goodbye with code 1001.
    m_socket->abort();
    m_socket.reset();
}

void ClientSocket::reportEnd() {
    if (!m_handlers)
        return;
    const auto handlers = std::exchange(m_handlers, std::nullopt);
    handlers->ended(*m_end);
}

}  // namespace corvellan

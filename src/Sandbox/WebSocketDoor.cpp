#include "WebSocketDoor.h"

#include <optional>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QWebSocket>

namespace corvellan::sandbox {

namespace {

constexpr qint64 longestHead = 16 * 1024;
constexpr int headLimitMilliseconds = 10'000;

QByteArray reason(int status) {
    switch (status) {
    case 400: return "Bad Request";
    case 401: return "Unauthorized";
    case 404: return "Not Found";
    case 426: return "Upgrade Required";
    default: return "Refused";
    }
}

void refuse(QTcpSocket* socket, int status) {
    socket->write("HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status) +
                  "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    socket->disconnectFromHost();
}

}  // namespace

WebSocketDoor::WebSocketDoor(QString name, Gate gate, Enter enter)
    : m_gate(std::move(gate)),
      m_enter(std::move(enter)),
      m_sockets(std::move(name), QWebSocketServer::NonSecureMode) {
    connect(&m_sockets, &QWebSocketServer::newConnection, this, [this] {
        while (m_sockets.hasPendingConnections()) {
            std::unique_ptr<QWebSocket> socket{m_sockets.nextPendingConnection()};
            socket->setParent(nullptr);
            m_enter(std::move(socket));
        }
    });
}

WebSocketDoor::~WebSocketDoor() = default;

void WebSocketDoor::watch(std::unique_ptr<QTcpServer> server) {
    connect(server.get(), &QTcpServer::newConnection, this, [this, raw = server.get()] {
        while (QTcpSocket* socket = raw->nextPendingConnection()) {
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { look(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            auto* limit = new QTimer{socket};
            limit->setSingleShot(true);
            connect(limit, &QTimer::timeout, socket, &QTcpSocket::abort);
            limit->start(headLimitMilliseconds);
            look(socket);
        }
    });
    m_servers.push_back(std::move(server));
}

void WebSocketDoor::look(QTcpSocket* socket) {
    // Only peeked at: the handshake that follows reads it again.
    const QByteArray bytes = socket->peek(longestHead);
    const bool isWhole = bytes.contains("\r\n\r\n");
    if (!isWhole && bytes.size() < longestHead)
        return;
    socket->disconnect(this);
    socket->disconnect(socket);
    qDeleteAll(socket->findChildren<QTimer*>());
    const auto head = isWhole ? parseRequestHead(bytes) : std::nullopt;
    int status = head ? m_gate(*head) : 400;
    if (status == 0 && head->headers.value("upgrade").toLower() != "websocket")
        status = 426;
    if (status != 0) {
        refuse(socket, status);
        return;
    }
    m_sockets.handleConnection(socket);
}

std::optional<RequestHead> parseRequestHead(const QByteArray& bytes) {
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return std::nullopt;
    auto lines = bytes.first(end).split('\n');
    const auto request = lines.takeFirst().trimmed().split(' ');
    if (request.size() != 3 || !request[2].startsWith("HTTP/1.") || !request[1].startsWith('/'))
        return std::nullopt;
    RequestHead head{.method = request[0], .target = QUrl::fromEncoded(request[1], QUrl::StrictMode), .headers = {}};
    if (!head.target.isValid())
        return std::nullopt;
    for (const auto& line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0)
            return std::nullopt;
        head.headers.insert(line.first(colon).trimmed().toLower(), line.sliced(colon + 1).trimmed());
    }
    return head;
}

}  // namespace corvellan::sandbox

#pragma once

#include <memory>
#include <QList>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>
#include <vector>

namespace corvellan::test {

/// A WebSocket server on 127.0.0.1 that keeps what it hears and says what a test tells it to. It knows
/// nothing of the program's own encoders, and can't tell how a client went: Qt reads code 1000 after any
/// end, and may overlook a close frame (see `RawServer`). Lives on the main thread.
class LoopbackServer {
public:
    /// What one client did, from its upgrade on.
    struct Client {
        std::unique_ptr<QWebSocket> socket;
        QNetworkRequest request;
        QStringList texts;
        QList<QByteArray> binaries;
        bool isGone = false;
    };

    explicit LoopbackServer(QWebSocketServer::SslMode mode = QWebSocketServer::NonSecureMode)
        : m_server(QString{}, mode) {
        QObject::connect(&m_server, &QWebSocketServer::newConnection, &m_server, [this] { accept(); });
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost); }
    /// Takes no connection from now on; those that stand stay.
    void stopListening() { m_server.close(); }
    QWebSocketServer& server() { return m_server; }

    [[nodiscard]] QUrl url(const QString& pathAndQuery = QStringLiteral("/")) const {
        const bool isSecure = m_server.secureMode() == QWebSocketServer::SecureMode;
        return QUrl{QStringLiteral("%1://127.0.0.1:%2%3")
                        .arg(isSecure ? QStringLiteral("wss") : QStringLiteral("ws"))
                        .arg(m_server.serverPort())
                        .arg(pathAndQuery)};
    }

    [[nodiscard]] std::size_t count() const { return m_clients.size(); }
    [[nodiscard]] Client& client(std::size_t index) { return *m_clients.at(index); }
    [[nodiscard]] Client& last() { return *m_clients.back(); }
    /// What the newest client has sent; empty without one.
    [[nodiscard]] QStringList texts() const { return m_clients.empty() ? QStringList{} : m_clients.back()->texts; }

    void say(const QString& text) { last().socket->sendTextMessage(text); }
    void sayBinary(const QByteArray& bytes) { last().socket->sendBinaryMessage(bytes); }
    void close(QWebSocketProtocol::CloseCode code = QWebSocketProtocol::CloseCodeNormal, const QString& reason = {}) {
        last().socket->close(code, reason);
    }

private:
    void accept() {
        while (QWebSocket* const socket = m_server.nextPendingConnection()) {
            Client& client = *m_clients.emplace_back(std::make_unique<Client>());
            client.socket.reset(socket);
            client.request = socket->request();
            QObject::connect(socket, &QWebSocket::textMessageReceived, socket,
                             [&client](const QString& text) { client.texts.append(text); });
            QObject::connect(socket, &QWebSocket::binaryMessageReceived, socket,
                             [&client](const QByteArray& bytes) { client.binaries.append(bytes); });
            QObject::connect(socket, &QWebSocket::disconnected, socket, [&client] { client.isGone = true; });
        }
    }

    QWebSocketServer m_server;
    std::vector<std::unique_ptr<Client>> m_clients;
};

}  // namespace corvellan::test

#pragma once

#include <functional>
#include <memory>
#include <QHash>
#include <QObject>
#include <QUrl>
#include <QWebSocketServer>

class QTcpSocket;
class QTcpServer;
class QWebSocket;

namespace corvellan::sandbox {

/// The head of an HTTP request, as far as a door looks at it.
struct RequestHead {
    QByteArray method;
    QUrl target;                            ///< Path and query.
    QHash<QByteArray, QByteArray> headers;  ///< Names in lower case.
};

/// Lets WebSocket clients in that a gate approves of, and refuses the others with an HTTP status before
/// the handshake, as real servers do. One thread.
class WebSocketDoor : public QObject {
    Q_OBJECT
public:
    /// The HTTP status to refuse with. 0 lets the client in.
    using Gate = std::function<int(const RequestHead&)>;
    using Enter = std::function<void(std::unique_ptr<QWebSocket>)>;

    WebSocketDoor(QString name, Gate gate, Enter enter);
    ~WebSocketDoor() override;

    /// Takes the clients of this server, which it owns from now on.
    void watch(std::unique_ptr<QTcpServer> server);

private:
    void look(QTcpSocket* socket);

    Gate m_gate;
    Enter m_enter;
    QWebSocketServer m_sockets;
    std::vector<std::unique_ptr<QTcpServer>> m_servers;
};

/// Reads the head of a request that ends in an empty line. Empty for what is none.
[[nodiscard]] std::optional<RequestHead> parseRequestHead(const QByteArray& bytes);

}  // namespace corvellan::sandbox

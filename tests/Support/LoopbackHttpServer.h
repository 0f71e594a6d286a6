#pragma once

#include <functional>
#include <memory>
#include <QByteArray>
#include <QList>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <utility>
#include <vector>

#include "LoopbackCertificate.h"

namespace corvellan::test {

/// An HTTP server on 127.0.0.1 that keeps what it is asked and answers as a test prescribes, over TLS with
/// the loopback certificate if asked for. For what no server should do see `RawServer`. Lives on the main
/// thread.
class LoopbackHttpServer {
public:
    enum class Mode { plain, tls };

    struct Request {
        QByteArray method;
        QByteArray target;  ///< Path and query, as they came.
        QList<std::pair<QByteArray, QByteArray>> headers;
        QByteArray body;

        /// Empty when it is missing; several of one name are joined.
        [[nodiscard]] QByteArray header(QByteArrayView name) const {
            QByteArray found;
            for (const auto& [key, value] : headers)
                if (key.compare(name, Qt::CaseInsensitive) == 0)
                    found += found.isEmpty() ? value : ", " + value;
            return found;
        }
    };

    explicit LoopbackHttpServer(Mode mode = Mode::plain) {
        if (mode == Mode::tls) {
            auto secure = std::make_unique<QSslServer>();
            secure->setSslConfiguration(loopbackTls());
            m_server = std::move(secure);
        } else {
            m_server = std::make_unique<QTcpServer>();
        }
        m_scheme = mode == Mode::tls ? QStringLiteral("https") : QStringLiteral("http");
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] { accept(); });
    }

    bool listen(const QHostAddress& address = QHostAddress::LocalHost) { return m_server->listen(address); }
    /// "http://127.0.0.1:1234", without a path.
    [[nodiscard]] QString base() const {
        return QStringLiteral("%1://%2:%3")
            .arg(m_scheme, m_server->serverAddress().toString())
            .arg(m_server->serverPort());
    }
    [[nodiscard]] QUrl url(const QString& target = QStringLiteral("/")) const { return QUrl{base() + target}; }

    /// The bytes that answer a request; none is silence. By itself everything is found and empty.
    std::function<QByteArray(const Request&)> respond = [](const Request&) { return reply(200); };

    [[nodiscard]] static QByteArray reply(int status, const QByteArray& body = {}, const QByteArray& headers = {}) {
        return "HTTP/1.1 " + QByteArray::number(status) +
               " Status\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body;
    }

    /// From now on the same answer to all.
    void answer(int status, const QByteArray& body = {}) {
        respond = [bytes = reply(status, body)](const Request&) { return bytes; };
    }

    /// Answers, late, what was met with silence.
    void answerHeld(const QByteArray& bytes) {
        for (QTcpSocket* const socket : std::exchange(m_held, {}))
            socket->write(bytes);
    }

    QList<Request> requests;

private:
    struct Client {
        std::unique_ptr<QTcpSocket> socket;
        QByteArray received;
    };

    void accept() {
        while (QTcpSocket* const socket = m_server->nextPendingConnection()) {
            auto& client = *m_clients.emplace_back(std::make_unique<Client>());
            client.socket.reset(socket);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, &client] { read(client); });
            read(client);
        }
    }

    void read(Client& client) {
        client.received += client.socket->readAll();
        while (takeRequest(client)) {
        }
    }

    bool takeRequest(Client& client) {
        const qsizetype end = client.received.indexOf("\r\n\r\n");
        if (end < 0)
            return false;
        Request request;
        const auto lines = client.received.first(end).split('\n');
        const auto words = lines.first().trimmed().split(' ');
        request.method = words.value(0);
        request.target = words.value(1);
        for (const auto& line : lines.sliced(1)) {
            const qsizetype colon = line.indexOf(':');
            request.headers.append({line.first(colon), line.sliced(colon + 1).trimmed()});
        }
        const qsizetype size = request.header("Content-Length").toLongLong();
        constexpr qsizetype separator = 4;
        if (client.received.size() < end + separator + size)
            return false;
        request.body = client.received.sliced(end + separator, size);
        client.received.remove(0, end + separator + size);
        requests.append(request);
        const QByteArray bytes = respond(request);
        if (bytes.isEmpty())
            m_held.emplace_back(client.socket.get());
        client.socket->write(bytes);
        client.socket->flush();
        return true;
    }

    std::unique_ptr<QTcpServer> m_server;
    QString m_scheme;
    std::vector<std::unique_ptr<Client>> m_clients;
    std::vector<QTcpSocket*> m_held;  ///< Of the clients above, which stay.
};

}  // namespace corvellan::test

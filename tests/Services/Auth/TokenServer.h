#pragma once

#include <functional>
#include <memory>
#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <utility>
#include <vector>

namespace corvellan::test {

/// A token endpoint on 127.0.0.1 that answers what a test tells it to, one answer a request in order, and
/// keeps the requests. Knows nothing of tokens. Lives on the main thread.
class TokenServer {
public:
    struct Request {
        QByteArray line;  ///< "POST /api/oauth/token HTTP/1.1"
        QByteArray head;
        QByteArray body;
    };
    /// Sends what it likes to a client whose request has come whole; an empty one keeps it waiting.
    using Answer = std::function<void(QTcpSocket&)>;

    TokenServer() {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket* const socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
        });
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost); }
    void stopListening() { m_server.close(); }
    [[nodiscard]] QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()); }

    static Answer plain(const QByteArray& status, const QByteArray& body) {
        return [=](QTcpSocket& socket) {
            socket.write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                         "\r\nConnection: close\r\n\r\n" + body);
        };
    }
    void answer(const QByteArray& body, const QByteArray& status = "200 OK") {
        m_answers.push_back(plain(status, body));
    }
    void answerWith(Answer answer) { m_answers.push_back(std::move(answer)); }
    /// The request that comes next waits until `release`.
    void hold() { m_answers.push_back({}); }
    /// Answers the oldest request that waits.
    void release(const QByteArray& body, const QByteArray& status = "200 OK") {
        plain(status, body)(*m_held.takeFirst());
    }

    [[nodiscard]] const std::vector<Request>& requests() const { return m_requests; }
    [[nodiscard]] std::size_t count() const { return m_requests.size(); }
    [[nodiscard]] QByteArray lastBody() const { return m_requests.empty() ? QByteArray{} : m_requests.back().body; }

private:
    void read(QTcpSocket& socket) {
        const QByteArray bytes = socket.property("received").toByteArray() + socket.readAll();
        socket.setProperty("received", bytes);
        const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        const QByteArray head = bytes.first(headEnd + 2);
        const qsizetype lengthAt = head.toLower().indexOf("content-length:");
        const qsizetype length =
            lengthAt < 0 ? 0 : head.sliced(lengthAt + 15, head.indexOf('\r', lengthAt) - lengthAt - 15).toLongLong();
        if (bytes.size() < headEnd + 4 + length)
            return;
        socket.setProperty("received", {});
        m_requests.push_back({head.first(head.indexOf("\r\n")), head, bytes.sliced(headEnd + 4, length)});
        const auto answer = m_answers.empty() ? plain("500 No Answer", "unexpected") : m_answers.front();
        if (!m_answers.empty())
            m_answers.erase(m_answers.begin());
        if (answer)
            answer(socket);
        else
            m_held.append(&socket);
    }

    QTcpServer m_server;
    std::vector<Answer> m_answers;
    std::vector<Request> m_requests;
    QList<QTcpSocket*> m_held;
};

}  // namespace corvellan::test

#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <functional>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QCryptographicHash>
#include <QList>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <utility>

namespace corvellan::test {

/// A TCP server on 127.0.0.1 for one client, which speaks WebSocket by hand: for what a well-behaved
/// server never does, and to see frames as they come. Lives on the main thread.
class RawServer {
public:
    struct Frame {
        int opcode = 0;
        QByteArray payload;
    };
    static constexpr int textOpcode = 1;
    static constexpr int closeOpcode = 8;
    static constexpr int pingOpcode = 9;
    static constexpr int pongOpcode = 10;

    /// What to do with the request once all of it is there; by itself it is upgraded.
    std::function<void(RawServer&)> onRequest = [](RawServer& server) { server.upgrade(); };
    /// Pings are answered.
    bool answersPings = true;

    RawServer() {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            m_client.reset(m_server.nextPendingConnection());
            QObject::connect(m_client.get(), &QTcpSocket::readyRead, m_client.get(), [this] { read(); });
            QObject::connect(m_client.get(), &QTcpSocket::disconnected, m_client.get(), [this] { m_isGone = true; });
        });
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost); }
    [[nodiscard]] QUrl url(const QString& scheme = QStringLiteral("ws")) const {
        return QUrl{QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(m_server.serverPort())};
    }

    [[nodiscard]] bool hasClient() const { return m_client != nullptr; }
    [[nodiscard]] bool isGone() const { return m_isGone; }
    [[nodiscard]] QByteArray request() const { return m_request; }
    [[nodiscard]] QList<Frame> frames() const { return m_frames; }
    [[nodiscard]] int count(int opcode) const {
        int found = 0;
        for (const Frame& frame : m_frames)
            found += frame.opcode == opcode ? 1 : 0;
        return found;
    }
    /// The texts that came as one frame each.
    [[nodiscard]] QStringList texts() const {
        QStringList texts;
        for (const Frame& frame : m_frames)
            if (frame.opcode == textOpcode)
                texts.append(QString::fromUtf8(frame.payload));
        return texts;
    }
    /// What the close frame held; absent as long as none has come.
    [[nodiscard]] std::optional<QByteArray> closePayload() const {
        for (const Frame& frame : m_frames)
            if (frame.opcode == closeOpcode)
                return frame.payload;
        return std::nullopt;
    }
    /// Code 1000 and no reason.
    static inline const QByteArray normalClose{"\x03\xe8"};
    [[nodiscard]] qint64 bytesToWrite() const { return m_client->bytesToWrite(); }

    void write(const QByteArray& bytes) {
        m_client->write(bytes);
        m_client->flush();
    }
    /// The reply that opens the connection, for those who send more in the same breath.
    [[nodiscard]] QByteArray upgradeReply() const {
        const QByteArray name = "sec-websocket-key: ";
        const qsizetype start = m_request.toLower().indexOf(name) + name.size();
        const QByteArray key = m_request.sliced(start, m_request.indexOf("\r\n", start) - start);
        const QByteArray accept =
            QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1);
        return "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
               "Sec-WebSocket-Accept: " +
               accept.toBase64() + "\r\n\r\n";
    }
    void upgrade() {
        m_isUpgraded = true;
        write(upgradeReply());
    }
    /// An unmasked frame with a payload below 126 bytes.
    [[nodiscard]] static QByteArray frame(int opcode, const QByteArray& payload) {
        QByteArray bytes;
        bytes.append(static_cast<char>(0x80 | opcode));
        bytes.append(static_cast<char>(payload.size()));
        return bytes + payload;
    }
    /// The end of the stream, without a close frame.
    void finish() { m_client->disconnectFromHost(); }
    /// A reset in place of an end.
    void reset() {
        const linger now{.l_onoff = 1, .l_linger = 0};
        ::setsockopt(static_cast<int>(m_client->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
        m_client->abort();
    }
    /// Reads nothing more, as a server that hangs.
    void stopReading() { m_client->setReadBufferSize(1); }
    /// Reads on and keeps only how much came.
    void resumeReading() {
        m_isCounting = true;
        m_client->setReadBufferSize(0);
        read();
    }
    [[nodiscard]] qint64 bytesCounted() const { return m_bytesCounted; }

private:
    void read() {
        if (m_isCounting) {
            m_bytesCounted += m_client->readAll().size();
            return;
        }
        // A limit of one byte means that nothing is to be read.
        if (m_client->readBufferSize() == 1)
            return;
        m_received += m_client->readAll();
        if (m_request.isEmpty()) {
            const qsizetype end = m_received.indexOf("\r\n\r\n");
            if (end < 0)
                return;
            m_request = m_received.first(end + 4);
            m_received.remove(0, end + 4);
            onRequest(*this);
        }
        if (m_isUpgraded)
            while (takeFrame()) {
            }
    }

    bool takeFrame() {
        const auto byte = [this](qsizetype at) { return static_cast<quint8>(m_received.at(at)); };
        if (m_received.size() < 2)
            return false;
        const int opcode = byte(0) & 0x0F;
        const bool isMasked = (byte(1) & 0x80) != 0;
        qsizetype size = byte(1) & 0x7F;
        qsizetype at = 2;
        const int extraBytes = size == 126 ? 2 : size == 127 ? 8 : 0;
        if (m_received.size() < at + extraBytes)
            return false;
        if (extraBytes > 0)
            size = 0;
        for (int i = 0; i < extraBytes; ++i)
            size = size << 8 | byte(at++);
        const QByteArray mask = isMasked ? m_received.sliced(at).first(4) : QByteArray{};
        at += isMasked ? 4 : 0;
        if (m_received.size() < at + size)
            return false;
        QByteArray payload = m_received.sliced(at, size);
        for (qsizetype i = 0; isMasked && i < payload.size(); ++i)
            payload[i] = static_cast<char>(payload[i] ^ mask[i % 4]);
        m_received.remove(0, at + size);
        m_frames.append({opcode, payload});
        if (opcode == pingOpcode && answersPings)
            write(frame(pongOpcode, payload));
        return true;
    }

    QTcpServer m_server;
    std::unique_ptr<QTcpSocket> m_client;
    QByteArray m_received;
    QByteArray m_request;
    QList<Frame> m_frames;
    bool m_isUpgraded = false;
    bool m_isCounting = false;
    qint64 m_bytesCounted = 0;
    bool m_isGone = false;
};

}  // namespace corvellan::test

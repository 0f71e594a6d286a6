#include "WireProxy.h"

#include <sys/socket.h>
#include <QTcpServer>
#include <QTcpSocket>

#include "EventLog.h"
#include "Later.h"
#include "Listening.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

struct KindRow {
    QLatin1StringView name;
    WireFault::Kind kind;
    qint64 usualAmount;
    QLatin1StringView meaning;
};

// A WebSocket's handshake is some 150 bytes, so that the faults fall into the talk behind it.
constexpr KindRow kindRows[] = {
    {QLatin1StringView{"drop"}, WireFault::Kind::drop, 2000,
     QLatin1StringView{"reset after N bytes towards the client"}},
    {QLatin1StringView{"delay"}, WireFault::Kind::delay, 200, QLatin1StringView{"everything N ms late, both ways"}},
    {QLatin1StringView{"garble"}, WireFault::Kind::garble, 2000,
     QLatin1StringView{"all bytes inverted after N bytes towards the client"}},
    {QLatin1StringView{"half-open"}, WireFault::Kind::halfOpen, 2000,
     QLatin1StringView{"nothing passes after N bytes towards the client, no close"}},
};

/// Makes the close a reset: the other end learns of it at once and without ceremony.
void reset(QTcpSocket* socket) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket->abort();
}

/// One client and its connection to the server.
class WirePair : public QObject {
public:
    WirePair(WireFault fault, QTcpSocket* client, quint16 targetPort, Clock& clock, const EventLog& log,
             QObject* parent)
        : QObject(parent),
          m_fault(fault),
          m_client(client),
          m_server(new QTcpSocket{this}),
          m_clock(clock),
          m_log(log) {
        client->setParent(this);
        connect(client, &QTcpSocket::readyRead, this, [this] { pass(m_client, m_server); });
        connect(m_server, &QTcpSocket::readyRead, this, [this] { pass(m_server, m_client); });
        connect(client, &QTcpSocket::disconnected, this, [this] { hangUp(m_client, m_server); });
        connect(m_server, &QTcpSocket::disconnected, this, [this] { hangUp(m_server, m_client); });
        connect(m_server, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
            if (error == QAbstractSocket::ConnectionRefusedError)
                end();
        });
        m_server->connectToHost(client->localAddress(), targetPort);
    }

private:
    void pass(QTcpSocket* from, QTcpSocket* to) {
        QByteArray bytes = from->readAll();
        if (m_isDead)
            return;
        const qint64 before = m_towardsClient;
        if (to == m_client)
            m_towardsClient += bytes.size();
        const qint64 over = m_towardsClient - m_fault.amount;
        switch (m_fault.kind) {
        case WireFault::Kind::drop:
            if (over >= 0) {
                to->write(bytes.chopped(std::min<qint64>(over, bytes.size())));
                to->flush();
                m_log.event(u"proxy"_s, u"connection dropped"_s);
                reset(m_client);
                reset(m_server);
                return;
            }
            break;
        case WireFault::Kind::delay:
            later(m_clock, std::chrono::milliseconds{m_fault.amount}, to, [to, bytes] { to->write(bytes); });
            return;
        case WireFault::Kind::garble:
            if (to == m_client) {
                if (over > 0 && before <= m_fault.amount)
                    m_log.event(u"proxy"_s, u"bytes are garbled from here on"_s);
                for (qint64 i = std::max<qint64>(0, m_fault.amount - before); i < bytes.size(); ++i)
                    bytes[i] = static_cast<char>(~bytes[i]);
            }
            break;
        case WireFault::Kind::halfOpen:
            if (over >= 0) {
                to->write(bytes.chopped(std::min<qint64>(over, bytes.size())));
                m_isDead = true;
                m_log.event(u"proxy"_s, u"nothing passes from here on"_s);
                return;
            }
            break;
        }
        to->write(bytes);
    }

    void hangUp(QTcpSocket* gone, QTcpSocket* left) {
        if (m_isDead && gone == m_server)
            return;  // The client must not learn of it.
        if (m_fault.kind == WireFault::Kind::delay) {
            later(m_clock, std::chrono::milliseconds{m_fault.amount}, this, [this, left] { finish(left); });
            return;
        }
        finish(left);
    }

    void finish(QTcpSocket* left) {
        if (left->state() == QAbstractSocket::UnconnectedState)
            deleteLater();
        else
            left->disconnectFromHost();  // Comes back here through `hangUp`.
    }

    void end() {
        m_client->abort();
        deleteLater();
    }

    WireFault m_fault;
    QTcpSocket* m_client;
    QTcpSocket* m_server;
    Clock& m_clock;
    const EventLog& m_log;
    qint64 m_towardsClient = 0;
    bool m_isDead = false;
};

}  // namespace

std::expected<WireFault, QString> WireFault::parse(const QString& text) {
    const QString name = text.section(u':', 0, 0);
    for (const auto& row : kindRows) {
        if (name != row.name)
            continue;
        WireFault fault{.kind = row.kind, .amount = row.usualAmount};
        if (text.contains(u':')) {
            constexpr qint64 most = 1'000'000'000;
            bool isNumber = false;
            fault.amount = text.section(u':', 1).toLongLong(&isNumber);
            if (!isNumber || fault.amount < 0 || fault.amount > most)
                return std::unexpected(u"\"%1\" is no number for %2"_s.arg(text.section(u':', 1), name));
        }
        return fault;
    }
    return std::unexpected(u"there is no proxy mode \"%1\""_s.arg(name));
}

QStringList WireFault::help() {
    QStringList lines;
    for (const auto& row : kindRows)
        lines.append((QString{row.name} + u"[:N]"_s).leftJustified(26) + row.meaning + u" (%1)"_s.arg(row.usualAmount));
    return lines;
}

WireProxy::WireProxy(WireFault fault, quint16 targetPort, Clock& clock, const EventLog& log)
    : m_fault(fault),
      m_targetPort(targetPort),
      m_clock(clock),
      m_log(log) {}

WireProxy::~WireProxy() = default;

std::expected<quint16, Error> WireProxy::listen(const QList<QHostAddress>& addresses, quint16 port) {
    std::vector<QTcpServer*> raw;
    for (qsizetype i = 0; i < addresses.size(); ++i) {
        auto* server = m_servers.emplace_back(std::make_unique<QTcpServer>()).get();
        connect(server, &QTcpServer::newConnection, this, [this, server] {
            while (QTcpSocket* client = server->nextPendingConnection())
                enter(client);
        });
        raw.push_back(server);
    }
    return listenOnOnePort(raw, addresses, port);
}

void WireProxy::enter(QTcpSocket* client) {
    new WirePair{m_fault, client, m_targetPort, m_clock, m_log, this};
}

}  // namespace corvellan::sandbox

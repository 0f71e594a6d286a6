#pragma once

#include <expected>
#include <memory>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

#include "Base/Error.h"

class QTcpServer;
class QTcpSocket;

namespace corvellan {
class Clock;
}

namespace corvellan::sandbox {

class EventLog;

/// What a proxy does to the bytes between a client and a server.
struct WireFault {
    enum class Kind {
        drop,      ///< After `amount` bytes towards the client the connection is reset.
        delay,     ///< Every piece arrives `amount` milliseconds late, in both directions.
        garble,    ///< After `amount` bytes towards the client, all further ones are inverted.
        halfOpen,  ///< After `amount` bytes towards the client nothing passes any more, and nobody is told.
    };

    Kind kind = Kind::drop;
    qint64 amount = 0;

    bool operator==(const WireFault&) const = default;

    /// Reads "delay:200", "half-open". The error tells what is wrong.
    [[nodiscard]] static std::expected<WireFault, QString> parse(const QString& text);
    /// "name  what it does", for the help.
    [[nodiscard]] static QStringList help();
};

/// A raw TCP proxy that plays a fault of the wire. It knows nothing of what it carries. Each of its
/// addresses leads to the same address at the target's port. One thread with an executor.
class WireProxy : public QObject {
    Q_OBJECT
public:
    WireProxy(WireFault fault, quint16 targetPort, Clock& clock, const EventLog& log);
    ~WireProxy() override;

    /// \param port 0 takes a free one. Returns the port.
    [[nodiscard]] std::expected<quint16, Error> listen(const QList<QHostAddress>& addresses, quint16 port);

private:
    void enter(QTcpSocket* client);

    WireFault m_fault;
    quint16 m_targetPort;
    Clock& m_clock;
    const EventLog& m_log;
    std::vector<std::unique_ptr<QTcpServer>> m_servers;
};

}  // namespace corvellan::sandbox

#pragma once

#include <chrono>
#include <expected>
#include <memory>
#include <optional>
#include <QHostAddress>
#include <QObject>

#include "Admission.h"
#include "Base/Error.h"
#include "BuyerBook.h"
#include "CallBook.h"
#include "Faults.h"
#include "Models/Protocol.h"
#include "TokenBook.h"

class QHttpServer;

namespace corvellan {
class Clock;
}

namespace corvellan::sandbox {

class EventLog;

struct CoachSettings {
    Faults faults;
    /// From the summary to the close with code 1000.
    std::chrono::milliseconds closeAfter{500};
    /// Where clients reach the transcription provider, at the host under which they reach the coach.
    quint16 providerPort = 0;
    /// What the buyers' answers follow from; another one each session unless given.
    std::optional<std::uint32_t> buyerSeed = std::nullopt;
};

/// What the coaching server's connections share.
struct CoachContext {
    CoachSettings settings;
    TokenBook& tokens;
    CallBook& calls;
    const BuyerBook& buyers;
    const Admission& admission;
    const EventLog& log;
    Clock& clock;
};

/// The stand-in for the coaching server: WebSocket path "/ws" and the REST side on one port. Runs on a
/// thread with an executor.
class CoachServer : public QObject {
    Q_OBJECT
public:
    explicit CoachServer(CoachContext context);
    ~CoachServer() override;

    /// \param port 0 takes a free one. Returns the port.
    [[nodiscard]] std::expected<quint16, Error> listen(const QList<QHostAddress>& addresses, quint16 port);

    void setProviderPort(quint16 port) { m_context.settings.providerPort = port; }

    /// Tells every client that only listens; how many there are.
    int tellListeners(const ServerMsg& message);

    /// For routes beside "/ws".
    [[nodiscard]] QHttpServer& http() { return *m_http; }

private:
    void enter();

    CoachContext m_context;
    std::unique_ptr<QHttpServer> m_http;
    int m_connections = 0;
};

}  // namespace corvellan::sandbox

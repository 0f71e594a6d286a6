#pragma once

#include <expected>
#include <QCoroTask>
#include <QUrl>

#include "Base/AsyncStream.h"
#include "Base/Error.h"
#include "Models/Protocol.h"

namespace corvellan {

struct WebSocketError {
    enum class Kind { notConnected, encodingFailed };
    Kind kind = Kind::notConnected;

    [[nodiscard]] QString errorDescription() const {
        switch (kind) {
        case Kind::notConnected: return QStringLiteral("WebSocket not connected");
        case Kind::encodingFailed: return QStringLiteral("Failed to encode message");
        }
        Q_UNREACHABLE();
    }
};

/// A message as it came from the coaching server.
struct ReceivedServerMsg {
    ServerMsg message;
    /// When its frame arrived at the socket, for the latency figures.
    MonotonicTime arrivedAt{};
};

/// The one connection to the coaching server. Work runs on the service's own executor; callers are
/// resumed on theirs.
class WebSocketServiceProtocol {
public:
    virtual ~WebSocketServiceProtocol() = default;

    /// Begins to open the socket and returns at once: a refused connection shows in the first `send`
    /// and as the stream's error. A connection that stands is closed and replaced.
    virtual QCoro::Task<std::expected<void, Error>> connect(QUrl url) = 0;

    /// One JSON text frame. Waits for the handshake and until the bytes are written, or fails.
    virtual QCoro::Task<std::expected<void, Error>> send(ClientMsg message) = 0;

    /// The stream of the current connection; every call gives the same one. Without a connection, a
    /// stream that fails with `notConnected`.
    [[nodiscard]] virtual AsyncStream<ReceivedServerMsg> receive() = 0;

    /// Closes with 1000 and ends the stream without an error. Harmless when idle.
    virtual QCoro::Task<void> disconnect() = 0;
};

}  // namespace corvellan

#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "Alarm.h"
#include "Base/Diagnostics.h"
#include "Base/Log.h"
#include "Protocols/WebSocketServiceProtocol.h"

namespace corvellan {

class ClientSocket;

/// The connection to the coaching server. See the contract for what its callers need.
///
/// Never reconnects: an error ends the stream and leaves a dead connection behind, in which sends
/// fail with the transport's error until `disconnect`.
class WebSocketService final : public WebSocketServiceProtocol {
public:
    /// All of them must outlive the service; `executor` runs on a thread with a Qt event loop.
    WebSocketService(Executor& executor, Clock& clock, Diagnostics& diagnostics);
    /// A connection that still stands is lost without a close frame, and the stream ends.
    ~WebSocketService() override;
    WebSocketService(const WebSocketService&) = delete;
    WebSocketService& operator=(const WebSocketService&) = delete;

    QCoro::Task<std::expected<void, Error>> connect(QUrl url) override;
    QCoro::Task<std::expected<void, Error>> send(ClientMsg message) override;
    /// Any thread.
    [[nodiscard]] AsyncStream<ReceivedServerMsg> receive() override;
    QCoro::Task<void> disconnect() override;

private:
    using MessageStream = AsyncStream<ReceivedServerMsg>;

    void connectInternal(const QUrl& url);
    QCoro::Task<std::expected<void, Error>> sendInternal(ClientMsg message);
    void disconnectInternal();
    void closeTask();
    void finishStream();
    void readLoop(const std::shared_ptr<ClientSocket>& socket, const MessageStream::Producer& continuation);
    void pingLater();

    Executor& m_executor;
    Clock& m_clock;
    Diagnostics& m_diagnostics;
    const Logger m_logger{"WebSocket"};

    std::shared_ptr<ClientSocket> m_task;
    std::optional<MessageStream::Producer> m_messageContinuation;
    Alarm m_pings;

    /// Only for `receive`, which does not wait for the executor.
    std::mutex m_messageStreamMutex;
    std::optional<MessageStream> m_messageStream;
};

}  // namespace corvellan

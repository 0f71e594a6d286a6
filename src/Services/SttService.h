#pragma once

#include <memory>
#include <optional>
#include <QByteArray>
#include <vector>

#include "Base/Diagnostics.h"
#include "Base/Log.h"
#include "Protocols/SttServiceProtocol.h"

namespace corvellan {

class ClientSocket;
struct SocketEnd;

/// The realtime transcription client of one side. See the contract for what its callers need.
///
/// Audio leaves in batches of the last 100 ms or more. Time alone decides, and it is looked at only
/// when a chunk arrives: no timer, no threshold of size.
class SttService final : public SttServiceProtocol {
public:
    /// All of them must outlive the service; `executor` runs on a thread with a Qt event loop.
    /// \param defaultRealtimeUrl the provider's address for when the coaching server names none.
    SttService(Executor& executor, Clock& clock, Diagnostics::Side& diagnostics, QString defaultRealtimeUrl);
    /// A connection that still stands is lost without a close frame, and the event stream ends.
    ~SttService() override;
    SttService(const SttService&) = delete;
    SttService& operator=(const SttService&) = delete;

    QCoro::Task<void> connect(QString ephemeralToken, std::optional<QString> realtimeUrl) override;
    QCoro::Task<void> sendAudio(AudioChunk chunk) override;
    [[nodiscard]] AsyncStream<SttEvent> events() override;
    QCoro::Task<void> disconnect() override;

private:
    using EventContinuation = AsyncStream<SttEvent>::Producer;

    QCoro::Task<void> connectInternal(QString ephemeralToken, std::optional<QString> realtimeUrl);
    QCoro::Task<void> sendAudioInternal(AudioChunk chunk);
    QCoro::Task<void> disconnectInternal();
    QCoro::Task<void> sendPendingAudio(MonotonicTime deliveredAt);
    void setEventContinuation(EventContinuation continuation);
    void readLoop(const std::shared_ptr<ClientSocket>& socket);
    void handleMessage(const QString& text);
    void emitEvent(SttEvent event);
    void readEnded(const ClientSocket* socket, const SocketEnd& end);
    void retire(std::shared_ptr<ClientSocket> socket);

    Executor& m_executor;
    Clock& m_clock;
    Diagnostics::Side& m_diagnostics;
    const QString m_defaultRealtimeUrl;
    const Logger m_logger{"STT"};

    std::shared_ptr<ClientSocket> m_task;
    std::optional<EventContinuation> m_eventContinuation;
    QByteArray m_pendingAudio;
    /// From construction on, not from `connect`.
    MonotonicTime m_lastSendTime;
    /// Closed sockets whose readers have not heard of it yet.
    std::vector<std::shared_ptr<ClientSocket>> m_retired;
    /// Coroutines that waited ask whether the service is still there.
    std::shared_ptr<int> m_life = std::make_shared<int>();
};

}  // namespace corvellan

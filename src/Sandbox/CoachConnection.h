#pragma once

#include <memory>
#include <optional>
#include <QObject>

#include "Coach.h"
#include "CoachServer.h"
#include "Models/Protocol.h"
#include "Training.h"

class QWebSocket;

namespace corvellan::sandbox {

/// One WebSocket to the coaching server: a session, or a client that only listens. Lives until its socket
/// has gone, which `closed` tells. One thread.
class CoachConnection : public QObject {
    Q_OBJECT
public:
    /// \param number tells connections apart in the log.
    CoachConnection(std::unique_ptr<QWebSocket> socket, int number, const CoachContext& context, QObject* parent);
    ~CoachConnection() override;

    /// No session runs or ran on it.
    [[nodiscard]] bool isListening() const { return m_state == State::waiting; }
    void tell(const ServerMsg& message) { send(message); }

signals:
    void closed();

private:
    enum class State { waiting, running, ended };

    void take(const QByteArray& frame);
    void start(const StartSessionPayload& start);
    void train(const BuyerScenario& scenario);
    void hear(const ClientMsg::Transcript& transcript);
    /// The simulated buyer has ended a reply.
    void hearBuyer(const BuyerReply& reply);
    void judge(AudioSourceTag side, const QString& text, const std::optional<GivenAway>& given = {});
    void end();
    void finish();
    void summarise();
    void refreshToken();
    void lose();

    [[nodiscard]] QString realtimeUrl() const;
    void tip(const CoachingPayload& payload);
    void refuse(const QString& why);
    void send(const ServerMsg& message);
    void sendFrame(const QByteArray& frame);
    void close(int code, const QString& reason);
    void note(const QString& what) const;

    std::unique_ptr<QWebSocket> m_socket;
    int m_number;
    const CoachContext& m_context;
    State m_state = State::waiting;
    std::optional<Coach> m_coach;
    std::unique_ptr<Training> m_training;  ///< With a simulated buyer only.
    CallRecord* m_call = nullptr;          // In the book.
    MonotonicTime m_startedAt;
    int m_sent = 0;
};

/// Turns an encoded tip into one whose type no client knows.
[[nodiscard]] QByteArray withUnknownType(const QByteArray& coachingFrame);

}  // namespace corvellan::sandbox

#pragma once

#include <deque>
#include <expected>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <QAbstractSocket>
#include <QByteArray>
#include <QCoroTask>
#include <QString>
#include <QUrl>
#include <utility>
#include <variant>
#include <vector>

#include "Alarm.h"
#include "Base/Error.h"

class QWebSocket;

namespace corvellan {

/// How a connection came to its end.
struct SocketEnd {
    /// The server sent a close frame with code 1000 or without a code. Everything else is a failure.
    bool isNormal = false;
    /// What a send fails with from then on. After a failure it tells the transport's reason, or the
    /// close frame's code and reason.
    Error error;
};

/// One WebSocket to a server, from its opening to its end; it is never reopened.
///
/// Lives on one executor, whose thread runs a Qt event loop; every operation belongs there, and every
/// handler is called there. Messages of more than 16 MiB end the connection with code 1009, and text that
/// is not UTF-8 with 1007. Qt 6.4 decodes each frame by itself: a text message cut within a character
/// ends the connection with 1007 too.
class ClientSocket : public std::enable_shared_from_this<ClientSocket> {
public:
    using Headers = std::vector<std::pair<QByteArray, QByteArray>>;
    using Result = std::expected<void, Error>;

    struct Handlers {
        std::function<void(const QString&)> text;
        std::function<void(const QByteArray&)> binary;
        /// Once, never from within another call to this class. `close` leads here too, with a
        /// cancellation as the error.
        std::function<void(const SocketEnd&)> ended;
    };

    static constexpr std::chrono::seconds timeout{60};
    static constexpr quint64 maxMessageBytes = 16ULL * 1024 * 1024;

    /// Begins to connect and returns at once. A handshake that is not done after `timeout` fails.
    [[nodiscard]] static std::shared_ptr<ClientSocket> open(Executor& executor, Clock& clock, const QUrl& url,
                                                            const Headers& headers = {});
    ~ClientSocket();
    ClientSocket(const ClientSocket&) = delete;
    ClientSocket& operator=(const ClientSocket&) = delete;

    /// Frames and the end are kept until there is someone to read them.
    void read(Handlers handlers);

    /// One text frame. Waits for the handshake, then until the system has taken every byte; frames
    /// leave in the order of the calls. Writing that stands still for `timeout` ends the connection.
    [[nodiscard]] QCoro::Task<Result> send(QString text);

    /// A ping as a control frame. Waits for the handshake, then for the pong, at most for `timeout`.
    [[nodiscard]] QCoro::Task<Result> ping();

    /// Closes with code 1000 and no reason. What is under way fails as cancelled.
    void close();

    /// Gives the connection up without a close frame; nothing is reported any more.
    void drop();

    /// The handshake is done and the connection has not ended: what is sent leaves at once.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

private:
    class Delivery;
    struct Waiting {
        std::optional<QString> text;  // Absent for a ping.
        std::shared_ptr<Delivery> delivery;
    };
    struct Writing {
        qint64 mark = 0;
        std::shared_ptr<Delivery> delivery;
    };
    struct Ping;
    using Frame = std::variant<QString, QByteArray>;

    ClientSocket(Executor& executor, Clock& clock);
    void start(const QUrl& url, const Headers& headers);

    void onConnected();
    void onFrame(Frame frame);
    void onPong(const QByteArray& payload);
    void onAboutToClose();
    void onLost(QAbstractSocket::SocketError error);

    void begin(Waiting item);
    void write(const QString& text, const std::shared_ptr<Delivery>& delivery);
    void writePing(const std::shared_ptr<Delivery>& delivery);
    void settleWritten();
    void watchForStandstill();
    void forgetPing(const QByteArray& payload, const Result& result);
    void hand(const Frame& frame);
    void finish(SocketEnd end);
    void failWhatIsUnderWay();
    void release();
    void reportEnd();

    Executor& m_executor;
    Clock& m_clock;
    std::unique_ptr<QWebSocket> m_socket;
    bool m_isOpen = false;
    std::optional<SocketEnd> m_end;
    bool m_isLost = false;
    bool m_hasErrorText = false;

    std::optional<Handlers> m_handlers;
    std::deque<Frame> m_backlog;

    std::deque<Waiting> m_waiting;
    std::deque<Writing> m_writing;
    qint64 m_bytesQueued = 0;
    std::list<Ping> m_pings;
    quint64 m_pingCount = 0;
    Alarm m_deadline;  // Of the handshake, then of writing that stands still.
};

}  // namespace corvellan

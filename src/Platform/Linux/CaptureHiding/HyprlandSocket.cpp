#include "HyprlandSocket.h"

#include <QLocalSocket>

#include "Platform/Linux/EventWait.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QCoro::Task<std::expected<HyprlandReply, Error>> askHyprland(QString socketPath, QByteArray request, Clock& clock,
                                                             std::stop_token stop) {
    const auto failure = [](const QString& sentence) { return std::unexpected(Error{TransportError{sentence}}); };
    EventWait wait{clock, hyprlandPatience, stop};
    QLocalSocket socket;
    // One byte more than allowed, so that an answer that is too long shows.
    socket.setReadBufferSize(hyprlandReplyLimit + 1);
    QObject::connect(&socket, &QLocalSocket::connected, &socket, wait.waker());
    QObject::connect(&socket, &QLocalSocket::disconnected, &socket, wait.waker());
    QObject::connect(&socket, &QLocalSocket::readyRead, &socket, wait.waker());
    QObject::connect(&socket, &QLocalSocket::errorOccurred, &socket, wait.waker());
    socket.connectToServer(socketPath);

    QByteArray reply;
    bool isSent = false;
    while (true) {
        if (socket.isOpen())
            reply += socket.readAll();
        if (reply.size() > hyprlandReplyLimit)
            co_return failure(u"Hyprland's answer was too long."_s);
        if (socket.state() == QLocalSocket::UnconnectedState) {
            if (!isSent)
                co_return failure(u"Hyprland's socket can't be reached: %1."_s.arg(socket.errorString()));
            if (socket.error() != QLocalSocket::PeerClosedError && socket.error() != QLocalSocket::UnknownSocketError)
                co_return failure(u"The connection to Hyprland broke: %1."_s.arg(socket.errorString()));
            if (reply.isEmpty())
                co_return failure(u"Hyprland closed the connection without an answer."_s);
            co_return HyprlandReply{reply};
        }
        if (wait.isOver())
            co_return std::unexpected(wait.reason(u"Hyprland did not answer in time."_s));
        if (!isSent && socket.state() == QLocalSocket::ConnectedState) {
            isSent = true;
            socket.write(request);
            // Writing may have brought news already.
            continue;
        }
        co_await wait.next();
    }
}

}  // namespace corvellan

#include "CoachServer.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QWebSocket>

#include "CoachConnection.h"
#include "EventLog.h"
#include "Listening.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

const QString socketPath = u"/ws"_s;

bool wantsWebSocket(const QHttpServerRequest& request) {
    return request.value("upgrade").toLower() == "websocket";
}

/// Passes WebSockets on that may enter. The others are left to the handler of what nobody takes: whatever a
/// route's own handler answers, the handshake follows it.
class SocketRule : public QHttpServerRouterRule {
public:
    SocketRule(const QString& path, const Admission* admission, RouterHandler handler)
        : QHttpServerRouterRule(path, QHttpServerRequest::Method::Get, std::move(handler)),
          m_admission(admission) {}

protected:
    bool matches(const QHttpServerRequest& request, QRegularExpressionMatch* match) const override {
        return QHttpServerRouterRule::matches(request, match) &&
               (!wantsWebSocket(request) || m_admission->admits(request.url()));
    }

private:
    const Admission* m_admission;
};

}  // namespace

CoachServer::CoachServer(CoachContext context)
    : m_context(std::move(context)),
      m_http(std::make_unique<QHttpServer>()) {
    // A WebSocket is let in where a route takes the request and leaves it unanswered.
    m_http->route<SocketRule>(socketPath, &m_context.admission,
                              [](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
                                  if (!wantsWebSocket(request))
                                      responder.write(QHttpServerResponder::StatusCode::UpgradeRequired);
                              });
    m_http->setMissingHandler([](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
        const bool isRefused = request.url().path() == socketPath && wantsWebSocket(request);
        responder.write(isRefused ? QHttpServerResponder::StatusCode::Unauthorized
                                  : QHttpServerResponder::StatusCode::NotFound);
    });
    connect(m_http.get(), &QHttpServer::newWebSocketConnection, this, &CoachServer::enter);
}

CoachServer::~CoachServer() {
    // They hold on to the context.
    qDeleteAll(findChildren<CoachConnection*>(Qt::FindDirectChildrenOnly));
}

std::expected<quint16, Error> CoachServer::listen(const QList<QHostAddress>& addresses, quint16 port) {
    return listenOnOnePort(*m_http, addresses, port);
}

int CoachServer::tellListeners(const ServerMsg& message) {
    int told = 0;
    for (auto* const connection : findChildren<CoachConnection*>(Qt::FindDirectChildrenOnly)) {
        if (!connection->isListening())
            continue;
        connection->tell(message);
        ++told;
    }
    return told;
}

void CoachServer::enter() {
    while (m_http->hasPendingWebSocketConnections()) {
        auto socket = m_http->nextPendingWebSocketConnection();
        socket->setParent(nullptr);
        auto* connection = new CoachConnection{std::move(socket), ++m_connections, m_context, this};
        connect(connection, &CoachConnection::closed, connection, &QObject::deleteLater);
    }
}

}  // namespace corvellan::sandbox

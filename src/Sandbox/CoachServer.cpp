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

CoachServer::CoachServer(CoachContext context)
    : m_context(std::move(context)),
      m_http(std::make_unique<QHttpServer>()) {
    // A WebSocket is let in where a route takes the request and leaves it unanswered.
    m_http->route(u"/ws"_s, QHttpServerRequest::Method::Get,
                  [](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
                      if (request.value("upgrade").toLower() != "websocket")
                          responder.write(QHttpServerResponder::StatusCode::UpgradeRequired);
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

void CoachServer::enter() {
    while (m_http->hasPendingWebSocketConnections()) {
        auto socket = m_http->nextPendingWebSocketConnection();
        socket->setParent(nullptr);
        auto* connection = new CoachConnection{std::move(socket), ++m_connections, m_context, this};
        connect(connection, &CoachConnection::closed, connection, &QObject::deleteLater);
    }
}

}  // namespace corvellan::sandbox

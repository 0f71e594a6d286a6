#include "ChatServer.h"

#include <QHttpServer>
#include <QJsonObject>

#include "BriefingRoutes.h"
#include "CustomerPages.h"
#include "Listening.h"
#include "SignInRoutes.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

ChatServer::ChatServer(AccountBook& accounts, const CustomerBook& customers, Faults faults, const Clock& clock,
                       const EventLog& log)
    : m_faults(std::move(faults)),
      m_http(std::make_unique<QHttpServer>()) {
    m_http->route(u"/health"_s, [] { return QJsonObject{{u"status"_s, u"ok"_s}}; });
    addSignInRoutes(*m_http, accounts, m_faults, log);
    addBriefingRoutes(*m_http, accounts, customers, clock, log);
    addCustomerPages(*m_http, customers);
}

ChatServer::~ChatServer() = default;

std::expected<quint16, Error> ChatServer::listen(const QList<QHostAddress>& addresses, quint16 port) {
    return listenOnOnePort(*m_http, addresses, port);
}

}  // namespace corvellan::sandbox

#pragma once

#include <expected>
#include <memory>
#include <QHostAddress>
#include <QList>

#include "AccountBook.h"
#include "Base/Error.h"
#include "CustomerBook.h"
#include "Faults.h"

class QHttpServer;

namespace corvellan::sandbox {

class EventLog;

/// The stand-in for the chat/briefings back-end: signs users in and tells them of meetings and customers. Runs on
/// a thread with an event loop; what it is made of must outlive it.
class ChatServer {
public:
    ChatServer(AccountBook& accounts, const CustomerBook& customers, Faults faults, const Clock& clock,
               const EventLog& log);
    ~ChatServer();
    ChatServer(const ChatServer&) = delete;
    ChatServer& operator=(const ChatServer&) = delete;

    /// \param port 0 takes a free one. Returns the port.
    [[nodiscard]] std::expected<quint16, Error> listen(const QList<QHostAddress>& addresses, quint16 port);

    /// For routes beside those of the sign-in.
    [[nodiscard]] QHttpServer& http() { return *m_http; }

private:
    const Faults m_faults;
    std::unique_ptr<QHttpServer> m_http;
};

}  // namespace corvellan::sandbox

#pragma once

#include <expected>
#include <QHostAddress>
#include <QList>
#include <span>

#include "Base/Error.h"

class QHttpServer;
class QTcpServer;

namespace corvellan::sandbox {

/// A client that names 127.0.0.1 takes the sandbox for a local server that needs no sign-in; one that
/// names 127.0.0.2 does not.
[[nodiscard]] QList<QHostAddress> loopbackAddresses();

/// Lets each server listen on its address, all on one port; 0 finds a port that is free on all.
[[nodiscard]] std::expected<quint16, Error> listenOnOnePort(std::span<QTcpServer* const> servers,
                                                            const QList<QHostAddress>& addresses, quint16 port);

/// As above, for one HTTP server on all addresses.
[[nodiscard]] std::expected<quint16, Error> listenOnOnePort(QHttpServer& http, const QList<QHostAddress>& addresses,
                                                            quint16 port);

}  // namespace corvellan::sandbox

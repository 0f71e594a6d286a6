#include "Listening.h"

#include <memory>
#include <QHttpServer>
#include <QTcpServer>
#include <vector>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

QList<QHostAddress> loopbackAddresses() {
    return {QHostAddress{u"127.0.0.1"_s}, QHostAddress{u"127.0.0.2"_s}};
}

std::expected<quint16, Error> listenOnOnePort(std::span<QTcpServer* const> servers,
                                              const QList<QHostAddress>& addresses, quint16 port) {
    Q_ASSERT(static_cast<qsizetype>(servers.size()) == addresses.size());
    // A port that is free on the first address may be taken on the second.
    constexpr int attempts = 20;
    QString why;
    for (int attempt = 0; attempt < (port == 0 ? attempts : 1); ++attempt) {
        quint16 chosen = port;
        bool isListening = true;
        for (std::size_t i = 0; i < servers.size() && isListening; ++i) {
            isListening = servers[i]->listen(addresses[static_cast<qsizetype>(i)], chosen);
            if (isListening)
                chosen = servers[i]->serverPort();
            else
                why = u"Cannot listen on %1:%2: %3"_s.arg(addresses[static_cast<qsizetype>(i)].toString())
                          .arg(chosen)
                          .arg(servers[i]->errorString());
        }
        if (isListening)
            return chosen;
        for (auto* server : servers)
            server->close();
    }
    return std::unexpected(Error{TransportError{why}});
}

std::expected<quint16, Error> listenOnOnePort(QHttpServer& http, const QList<QHostAddress>& addresses, quint16 port) {
    std::vector<std::unique_ptr<QTcpServer>> servers;
    std::vector<QTcpServer*> raw;
    for (qsizetype i = 0; i < addresses.size(); ++i)
        raw.push_back(servers.emplace_back(std::make_unique<QTcpServer>()).get());
    const auto chosen = listenOnOnePort(raw, addresses, port);
    if (!chosen)
        return chosen;
    for (auto& server : servers)
        http.bind(server.release());  // Makes it a child of the HTTP server.
    return chosen;
}

}  // namespace corvellan::sandbox

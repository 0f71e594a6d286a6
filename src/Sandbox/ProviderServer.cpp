#include "ProviderServer.h"

#include <QDir>
#include <QTcpServer>
#include <QUrlQuery>
#include <QWebSocket>

#include "EventLog.h"
#include "Listening.h"
#include "ProviderConnection.h"
#include "TokenBook.h"
#include "WebSocketDoor.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr int sampleRateHertz = 24'000;

QString bearer(const QByteArray& authorization) {
    static const QByteArray scheme{"Bearer "};
    return authorization.startsWith(scheme) ? QString::fromLatin1(authorization.sliced(scheme.size())) : QString{};
}

}  // namespace

ProviderServer::ProviderServer(ProviderSettings settings, TokenBook& tokens, const EventLog& log)
    : m_settings(std::move(settings)),
      m_tokens(tokens),
      m_log(log),
      m_door(std::make_unique<WebSocketDoor>(
          u"transcription"_s, [this](const RequestHead& head) { return gate(head); },
          [this](std::unique_ptr<QWebSocket> socket) { enter(std::move(socket)); })) {}

ProviderServer::~ProviderServer() {
    // A recogniser may still be at work for them.
    qDeleteAll(findChildren<ProviderConnection*>(Qt::FindDirectChildrenOnly));
}

std::expected<quint16, Error> ProviderServer::listen(const QList<QHostAddress>& addresses, quint16 port) {
    std::vector<std::unique_ptr<QTcpServer>> servers;
    std::vector<QTcpServer*> raw;
    for (qsizetype i = 0; i < addresses.size(); ++i)
        raw.push_back(servers.emplace_back(std::make_unique<QTcpServer>()).get());
    const auto chosen = listenOnOnePort(raw, addresses, port);
    if (!chosen)
        return chosen;
    for (auto& server : servers)
        m_door->watch(std::move(server));
    return chosen;
}

int ProviderServer::gate(const RequestHead& head) const {
    const auto refuse = [&](int status, const QString& why) {
        m_log.event(u"stt"_s, u"refused with %1: %2"_s.arg(status).arg(why));
        return status;
    };
    if (head.target.path() != u"/v1/realtime"_s)
        return refuse(404, u"no path %1"_s.arg(head.target.path()));
    if (QUrlQuery{head.target}.queryItemValue(u"intent"_s) != u"transcription"_s)
        return refuse(400, u"the query is not intent=transcription"_s);
    if (head.headers.value("openai-beta") != "realtime=v1")
        return refuse(400, u"the header OpenAI-Beta is not realtime=v1"_s);
    if (m_settings.faults.refuseToken)
        return refuse(401, u"as --fault refuse-token asks"_s);
    if (!m_tokens.isGood(bearer(head.headers.value("authorization"))))
        return refuse(401, u"no token, or one that is unknown, spent or over"_s);
    return 0;
}

void ProviderServer::enter(std::unique_ptr<QWebSocket> socket) {
    const auto grant = m_tokens.redeem(bearer(socket->request().rawHeader("Authorization")));
    if (!grant) {
        auto* spare = socket.release();
        connect(spare, &QWebSocket::disconnected, spare, &QObject::deleteLater);
        spare->close(QWebSocketProtocol::CloseCodePolicyViolated, u"token already spent"_s);
        return;
    }
    auto figures =
        std::make_shared<ProviderFigures>(ProviderFigures{.sessionId = grant->sessionId, .side = grant->side});
    m_figures.push_back(figures);
    ProviderConnection::Settings settings{
        .texts = m_settings.texts(grant->side), .wav = {}, .reportsError = m_settings.faults.providerError};
    if (!m_settings.keepAudioFolder.isEmpty()) {
        const QString path = QDir{m_settings.keepAudioFolder}.filePath(grant->sessionId + u'/' +
                                                                       tableText(rawValue(grant->side)) + u".wav"_s);
        if (auto wav = WavWriter::create(path, sampleRateHertz)) {
            settings.wav = std::move(*wav);
            figures->wavPath = path;
        } else {
            m_log.event(u"stt"_s, wav.error().errorDescription());
        }
    }
    auto* connection = new ProviderConnection{std::move(socket), std::move(settings), std::move(figures), m_log, this};
    connect(connection, &ProviderConnection::closed, connection, &QObject::deleteLater);
}

}  // namespace corvellan::sandbox

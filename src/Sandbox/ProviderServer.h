#pragma once

#include <expected>
#include <memory>
#include <QHostAddress>
#include <QJsonArray>
#include <QObject>
#include <QString>
#include <vector>

#include "Base/Error.h"
#include "Faults.h"
#include "ProviderFigures.h"
#include "UtteranceTexts.h"

class QWebSocket;

namespace corvellan::sandbox {

class EventLog;
class TokenBook;
class WebSocketDoor;
struct RequestHead;

struct ProviderSettings {
    UtteranceTextsMaker texts = lengthTexts();
    QString keepAudioFolder;  ///< Empty keeps no audio.
    Faults faults;
};

/// The stand-in for the transcription provider, path "/v1/realtime". One thread.
class ProviderServer : public QObject {
    Q_OBJECT
public:
    ProviderServer(ProviderSettings settings, TokenBook& tokens, const EventLog& log);
    ~ProviderServer() override;

    /// \param port 0 takes a free one. Returns the port.
    [[nodiscard]] std::expected<quint16, Error> listen(const QList<QHostAddress>& addresses, quint16 port);

    /// What came in on each connection since the start, in the order of the connections.
    [[nodiscard]] const std::vector<std::shared_ptr<ProviderFigures>>& figures() const { return m_figures; }

private:
    [[nodiscard]] int gate(const RequestHead& head) const;
    void enter(std::unique_ptr<QWebSocket> socket);

    ProviderSettings m_settings;
    TokenBook& m_tokens;
    const EventLog& m_log;
    std::unique_ptr<WebSocketDoor> m_door;
    std::vector<std::shared_ptr<ProviderFigures>> m_figures;
};

}  // namespace corvellan::sandbox

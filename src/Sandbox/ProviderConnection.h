#pragma once

#include <memory>
#include <optional>
#include <QObject>

#include "ProviderFigures.h"
#include "ProviderFrames.h"
#include "UtteranceFinder.h"
#include "UtteranceTexts.h"
#include "WavFile.h"

class QWebSocket;

namespace corvellan::sandbox {

class EventLog;

/// One side of one session at the transcription provider. Lives until its socket has gone, which
/// `closed` tells. One thread.
class ProviderConnection : public QObject {
    Q_OBJECT
public:
    struct Settings {
        std::unique_ptr<UtteranceTexts> texts;
        std::optional<WavWriter> wav;
        bool reportsError = false;  ///< A fault to play.
    };

    ProviderConnection(std::unique_ptr<QWebSocket> socket, Settings settings, std::shared_ptr<ProviderFigures> figures,
                       const EventLog& log, QObject* parent);
    ~ProviderConnection() override;

signals:
    void closed();

private:
    void take(const QByteArray& frame);
    void takeAudio(const QByteArray& pcm);
    void takeUtterance(const Utterance& utterance);
    void takeSpoken(const QString& itemId, const Spoken& spoken);
    void tellSoFar();
    void refuse(const ProviderFault& fault);
    void send(const QByteArray& frame);
    void note(const QString& what) const;

    std::unique_ptr<QWebSocket> m_socket;
    Settings m_settings;
    std::shared_ptr<ProviderFigures> m_figures;
    const EventLog& m_log;
    UtteranceFinder m_finder;
    QString m_itemId;
    int m_items = 0;
    QString m_told;  // Of the utterance under way.
};

}  // namespace corvellan::sandbox

#include "ProviderConnection.h"

#include <cstring>
#include <QWebSocket>

#include "Base/Text.h"
#include "EventLog.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 largestFrame = 16 * 1024 * 1024;
constexpr int sampleRateHertz = 24'000;

qint64 milliseconds(std::int64_t samples) {
    return samples * 1000 / sampleRateHertz;
}

}  // namespace

ProviderConnection::ProviderConnection(std::unique_ptr<QWebSocket> socket, Settings settings,
                                       std::shared_ptr<ProviderFigures> figures, const EventLog& log, QObject* parent)
    : QObject(parent),
      m_socket(std::move(socket)),
      m_settings(std::move(settings)),
      m_figures(std::move(figures)),
      m_log(log),
      m_finder(TurnDetection{}, sampleRateHertz) {
    m_socket->setMaxAllowedIncomingFrameSize(largestFrame);
    m_socket->setMaxAllowedIncomingMessageSize(largestFrame);
    connect(m_socket.get(), &QWebSocket::textMessageReceived, this,
            [this](const QString& text) { take(text.toUtf8()); });
    connect(m_socket.get(), &QWebSocket::binaryMessageReceived, this, [this] {
        refuse({.code = u"invalid_json"_s, .message = u"Binary frames are not accepted."_s, .parameter = {}});
    });
    connect(m_socket.get(), &QWebSocket::disconnected, this, [this] {
        m_figures->isOpen = false;
        note(u"closed (%1), %2 bytes, %3 utterances"_s.arg(static_cast<int>(m_socket->closeCode()))
                 .arg(m_figures->bytes)
                 .arg(m_figures->utterances) +
             (m_finder.isSpeaking() ? u", speech cut off"_s : QString{}));
        emit closed();
    });
    note(u"connected"_s);
    send(frames::sessionCreated(m_figures->sessionId));
}

ProviderConnection::~ProviderConnection() {
    m_socket->disconnect(this);
}

void ProviderConnection::take(const QByteArray& frame) {
    const auto request = decodeProviderRequest(frame);
    if (!request) {
        refuse(request.error());
    } else if (const auto* append = std::get_if<AudioAppend>(&*request)) {
        takeAudio(append->pcm);
    } else if (const auto* update = std::get_if<SessionUpdate>(&*request)) {
        m_finder.setTurnDetection(update->detection);
        note(u"model %1, threshold %2, silence %3 ms"_s.arg(update->model)
                 .arg(update->detection.threshold)
                 .arg(update->detection.silence.count()));
        send(frames::sessionUpdated(m_figures->sessionId, *update));
    }
}

void ProviderConnection::takeAudio(const QByteArray& pcm) {
    m_figures->bytes += pcm.size();
    m_figures->appends += 1;
    if (m_settings.wav && !m_settings.wav->append(pcm)) {
        note(u"cannot write %1 any more"_s.arg(m_settings.wav->path()));
        m_settings.wav.reset();
    }
    if (m_settings.reportsError && m_figures->appends == 1)
        send(frames::error({.code = u"server_error"_s, .message = u"The server had an error."_s, .parameter = {}}));

    std::vector<std::int16_t> samples(static_cast<std::size_t>(pcm.size()) / sizeof(std::int16_t));
    std::memcpy(samples.data(), pcm.constData(), samples.size() * sizeof(std::int16_t));
    for (const auto& event : m_finder.feed(samples)) {
        if (const auto* started = std::get_if<SpeechStarted>(&event)) {
            m_itemId = u"item_%1"_s.arg(++m_items, 4, 10, QChar{u'0'});
            m_told.clear();
            send(frames::speechStarted(m_itemId, milliseconds(started->firstSample)));
        } else {
            takeUtterance(std::get<Utterance>(event));
        }
    }
    tellSoFar();
}

void ProviderConnection::takeUtterance(const Utterance& utterance) {
    m_figures->utterances += 1;
    send(frames::speechStopped(m_itemId, milliseconds(utterance.endSample)));
    send(frames::committed(m_itemId));
    note(u"heard %1 s of speech at %2 s"_s.arg(
        text::fixed(utterance.seconds(), 2),
        text::fixed(static_cast<double>(utterance.firstSample) / sampleRateHertz, 2)));
    m_settings.texts->finished(utterance, [this, id = m_itemId](const Spoken& spoken) { takeSpoken(id, spoken); });
}

void ProviderConnection::takeSpoken(const QString& itemId, const Spoken& spoken) {
    if (!spoken.note.isEmpty())
        note(spoken.note);
    if (spoken.failure) {
        note(*spoken.failure);
        send(frames::error({.code = u"transcription_failed"_s, .message = *spoken.failure, .parameter = {}}));
    }
    if (!spoken.text)
        return;
    m_figures->lines += 1;
    note(u"\"%1\""_s.arg(*spoken.text));
    send(frames::completed(itemId, *spoken.text));
}

void ProviderConnection::tellSoFar() {
    if (!m_finder.isSpeaking())
        return;
    const QString known = m_settings.texts->soFar(m_finder.secondsSpoken());
    if (known.size() <= m_told.size())
        return;
    send(frames::delta(m_itemId, known.sliced(m_told.size())));
    m_told = known;
}

void ProviderConnection::refuse(const ProviderFault& fault) {
    m_figures->faults += 1;
    note(u"refused a frame: %1"_s.arg(fault.message));
    send(frames::error(fault));
}

void ProviderConnection::send(const QByteArray& frame) {
    m_socket->sendTextMessage(QString::fromUtf8(frame));
}

void ProviderConnection::note(const QString& what) const {
    m_log.event(u"stt"_s, tableText(rawValue(m_figures->side)) + u": "_s + what);
}

}  // namespace corvellan::sandbox

#include "SttService.h"

#include <QUrl>
#include <utility>

#include "Alarm.h"
#include "Base/Tasks.h"
#include "Base/Text.h"
#include "ClientSocket.h"
#include "SttWire.h"
#include "UrlText.h"

namespace corvellan {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto batchInterval = 100ms;
// A connection that stands still must not hold up the end of a call: its next one waits for that.
constexpr auto lastBatchPatience = 1s;
constexpr qsizetype loggedTranscriptCharacters = 100;
constexpr qsizetype loggedFrameCharacters = 500;

// What a second of audio takes: batches usually hold a tenth of that.
constexpr qsizetype pendingRoom = qsizetype{chunkSampleRateHertz} * chunkBytesPerSample;

}  // namespace

SttService::SttService(Executor& executor, Clock& clock, Diagnostics::Side& diagnostics, QString defaultRealtimeUrl)
    : m_executor(executor),
      m_clock(clock),
      m_diagnostics(diagnostics),
      m_defaultRealtimeUrl(std::move(defaultRealtimeUrl)),
      m_lastSendTime(clock.now()) {
    m_pendingAudio.reserve(pendingRoom);
}

SttService::~SttService() {
    runAndWait(m_executor, [this] {
        m_life.reset();
        if (m_task)
            m_task->drop();
        for (const auto& socket : m_retired)
            socket->drop();
        m_task.reset();
        m_retired.clear();
        if (m_eventContinuation)
            m_eventContinuation->finish();
    });
}

QCoro::Task<void> SttService::connect(QString ephemeralToken, std::optional<QString> realtimeUrl) {
    return m_executor.run([this, token = std::move(ephemeralToken), url = std::move(realtimeUrl)] {
        return connectInternal(token, url);
    });
}

QCoro::Task<void> SttService::sendAudio(AudioChunk chunk) {
    return m_executor.run([this, chunk = std::move(chunk)] { return sendAudioInternal(chunk); });
}

QCoro::Task<void> SttService::disconnect() {
    return m_executor.run([this] { return disconnectInternal(); });
}

AsyncStream<SttEvent> SttService::events() {
    auto [stream, producer] = AsyncStream<SttEvent>::make();
    m_executor.post([this, life = std::weak_ptr{m_life}, producer = producer] {
        if (life.expired())
            producer.finish();
        else
            setEventContinuation(producer);
    });
    return std::move(stream);
}

void SttService::setEventContinuation(EventContinuation continuation) {
    m_eventContinuation = std::move(continuation);
}

QCoro::Task<void> SttService::connectInternal(QString ephemeralToken, std::optional<QString> realtimeUrl) {
    const QString address = realtimeUrl.value_or(m_defaultRealtimeUrl);
    const QUrl url{address, QUrl::StrictMode};
    if (!url.isValid()) {
        m_logger.error(u"Invalid Realtime URL: "_s + address);
        co_return;
    }
    // The token goes into a header, never into the URL.
    const auto socket = ClientSocket::open(m_executor, m_clock, url, sttwire::headers(ephemeralToken));
    if (const auto previous = std::exchange(m_task, socket))
        retire(previous);
    m_logger.info(u"STT connected to "_s + urlForLog(url));

    const std::weak_ptr life{m_life};
    co_await socket->send(sttwire::sessionUpdate());
    if (!life.expired())
        readLoop(socket);
}

QCoro::Task<void> SttService::sendAudioInternal(AudioChunk chunk) {
    const auto size = static_cast<std::uint64_t>(chunk.pcm.size());
    if (!m_task) {
        m_diagnostics.bytesLost += size;
        co_return;
    }
    m_diagnostics.bytesAccepted += size;
    m_pendingAudio.append(chunk.pcm);
    const MonotonicTime now = m_clock.now();
    if (now - m_lastSendTime < batchInterval)
        co_return;
    m_lastSendTime = now;
    co_await sendPendingAudio(chunk.deliveredAt);
}

QCoro::Task<void> SttService::sendPendingAudio(MonotonicTime deliveredAt) {
    const auto socket = m_task;
    Diagnostics::Side& diagnostics = m_diagnostics;
    const auto size = static_cast<std::uint64_t>(m_pendingAudio.size());
    const QString message = sttwire::append(m_pendingAudio);
    m_pendingAudio.resize(0);

    const bool leavesAtOnce = socket->isOpen();
    auto sending = socket->send(message);
    if (leavesAtOnce && deliveredAt != MonotonicTime{})
        diagnostics.overhead.record(m_clock.now() - deliveredAt);

    // From here on locals only: the service may have gone when the bytes have.
    if (co_await sending) {
        diagnostics.bytesSent += size;
        ++diagnostics.framesSent;
    } else {
        diagnostics.bytesLost += size;
    }
}

QCoro::Task<void> SttService::disconnectInternal() {
    if (!m_pendingAudio.isEmpty() && m_task) {
        const std::weak_ptr life{m_life};
        std::stop_source giveUp;
        Alarm patience{m_executor, m_clock};
        patience.set(lastBatchPatience, [giveUp]() mutable { giveUp.request_stop(); });
        auto sending = sendPendingAudio({});
        co_await untilStopped(std::move(sending), giveUp.get_token());
        if (life.expired())
            co_return;
    }
    if (const auto socket = std::exchange(m_task, nullptr))
        retire(socket);
    if (const auto continuation = std::exchange(m_eventContinuation, std::nullopt))
        continuation->finish();
    m_logger.info(u"STT disconnected"_s);
}

void SttService::retire(std::shared_ptr<ClientSocket> socket) {
    m_retired.push_back(socket);
    socket->close();
}

void SttService::readLoop(const std::shared_ptr<ClientSocket>& socket) {
    socket->read({.text = [this](const QString& text) { handleMessage(text); },
                  .binary = [](const QByteArray& /*ignored*/) {},
                  .ended = [this, raw = socket.get()](const SocketEnd& end) { readEnded(raw, end); }});
}

void SttService::readEnded(const ClientSocket* socket, const SocketEnd& end) {
    const QString description = end.error.errorDescription();
    m_logger.error(u"STT readLoop failure: "_s + description);
    // A connection that was closed on purpose has no one to tell, even when the next one stands already.
    if (socket == m_task.get())
        emitEvent({SttEvent::Failure{description}});
    std::erase_if(m_retired, [socket](const auto& retired) { return retired.get() == socket; });
}

void SttService::handleMessage(const QString& text) {
    const auto received = sttwire::parse(text.toUtf8());
    if (!received)
        return;
    m_logger.debug(u"STT recv: "_s + received->type);

    if (const auto* const delta = std::get_if<sttwire::Delta>(&received->content)) {
        emitEvent({SttEvent::Delta{delta->text}});
    } else if (const auto* const completed = std::get_if<sttwire::Completed>(&received->content)) {
        // Newlines don't count as blank here, and what is not blank keeps its blanks.
        if (text::isBlank(completed->transcript))
            return;
        m_logger.info(u"STT transcript: "_s + text::prefix(completed->transcript, loggedTranscriptCharacters));
        ++m_diagnostics.utterances;
        emitEvent({SttEvent::Final{completed->transcript}});
    } else if (const auto* const failure = std::get_if<sttwire::Failure>(&received->content)) {
        if (failure->message) {
            m_logger.error(u"STT error: "_s + *failure->message);
            emitEvent({SttEvent::Failure{*failure->message}});
        } else {
            m_logger.error(u"STT error (raw): "_s + text::prefix(text, loggedFrameCharacters));
            emitEvent({SttEvent::Failure{u"Unknown STT error"_s}});
        }
    }
}

void SttService::emitEvent(SttEvent event) {
    if (m_eventContinuation)
        m_eventContinuation->push(std::move(event));
}

}  // namespace corvellan

#include "Base/Text.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// The first chunk and every 500th after it leave a line in the debug log.
constexpr int chunksPerLogLine = 500;
constexpr int loggedDeltas = 3;
constexpr qsizetype loggedDeltaLength = 50;
/// A stray "ok" or noise does not keep a silent session alive.
constexpr qsizetype realTranscriptLength = 4;

template <typename T>
bool hasEnded(const typename AsyncStream<T>::Next& next) {
    return !next || !*next;
}

}  // namespace

QCoro::Task<void> SessionViewModel::runLivePhase(SideStreams microphone, std::optional<SideStreams> system,
                                                 std::stop_token stop) {
    TaskGroup group{stop};
    auto& pumps = m_environment.pumps;
    group.add([this, &pumps, stream = std::move(microphone.audio)](std::stop_token token) {
        return pumps.run([this, stream, token] { return pumpMicrophone(stream, token); });
    });
    if (system) {
        group.add([this, &pumps, stream = std::move(system->audio)](std::stop_token token) {
            return pumps.run([this, stream, token] { return pumpSystemAudio(stream, token); });
        });
        group.add([this, stream = std::move(system->events)](std::stop_token token) {
            return readSystemEvents(stream, std::move(token));
        });
    }
    group.add([this, stream = std::move(microphone.events)](std::stop_token token) {
        return readMicrophoneEvents(stream, std::move(token));
    });
    group.add([this](std::stop_token token) { return readServerMessages(std::move(token)); });
    co_await group.wait();
}

QCoro::Task<void> SessionViewModel::pumpMicrophone(AsyncStream<AudioChunk> stream, std::stop_token stop) {
    Executor& main = m_environment.main;
    int counter = 0;
    while (true) {
        auto next = co_await stream.next(stop);
        if (hasEnded<AudioChunk>(next))
            break;
        auto chunk = std::move(**next);
        float level = 0;
        const bool isMuted = co_await m_audio->isMuted();
        if (isMuted) {
            m_environment.diagnostics.mic.bytesMuted += static_cast<std::uint64_t>(chunk.pcm.size());
        } else {
            // A connection that stands still must not keep the microphone open after the session's end.
            auto sending = m_stt->sendAudio(std::move(chunk));
            co_await untilStopped(std::move(sending), stop);
            ++counter;
            if (counter == 1 || counter % chunksPerLogLine == 0)
                main.post([this, counter] { debugLog(u"AUDIO: chunk #"_s + QString::number(counter)); });
            level = co_await m_audio->audioLevel();
        }
        main.post([this, level] { setAudioLevel(level); });
    }
    co_await main.call(
        [this, counter] { debugLog(u"AUDIO_SEND: stream ended after "_s + QString::number(counter) + u" chunks"_s); });
}

QCoro::Task<void> SessionViewModel::pumpSystemAudio(AsyncStream<AudioChunk> stream, std::stop_token stop) {
    while (true) {
        auto next = co_await stream.next(stop);
        if (hasEnded<AudioChunk>(next))
            co_return;
        auto chunk = std::move(**next);
        auto sending = m_systemStt->sendAudio(std::move(chunk));
        co_await untilStopped(std::move(sending), stop);
        const float level = co_await m_systemAudio->audioLevel();
        m_environment.main.post([this, level] { setSystemAudioLevel(level); });
    }
}

QCoro::Task<void> SessionViewModel::readSystemEvents(AsyncStream<SttEvent> stream, std::stop_token stop) {
    while (true) {
        auto next = co_await stream.next(stop);
        if (hasEnded<SttEvent>(next))
            co_return;
        const SttEvent event = std::move(**next);
        if (const auto* finished = std::get_if<SttEvent::Final>(&event.value)) {
            if (text::isBlank(finished->text))
                continue;
            const ClientMsg message{ClientMsg::Transcript{.source = AudioSourceTag::system, .text = finished->text}};
            static_cast<void>(co_await m_webSocket->send(message));
            recordLine(TranscriptSource::system, finished->text);
        } else if (const auto* failure = std::get_if<SttEvent::Failure>(&event.value)) {
            setErrorMessage(u"System STT: "_s + failure->message);
        }
    }
}

QCoro::Task<void> SessionViewModel::readMicrophoneEvents(AsyncStream<SttEvent> stream, std::stop_token stop) {
    debugLog(u"STT_EVENTS: listening for events..."_s);
    int count = 0;
    while (true) {
        auto next = co_await stream.next(stop);
        if (hasEnded<SttEvent>(next))
            break;
        const SttEvent event = std::move(**next);
        ++count;
        if (const auto* delta = std::get_if<SttEvent::Delta>(&event.value)) {
            if (count <= loggedDeltas)
                debugLog(u"STT_DELTA: "_s + text::prefix(delta->text, loggedDeltaLength));
        } else if (const auto* finished = std::get_if<SttEvent::Final>(&event.value)) {
            if (text::isBlank(finished->text))
                continue;
            debugLog(u"MIC_STT: "_s + finished->text);
            const ClientMsg message{ClientMsg::Transcript{.source = AudioSourceTag::mic, .text = finished->text}};
            static_cast<void>(co_await m_webSocket->send(message));
            recordLine(TranscriptSource::mic, finished->text);
            if (m_isTrainMode) {
                setTrainStage(TrainStage::waitingLLM);
                setStatusText(u"Waiting for response..."_s);
            }
        } else if (const auto* failure = std::get_if<SttEvent::Failure>(&event.value)) {
            debugLog(u"STT_ERROR: "_s + failure->message);
            setErrorMessage(u"STT: "_s + failure->message);
        }
    }
    debugLog(u"STT_EVENTS: stream ended after "_s + QString::number(count) + u" events"_s);
}

QCoro::Task<void> SessionViewModel::readServerMessages(std::stop_token stop) {
    const auto stream = m_webSocket->receive();
    while (true) {
        auto next = co_await stream.next(stop);
        if (!next) {
            if (m_isSessionActive)
                setErrorMessage(u"Disconnected: "_s + next.error().errorDescription());
            co_return;
        }
        if (!*next)
            co_return;
        const ReceivedServerMsg received = std::move(**next);
        handleServerMessage(received.message);
        if (std::holds_alternative<ServerMsg::Coaching>(received.message.value)) {
            m_environment.diagnostics.tipToHandler.record(m_environment.clock.now() - received.arrivedAt);
            Q_EMIT coachingShown(received.arrivedAt);
        }
    }
}

void SessionViewModel::recordLine(TranscriptSource source, const QString& text) {
    appendLine(source, text);
    if (text::count(text::trimmed(text)) >= realTranscriptLength)
        m_lastRealTranscriptTime = m_environment.clock.wallNow();
}

void SessionViewModel::appendLine(TranscriptSource source, const QString& text) {
    m_transcriptLines.append(
        {.id = QUuid::createUuid(), .source = source, .text = text, .timestamp = m_environment.clock.wallNow()});
}

}  // namespace corvellan

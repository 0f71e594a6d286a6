#include <QUrl>
#include <QUrlQuery>

#include "Base/Text.h"
#include "Models/MemoryStore.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr auto summaryTimeout = 3s;
constexpr auto silenceLimit = 120s;

QString presence(const std::optional<QString>& value) {
    return value ? u"yes"_s : u"nil"_s;
}

/// The server's URL, its query replaced by the token when there is one. Empty when it is no URL.
std::optional<QUrl> connectionUrl(const QString& serverUrl, const std::optional<QString>& token) {
    QUrl url{serverUrl, QUrl::StrictMode};
    if (!url.isValid())
        return std::nullopt;
    if (token) {
        QUrlQuery query;
        // Encoded here: QUrlQuery leaves "+", which servers read as a blank.
        query.addQueryItem(u"token"_s, QString::fromLatin1(QUrl::toPercentEncoding(*token)));
        url.setQuery(query);
    }
    return url.isValid() ? std::optional{url} : std::nullopt;
}

}  // namespace

void SessionViewModel::startSession(StartRequest request) {
    if (!request.audience)
        request.audience = m_coachingMode;
    // Only a session whose start message went out counts: a second start while the first is still
    // signing in or connecting takes its place.
    if (m_isSessionActive)
        return;
    request.callNotes = serverContext(request.callNotes);
    m_timerTask.clear();
    resetForSession();

    m_isTrainMode = request.simMode;
    m_currentScenario = request.scenario;
    setCurrentCompany(request.company);
    m_currentHubspotId = request.hubspotId;
    m_currentCalendarEventId = request.calendarEventId;
    setCounterpartStreamingText({});
    setTrainStage(TrainStage::listening);
    if (m_isTrainMode)
        m_tts->prepare();

    m_sessionTask = CancellableTask::start(
        [this, request = std::move(request)](std::stop_token stop) { return runSession(request, std::move(stop)); });
}

std::optional<QString> SessionViewModel::serverContext(const std::optional<QString>& callNotes) const {
    QStringList parts;
    if (const auto note = m_environment.loadMemoryNote ? m_environment.loadMemoryNote() : std::nullopt)
        parts.append(u"Rep context:\n"_s + text::prefix(*note, MemoryStore::noteLimit));
    if (callNotes && !text::trimmed(*callNotes).isEmpty())
        parts.append(u"Call prep:\n"_s + *callNotes);
    if (parts.isEmpty())
        return std::nullopt;
    return parts.join("\n\n"_L1);
}

void SessionViewModel::resetForSession() {
    setErrorMessage(std::nullopt);
    setLastSummary(std::nullopt);
    setSelectedOutcome(std::nullopt);
    setFeedbackRating(std::nullopt);
    setFeedbackNote({});
    setFeedbackSubmitted(false);
    m_transcriptLines.clear();
    setCoachingMessage({});
    setCoachingType(std::nullopt);
    setCoachingUrgency(std::nullopt);
    setProductHint(std::nullopt);
    setCallStage(CallStage::opening);
    setCallPhase(std::nullopt);
    setMeddicScore({});
    setMeddicEvidence({});
    setMeddicJustConfirmed(std::nullopt);
    setBuyerDisc({});
    setSentiment(CustomerSentiment::neutral);
    setElapsedSeconds(0);
    setAudioLevel(0);
    setSystemAudioLevel(0);
    setCrmBrief(std::nullopt);
}

QCoro::Task<void> SessionViewModel::runSession(StartRequest request, std::stop_token stop) {
    ++m_runningSessions;
    // The pipeline that the last summary left running works on the same services: what it closes last
    // would be this call's connection.
    while (m_pipelines > 0) {
        co_await m_pipelineClosed.next();
        // Given up meanwhile, for another start or at a log-out: it must not sign in any more. It has
        // changed nothing so far, and its exit would tell of an end that is not that of the next one.
        if (stop.stop_requested()) {
            --m_runningSessions;
            co_return;
        }
    }
    const auto signedIn = co_await signIn();
    if (!signedIn) {
        co_await failSession(signedIn.error());
        co_return;
    }

    setStatusText(u"Connecting..."_s);
    const auto url = connectionUrl(m_serverURL, *signedIn);
    if (!url) {
        setErrorMessage(u"Invalid server URL"_s);
        exitSession();
        co_return;
    }
    const auto connected = co_await m_webSocket->connect(*url);
    if (!connected) {
        co_await failSession(connected.error());
        co_return;
    }
    setIsConnected(true);
    setStatusText(u"Connected"_s);
    debugLog(u"WS connected"_s);

    auto startMessage = startMessageFor(request);
    const auto sent = co_await m_webSocket->send(std::move(startMessage));
    if (!sent) {
        co_await failSession(sent.error());
        co_return;
    }
    setIsSessionActive(true);
    setElapsedSeconds(0);
    m_lastRealTranscriptTime = m_environment.clock.wallNow();
    m_timerTask = CancellableTask::start([this](std::stop_token timerStop) { return runElapsedTimer(timerStop); });
    setStatusText(u"Waiting for session..."_s);
    debugLog(request.simMode ? u"Sent StartSession simMode=true"_s : u"Sent StartSession simMode=false"_s);

    const auto awaited = co_await awaitSessionStarted(stop);
    if (!awaited) {
        co_await failSession(awaited.error());
        co_return;
    }
    if (!*awaited) {
        exitSession();
        co_return;
    }
    const SessionStartedPayload started = **awaited;
    setCurrentSessionId(started.sessionId);
    debugLog(u"SessionStarted id="_s + started.sessionId + u" token="_s + presence(started.openaiEphemeralToken) +
             u" sysToken="_s + presence(started.openaiEphemeralTokenSystem));
    co_await applyScreenShareToggle();
    if (!started.openaiEphemeralToken) {
        refuseWithoutToken();
        exitSession();
        co_return;
    }

    setStatusText(u"Starting STT..."_s);
    debugLog(u"Connecting STT..."_s);
    co_await m_stt->connect(*started.openaiEphemeralToken, started.openaiRealtimeUrl);
    debugLog(u"STT connected"_s);
    setStatusText(u"Starting mic..."_s);
    debugLog(u"Starting mic..."_s);
    auto microphone = co_await m_audio->startMic();
    if (!microphone) {
        co_await failSession(microphone.error());
        co_return;
    }
    SideStreams microphoneSide{.audio = std::move(*microphone), .events = m_stt->events()};
    std::optional<SideStreams> systemSide;
    if (started.openaiEphemeralTokenSystem && !request.simMode)
        systemSide = co_await startSystemAudio(started);

    setStatusText(u"Listening..."_s);
    debugLog(u"Pipeline ready — listening"_s);
    ++m_pipelines;
    co_await runLivePhase(std::move(microphoneSide), std::move(systemSide), stop);
    co_await closePipeline();
}

QCoro::Task<std::expected<std::optional<QString>, Error>> SessionViewModel::signIn() {
    if (isLocalServer())
        co_return std::nullopt;
    setStatusText(u"Authenticating..."_s);
    auto result = co_await m_auth->login(m_authURL);
    if (!result) {
        m_logger.error(u"Auth failed, forcing re-login: "_s + result.error().debugDescription());
        setStatusText(u"Re-authenticating..."_s);
        co_await m_auth->logout();
        result = co_await m_auth->login(m_authURL);
        if (!result)
            co_return std::unexpected(result.error());
    }
    auto token = co_await m_auth->token();
    if (token)
        setUserEmail(emailFromJWT(*token));
    co_return token;
}

ClientMsg SessionViewModel::startMessageFor(const StartRequest& request) const {
    return {StartSessionPayload{
        .company = request.company,
        .hubspotId = request.hubspotId,
        .simMode = request.simMode,
        .scenario = request.scenario,
        .discType = request.discType,
        .calendarEventId = request.calendarEventId,
        .clientVersion = m_environment.clientVersion,
        .audience = *request.audience,
        .callNotes = request.callNotes,
        .goals = request.goals,
        .gameMode = request.gameMode,
    }};
}

QCoro::Task<std::expected<std::optional<SessionStartedPayload>, Error>> SessionViewModel::awaitSessionStarted(
    std::stop_token stop) {
    const auto stream = m_webSocket->receive();
    while (true) {
        auto next = co_await stream.next(stop);
        if (!next)
            co_return std::unexpected(next.error());
        if (!*next) {
            refuseWithoutToken();
            co_return std::nullopt;
        }
        const ServerMsg& message = (**next).message;
        if (const auto* started = std::get_if<ServerMsg::SessionStarted>(&message.value))
            co_return *started;
        if (const auto* failure = std::get_if<ServerMsg::Failure>(&message.value)) {
            setErrorMessage(failure->message);
            debugLog(u"Server error: "_s + failure->message);
            co_return std::nullopt;
        }
        // Anything else before the session stands is dropped.
    }
}

void SessionViewModel::refuseWithoutToken() {
    setErrorMessage(u"Server did not provide ephemeral token"_s);
    debugLog(u"ERROR: no ephemeral token"_s);
}

QCoro::Task<std::optional<SessionViewModel::SideStreams>> SessionViewModel::startSystemAudio(
    SessionStartedPayload started) {
    debugLog(u"Starting system audio capture..."_s);
    co_await m_systemStt->connect(*started.openaiEphemeralTokenSystem, started.openaiRealtimeUrlSystem);
    auto capture = co_await m_systemAudio->start();
    if (!capture) {
        // The call goes on with the microphone alone.
        debugLog(u"System audio failed (mic-only): "_s + capture.error().debugDescription());
        setErrorMessage(u"System audio: "_s + capture.error().errorDescription() + u" (mic-only mode)"_s);
        co_return std::nullopt;
    }
    SideStreams streams{.audio = std::move(*capture), .events = m_systemStt->events()};
    debugLog(u"System audio STT connected"_s);
    co_return streams;
}

QCoro::Task<void> SessionViewModel::failSession(Error error) {
    setErrorMessage(error.errorDescription());
    m_logger.error(u"Session error: "_s + error.debugDescription());
    debugLog(u"ERROR: "_s + error.debugDescription());
    ++m_pipelines;
    co_await closePipeline();
}

QCoro::Task<void> SessionViewModel::closePipeline() {
    co_await m_audio->stopMic();
    co_await m_stt->disconnect();
    co_await m_systemAudio->stop();
    co_await m_systemStt->disconnect();
    co_await m_webSocket->disconnect();
    exitSession();
    --m_pipelines;
    m_pipelineClosed.announce();
}

void SessionViewModel::exitSession() {
    setIsSessionActive(false);
    setIsConnected(false);
    setStatusText(u"Ready"_s);
    --m_runningSessions;
}

QCoro::Task<void> SessionViewModel::runElapsedTimer(std::stop_token stop) {
    while (!stop.stop_requested()) {
        co_await sleep(m_environment.clock, 1s, stop);
        setElapsedSeconds(m_elapsedSeconds + 1);
        // By wall time: a computer that slept through the limit wakes to an ended session.
        const auto silence = m_environment.clock.wallNow() - m_lastRealTranscriptTime;
        if (silence > silenceLimit && !m_isTrainMode) {
            const auto seconds = std::chrono::floor<std::chrono::seconds>(silence).count();
            m_logger.info(u"Auto-stopping session — no transcript for "_s + QString::number(seconds) + u's');
            endSession();
            co_return;
        }
    }
}

void SessionViewModel::endSession() {
    if (!m_isSessionActive)
        return;
    runDetached([this](std::stop_token) -> QCoro::Task<void> {
        const auto sent = co_await m_webSocket->send(ClientMsg{ClientMsg::EndSession{}});
        if (!sent)
            m_logger.error(u"Failed to send endSession: "_s + sent.error().debugDescription());
    });
    m_endSessionTimeoutTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        const auto end = co_await sleep(m_environment.clock, summaryTimeout, stop);
        if (end == SleepEnd::elapsed && m_isSessionActive)
            stopSession();
    });
}

void SessionViewModel::stopSession() {
    m_sessionTask.clear();
    m_endSessionTimeoutTask.clear();
    m_coachingResetTask.clear();
    m_timerTask.clear();
    runDetached([this](std::stop_token) { return m_screenShare->stop(); });
    setCurrentSessionId(std::nullopt);
    setIsSessionActive(false);
    setIsConnected(false);
    m_isTrainMode = false;
    setExtensionCallActive(false);
    setStatusText(u"Ready"_s);
    setErrorMessage(std::nullopt);
    setCrmBrief(std::nullopt);
    setMeddicJustConfirmed(std::nullopt);
    setMeddicEvidence({});
    m_tts->stop();
    setIsTtsPlaying(false);
    setCounterpartStreamingText({});
    setTrainStage(TrainStage::listening);
}

QCoro::Task<void> SessionViewModel::applyScreenShareToggle() {
    const bool isEnabled = m_isScreenShareEnabled;
    if (m_isSessionActive) {
        const auto sent = co_await m_webSocket->send(ClientMsg{ClientMsg::SetScreenShare{.enabled = isEnabled}});
        if (!sent)
            m_logger.error(u"setScreenShare send failed: "_s + sent.error().debugDescription());
    }
    if (isEnabled && m_currentSessionId) {
        const auto sessionId = *m_currentSessionId;
        auto token = co_await authToken();
        co_await m_screenShare->start(sessionId, restBaseURL(), std::move(token), ScreenShareOptions{});
    } else {
        co_await m_screenShare->stop();
    }
}

void SessionViewModel::toggleScreenShare() {
    setIsScreenShareEnabled(!m_isScreenShareEnabled);
}

}  // namespace corvellan

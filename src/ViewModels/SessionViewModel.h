#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QJsonObject>
#include <QObject>
#include <vector>

#include "Base/Clock.h"
#include "Base/DebugLog.h"
#include "Base/Diagnostics.h"
#include "Base/Log.h"
#include "Base/Preferences.h"
#include "Base/Tasks.h"
#include "Models/Briefing.h"
#include "Models/Protocol.h"
#include "Models/Types.h"
#include "Published.h"
#include "ServerMode.h"
#include "Services/Protocols/AudioServiceProtocol.h"
#include "Services/Protocols/AuthServiceProtocol.h"
#include "Services/Protocols/BriefingServiceProtocol.h"
#include "Services/Protocols/HttpClientProtocol.h"
#include "Services/Protocols/ScreenShareServiceProtocol.h"
#include "Services/Protocols/ServiceFactory.h"
#include "Services/Protocols/SessionStoreProtocol.h"
#include "Services/Protocols/SttServiceProtocol.h"
#include "Services/Protocols/TtsServiceProtocol.h"
#include "Services/Protocols/UpdaterProtocol.h"
#include "Services/Protocols/WebSocketServiceProtocol.h"
#include "TranscriptModel.h"

namespace corvellan {

/// The turn in a training session.
enum class TrainStage { listening, waitingLLM, counterpartSpeaking, coaching };

/// What a session is about; everything absent by default.
struct StartRequest {
    std::optional<QString> company;
    std::optional<QString> hubspotId;
    bool simMode = false;
    std::optional<QString> scenario;
    std::optional<DiscType> discType;
    std::optional<QString> calendarEventId;
    std::optional<AudienceType> audience;  ///< Absent means the preferred coaching mode.
    std::optional<QString> callNotes;
    std::optional<std::vector<CallGoal>> goals;
    bool gameMode = false;
};

/// What `SessionViewModel` needs of its surroundings; all of it outlives the object.
struct SessionEnvironment {
    Executor& main;   ///< The thread that the object lives on.
    Executor& pumps;  ///< Where audio is passed on, so that drawing never delays it.
    Clock& clock;
    Preferences& preferences;
    const DebugLog& debugLog;
    Diagnostics& diagnostics;
    ServiceFactory& services;
    HttpClientProtocol& http;              ///< The one HTTP session of the process.
    BriefingServiceProtocol& briefings;    ///< The chat/briefings back-end's records.
    QString productionUrl;                 ///< The coaching endpoint, a WebSocket URL with the path "/ws".
    QString chatUrl;                       ///< The chat/briefings back-end.
    std::optional<QString> clientVersion;  ///< The program's short version string.
    QString tokenFilePath;                 ///< Where sign-in keeps its tokens.
    std::function<std::optional<QString>()> loadMemoryNote;
};

/// The one central object: all live session state, the preferences that sessions depend on, and the
/// long-running services. Screens observe its fields and call its operations; services never write
/// to it. Lives on the main thread for the whole process.
///
/// Its work is spread over one source file a duty: SessionViewModel.cpp (state, construction),
/// SessionPipeline.cpp, ServerMessageHandling.cpp, AudioTranscriptFlow.cpp, TrainingMode.cpp,
/// ExtensionLink.cpp, AccountAndCalendar.cpp, HistorySync.cpp.
class SessionViewModel final : public QObject {
    Q_OBJECT

public:
    SessionViewModel(SessionEnvironment environment, std::unique_ptr<WebSocketServiceProtocol> webSocket,
                     std::unique_ptr<AudioServiceProtocol> audio, std::unique_ptr<SttServiceProtocol> stt,
                     std::unique_ptr<AuthServiceProtocol> auth);
    ~SessionViewModel() override;

    // MARK: - Published state, in its declared order

    /// The coach connection is up.
    CORVELLAN_PUBLISHED(bool, isConnected, setIsConnected) = false;
    /// A session is running. Every assignment runs `onSessionActiveChanged`.
    CORVELLAN_PUBLISHED_FIELD(bool, isSessionActive) = false;
    /// The panel is hidden from capture during a call. Every assignment runs `onStealthChanged`.
    CORVELLAN_PUBLISHED_FIELD(bool, isStealthEnabled) = false;

public:
    std::function<void(bool)> onSessionActiveChanged;
    std::function<void(bool)> onStealthChanged;
    std::function<void(const QString&)> onSessionModeChanged;

    /// Layout of the panel in a call: "full", "coach" or "mini". Every assignment runs `onSessionModeChanged`.
    CORVELLAN_PUBLISHED_FIELD(QString, sessionMode) = QStringLiteral("full");
    /// Text scale of the coaching panel. Every assignment is stored and runs `onSessionModeChanged`.
    CORVELLAN_PUBLISHED_FIELD(double, fontScale) = 1.5;
    CORVELLAN_PUBLISHED(QString, coachingMessage, setCoachingMessage);
    CORVELLAN_PUBLISHED(std::optional<CoachingType>, coachingType, setCoachingType);
    CORVELLAN_PUBLISHED(std::optional<CoachingUrgency>, coachingUrgency, setCoachingUrgency);
    CORVELLAN_PUBLISHED(std::optional<QString>, productHint, setProductHint);
    CORVELLAN_PUBLISHED(CallStage, callStage, setCallStage) = CallStage::opening;
    CORVELLAN_PUBLISHED(std::optional<QString>, callPhase, setCallPhase);
    CORVELLAN_PUBLISHED(MeddicScore, meddicScore, setMeddicScore);
    CORVELLAN_PUBLISHED(MeddicEvidence, meddicEvidence, setMeddicEvidence);
    CORVELLAN_PUBLISHED(BuyerDisc, buyerDisc, setBuyerDisc);
    CORVELLAN_PUBLISHED(CustomerSentiment, sentiment, setSentiment) = CustomerSentiment::neutral;

public:
    /// Everything said in this session, in order of arrival.
    [[nodiscard]] TranscriptModel& transcriptLines() { return m_transcriptLines; }
    [[nodiscard]] const TranscriptModel& transcriptLines() const { return m_transcriptLines; }

    CORVELLAN_PUBLISHED(std::optional<QString>, errorMessage, setErrorMessage);
    CORVELLAN_PUBLISHED(float, audioLevel, setAudioLevel) = 0;
    CORVELLAN_PUBLISHED(float, systemAudioLevel, setSystemAudioLevel) = 0;
    CORVELLAN_PUBLISHED(QString, statusText, setStatusText) = QStringLiteral("Ready");
    CORVELLAN_PUBLISHED(std::optional<QString>, userEmail, setUserEmail);
    CORVELLAN_PUBLISHED(QString, counterpartStreamingText, setCounterpartStreamingText);
    CORVELLAN_PUBLISHED(TrainStage, trainStage, setTrainStage) = TrainStage::listening;
    CORVELLAN_PUBLISHED(bool, isTtsPlaying, setIsTtsPlaying) = false;
    CORVELLAN_PUBLISHED(bool, isTtsMuted, setIsTtsMuted) = false;
    CORVELLAN_PUBLISHED(std::optional<SummaryPayload>, lastSummary, setLastSummary);
    CORVELLAN_PUBLISHED(std::optional<CallOutcome>, selectedOutcome, setSelectedOutcome);
    CORVELLAN_PUBLISHED(std::optional<int>, feedbackRating, setFeedbackRating);
    CORVELLAN_PUBLISHED(QString, feedbackNote, setFeedbackNote);
    CORVELLAN_PUBLISHED(bool, feedbackSubmitted, setFeedbackSubmitted) = false;
    CORVELLAN_PUBLISHED(std::optional<ExtensionContextPayload>, extensionContext, setExtensionContext);
    CORVELLAN_PUBLISHED(bool, extensionCallActive, setExtensionCallActive) = false;
    CORVELLAN_PUBLISHED(bool, sensorConnected, setSensorConnected) = false;
    /// Start a session when the extension sees a call. Every assignment is stored.
    CORVELLAN_PUBLISHED_FIELD(bool, autoStartOnCall) = true;
    /// Default audience of a session. Every assignment is stored.
    CORVELLAN_PUBLISHED_FIELD(AudienceType, coachingMode) = AudienceType::directSale;
    CORVELLAN_PUBLISHED(std::optional<int>, autoStartCountdown, setAutoStartCountdown);
    CORVELLAN_PUBLISHED(std::optional<QString>, requestedTab, setRequestedTab);
    CORVELLAN_PUBLISHED(std::vector<CalendarMeeting>, upcomingMeetings, setUpcomingMeetings);
    CORVELLAN_PUBLISHED(std::optional<QString>, companySearchQuery, setCompanySearchQuery);
    CORVELLAN_PUBLISHED(std::optional<ResolvedCompany>, companyForBrief, setCompanyForBrief);
    CORVELLAN_PUBLISHED(bool, isLoadingMeetings, setIsLoadingMeetings) = false;
    CORVELLAN_PUBLISHED(std::optional<QString>, calendarError, setCalendarError);
    /// Set once at start-up; null when the program has no updater.
    CORVELLAN_PUBLISHED(UpdaterProtocol*, sparkleUpdater, setSparkleUpdater) = nullptr;
    CORVELLAN_PUBLISHED(bool, updateAvailable, setUpdateAvailable) = false;
    CORVELLAN_PUBLISHED(qint64, elapsedSeconds, setElapsedSeconds) = 0;
    CORVELLAN_PUBLISHED(std::optional<QString>, crmBrief, setCrmBrief);
    CORVELLAN_PUBLISHED(std::optional<HandoffResponse>, cachedHandoff, setCachedHandoff);
    CORVELLAN_PUBLISHED(bool, showHandoffWindow, setShowHandoffWindow) = false;
    CORVELLAN_PUBLISHED(std::optional<int>, meddicJustConfirmed, setMeddicJustConfirmed);
    /// Preference for frame upload. Only a real change is stored and applied.
    CORVELLAN_PUBLISHED_FIELD(bool, isScreenShareEnabled) = false;
    CORVELLAN_PUBLISHED(std::optional<QString>, currentSessionId, setCurrentSessionId);
    CORVELLAN_PUBLISHED(QString, serverURL, setServerURL);
    CORVELLAN_PUBLISHED(QString, authURL, setAuthURL);
    CORVELLAN_PUBLISHED(bool, isSyncingHistory, setIsSyncingHistory) = false;
    /// The company of the session, as it was started with.
    CORVELLAN_PUBLISHED(std::optional<QString>, currentCompany, setCurrentCompany);

public:
    void setIsSessionActive(bool value);
    void setIsStealthEnabled(bool value);
    void setSessionMode(QString value);
    void setFontScale(double value);
    void setAutoStartOnCall(bool value);
    void setCoachingMode(AudienceType value);
    void setIsScreenShareEnabled(bool value);

    /// The record store; null when it did not open. Set once at start-up.
    void setModelContext(SessionStoreProtocol* store) {
        m_modelContext = store;
        Q_EMIT modelContextChanged();
    }
    [[nodiscard]] SessionStoreProtocol* modelContext() const { return m_modelContext; }

    /// What it was made with: screens read the same clock and write to the same logs.
    [[nodiscard]] const SessionEnvironment& environment() const { return m_environment; }

    // MARK: - Derived state

    /// `serverURL` names this machine, so that no sign-in is needed.
    [[nodiscard]] bool isLocalServer() const;
    [[nodiscard]] bool isLoggedIn() const;
    /// A valid access token, refreshed as needed; empty on any failure.
    [[nodiscard]] QCoro::Task<std::optional<QString>> authToken();
    /// `serverURL` turned into the base of the coaching server's REST side by text replacement.
    [[nodiscard]] QString restBaseURL() const;
    /// The URL of a server mode: a custom one that is empty counts as production.
    [[nodiscard]] static QString resolveURL(ServerMode mode, const std::optional<QString>& custom,
                                            const QString& production);
    /// The claim "sub" of a token, which the back-end fills with the user's address; the signature is
    /// not checked. Empty for anything that is no such token.
    [[nodiscard]] static std::optional<QString> emailFromJWT(const QString& token);

    // MARK: - Session pipeline

    /// Resets the state and launches `runSession`. Nothing happens while a session is active.
    void startSession(StartRequest request = {});
    /// Asks the server to finish, and stops after 3 seconds without its summary.
    void endSession();
    /// Stops at once. The session task does the closing after this has returned.
    void stopSession();
    void toggleScreenShare();

    /// What one message of the live phase does. Cannot fail and does not wait.
    void handleServerMessage(const ServerMsg& message);

    // MARK: - Training mode

    void toggleTtsMute();
    void interruptTts();
    /// Cuts the buyer short; the turn is the user's.
    void stopTtsAndResumeMic();

    // MARK: - Extension link

    /// Listens on a socket of its own and polls every 30 seconds, until `stopSensorPolling` or the end of
    /// the program. Started anew, both channels take the place of earlier ones.
    void startSensorPolling();
    void stopSensorPolling();
    /// One poll, at once.
    void checkSensorStatus();
    /// Stops a running countdown to an automatic start.
    void cancelAutoStart();

    /// A start is on its way to the server. Another one would take its place, and the closing of the first
    /// would end the call of both. One that still signs in may be replaced: the user may have lost the
    /// browser's page.
    [[nodiscard]] bool isReachingServer() const;
    // MARK: - Account, calendar, reports

    /// Signs in, in the background, with the browser if it must be; then fetches the meetings.
    void login();
    /// Signs out, in the background, and stops a running session.
    void logoutAction();
    /// Fetches the list of meetings, unless the server is a local one or the present list is not empty and
    /// less than 300 seconds old.
    ///
    /// \param force fetches a fresh list as well. Calls run side by side; the later answer wins.
    void fetchUpcomingMeetings(bool force = false);
    /// Posts to a path on the coaching server's REST side, in the background. A failure only shows in the log.
    void postJSON(const QString& path, const QJsonObject& body);
    /// Keeps the rating, 1 for helpful and -1 for not, in the record, and reports it with a note that is not
    /// empty. The call is the record's, else the last summary's; without one nothing is reported.
    void sendFeedback(int rating, const std::optional<QString>& note, const std::optional<SessionRecord>& record);
    /// As `sendFeedback`, for how the call came out.
    void sendOutcome(CallOutcome outcome, const std::optional<SessionRecord>& record);

    // MARK: - History

    /// Adds the calls that the server knows and the store does not, in the background; changes and deletes
    /// nothing. Nothing happens while a run is under way, and on a local server.
    void syncHistory();

    /// The end was asked for, and the summary, which the record comes from, is still to come.
    [[nodiscard]] bool isEnding() const;
    /// No session task and no short task is under way: everything started is closed and stored. The
    /// extension link, which runs beside all that, counts only once it was stopped.
    [[nodiscard]] bool isQuiet() const;

Q_SIGNALS:
    /// The record store has opened, or another one took its place.
    void modelContextChanged();
    /// A coaching message has changed the state; `arrivedAt` is when it came to the socket.
    void coachingShown(corvellan::MonotonicTime arrivedAt);

private:
    void debugLog(const QString& message) const { m_environment.debugLog.write(message); }

    /// Runs a short task that nothing cancels and no field keeps.
    template <typename Body>
    void runDetached(Body body) {
        ++m_detachedTasks;
        static_cast<void>(
            CancellableTask::start([this, body = std::move(body)](std::stop_token stop) -> QCoro::Task<void> {
                co_await body(std::move(stop));
                --m_detachedTasks;
            }));
    }

    // SessionPipeline.cpp

    /// What the live phase reads of one side.
    struct SideStreams {
        AsyncStream<AudioChunk> audio;
        AsyncStream<SttEvent> events;
    };

    /// The memory note and the call notes as they travel in the start message.
    [[nodiscard]] std::optional<QString> serverContext(const std::optional<QString>& callNotes) const;
    void resetForSession();
    QCoro::Task<void> runSession(StartRequest request, std::stop_token stop);
    /// The access token, absent on a local server.
    QCoro::Task<std::expected<std::optional<QString>, Error>> signIn();
    [[nodiscard]] ClientMsg startMessageFor(const StartRequest& request) const;
    /// Empty when the server refused and the user has been told.
    QCoro::Task<std::expected<std::optional<SessionStartedPayload>, Error>> awaitSessionStarted(std::stop_token stop);
    void refuseWithoutToken();
    /// Empty when there is nothing to capture and the user has been told.
    QCoro::Task<std::optional<SideStreams>> startSystemAudio(SessionStartedPayload started);
    QCoro::Task<void> failSession(Error error);
    /// The cleanup in full, also of services that were never started, and the exit.
    QCoro::Task<void> closePipeline();
    void exitSession();
    QCoro::Task<void> runElapsedTimer(std::stop_token stop);
    QCoro::Task<void> applyScreenShareToggle();

    // AudioTranscriptFlow.cpp
    /// \param system absent without a token or a capture.
    QCoro::Task<void> runLivePhase(SideStreams microphone, std::optional<SideStreams> system, std::stop_token stop);
    QCoro::Task<void> pumpMicrophone(AsyncStream<AudioChunk> stream, std::stop_token stop);
    QCoro::Task<void> pumpSystemAudio(AsyncStream<AudioChunk> stream, std::stop_token stop);
    QCoro::Task<void> readSystemEvents(AsyncStream<SttEvent> stream, std::stop_token stop);
    QCoro::Task<void> readMicrophoneEvents(AsyncStream<SttEvent> stream, std::stop_token stop);
    QCoro::Task<void> readServerMessages(std::stop_token stop);
    void recordLine(TranscriptSource source, const QString& text);
    void appendLine(TranscriptSource source, const QString& text);

    // ServerMessageHandling.cpp
    void handle(const CoachingPayload& coaching);
    void handle(const SummaryPayload& summary);
    void handle(const ServerMsg::CounterpartToken& token);
    void handleCounterpartDone();
    void flashNewCriterion(const MeddicScore& before, const MeddicScore& after);
    void storeRecord(const SummaryPayload& summary);

    // TrainingMode.cpp
    void onTtsPlayingChanged(bool isPlaying);
    /// The turn is the user's again, in a training session that runs.
    void resumeListening();

    // AccountAndCalendar.cpp
    QCoro::Task<void> loadMeetings();
    /// A question to the coaching server's REST side; its URL is invalid when none results.
    [[nodiscard]] HttpRequest restRequest(const QString& path, const QString& token) const;
    /// Posts to a path below the call that `record` or the last summary names.
    void reportOnCall(const QString& path, const QJsonObject& body, const std::optional<SessionRecord>& record);
    void changeRecord(QUuid id, std::function<void(SessionRecord&)> edit);

    // HistorySync.cpp
    QCoro::Task<std::expected<void, Error>> importHistory();

    // ExtensionLink.cpp
    void startExtensionWs();
    QCoro::Task<void> listenForExtension(std::stop_token stop);
    /// Reads one connection to its end.
    QCoro::Task<std::expected<void, Error>> readExtensionMessages(WebSocketServiceProtocol& socket, QUrl url,
                                                                  std::stop_token stop);
    void handleExtensionMessage(const ServerMsg& message);
    QCoro::Task<void> pollSensorStatus(std::stop_token stop);
    void onExtensionCallDetected(const ExtensionContextPayload& payload);
    void onExtensionCallEnded();

    SessionEnvironment m_environment;
    TranscriptModel m_transcriptLines;
    SessionStoreProtocol* m_modelContext = nullptr;

    TaskSlot m_extensionWsTask;
    TaskSlot m_sensorPollTask;
    TaskSlot m_sessionTask;
    TaskSlot m_endSessionTimeoutTask;
    TaskSlot m_coachingResetTask;
    TaskSlot m_timerTask;
    TaskSlot m_autoStartTask;
    int m_runningSessions = 0;
    /// Sessions in their live phase or being closed, and word of each one's end.
    int m_pipelines = 0;
    Announcement m_pipelineClosed;
    int m_detachedTasks = 0;
    int m_linkTasks = 0;
    WallTime m_lastRealTranscriptTime{};
    bool m_isTrainMode = false;
    std::optional<QString> m_currentScenario;
    std::optional<QString> m_currentHubspotId;
    std::optional<QString> m_currentCalendarEventId;
    std::optional<WallTime> m_meetingsFetchedAt;

    std::unique_ptr<ScreenShareServiceProtocol> m_screenShare;
    std::unique_ptr<TtsServiceProtocol> m_tts;
    std::unique_ptr<SystemAudioServiceProtocol> m_systemAudio;
    std::unique_ptr<SttServiceProtocol> m_systemStt;
    Logger m_logger{"Session"};
    std::unique_ptr<WebSocketServiceProtocol> m_webSocket;
    std::unique_ptr<AudioServiceProtocol> m_audio;
    std::unique_ptr<SttServiceProtocol> m_stt;
    std::unique_ptr<AuthServiceProtocol> m_auth;
};

}  // namespace corvellan

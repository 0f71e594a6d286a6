#include "SessionSurroundings.h"

namespace corvellan::test {

FakeGivenServices::FakeGivenServices(CallLog& log)
    : m_ws(std::make_unique<FakeWebSocket>(log)),
      m_audio(std::make_unique<FakeAudio>(log)),
      m_stt(std::make_unique<FakeStt>(log, "stt")),
      m_auth(std::make_unique<FakeAuth>(log)),
      ws(m_ws.get()),
      audio(m_audio.get()),
      stt(m_stt.get()),
      auth(m_auth.get()) {}

SessionSurroundings::SessionSurroundings() {
    preferences.setString(QStringLiteral("serverMode"), QStringLiteral("local"));
}

SessionSurroundings::~SessionSurroundings() = default;

SessionEnvironment SessionSurroundings::environment(ServiceFactory& services, const QString& version) {
    return {.main = mainExecutor(),
            .pumps = pumps ? *pumps : mainExecutor(),
            .clock = clock,
            .preferences = preferences,
            .debugLog = debugLog,
            .diagnostics = diagnostics,
            .services = services,
            .http = http,
            .briefings = briefings,
            .productionUrl = QStringLiteral("wss://coach.test/ws"),
            .chatUrl = QStringLiteral("https://chat.test"),
            .clientVersion = version,
            .tokenFilePath = tokenFilePath(),
            .loadMemoryNote = [this] { return memoryNote; }};
}

void SessionSurroundings::quieten(SessionViewModel& session, const FakeGivenServices& given, FakeFactory& made) {
    session.disconnect();
    session.onSessionActiveChanged = {};
    session.onStealthChanged = {};
    session.onSessionModeChanged = {};
    session.stopSensorPolling();
    session.stopSession();
    http.gate.open();
    briefings.gate.open();
    given.ws->connectGate.open();
    given.stt->connectGate.open();
    given.stt->sendGate.open();
    given.stt->disconnectGate.open();
    made.systemStt.connectGate.open();
    made.systemStt.sendGate.open();
    given.auth->loginGate.open();
    settleAfter(clock, std::chrono::minutes{1});
    // What was held at a gate has gone on and may have armed timers of its own.
    session.stopSession();
    settleAfter(clock, std::chrono::minutes{1});
    Q_ASSERT(session.isQuiet());
}

SessionStartedPayload SessionSurroundings::started() {
    return {.sessionId = QStringLiteral("s-1"),
            .openaiEphemeralToken = QStringLiteral("mic-token"),
            .openaiRealtimeUrl = QStringLiteral("ws://stt.test/mic"),
            .openaiEphemeralTokenSystem = QStringLiteral("system-token"),
            .openaiRealtimeUrlSystem = QStringLiteral("ws://stt.test/system")};
}

}  // namespace corvellan::test

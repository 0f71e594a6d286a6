#pragma once

#include <memory>
#include <QTemporaryDir>

#include "FakeServices.h"
#include "ManualClock.h"
#include "TestLoop.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan::test {

/// The four services that a session is given. Each is handed over once, and good for as long as the session
/// that took it lives.
class FakeGivenServices {
public:
    explicit FakeGivenServices(CallLog& log)
        : m_ws(std::make_unique<FakeWebSocket>(log)),
          m_audio(std::make_unique<FakeAudio>(log)),
          m_stt(std::make_unique<FakeStt>(log, "stt")),
          m_auth(std::make_unique<FakeAuth>(log)),
          ws(m_ws.get()),
          audio(m_audio.get()),
          stt(m_stt.get()),
          auth(m_auth.get()) {}

    [[nodiscard]] std::unique_ptr<FakeWebSocket> takeWebSocket() { return std::move(m_ws); }
    [[nodiscard]] std::unique_ptr<FakeAudio> takeAudio() { return std::move(m_audio); }
    [[nodiscard]] std::unique_ptr<FakeStt> takeStt() { return std::move(m_stt); }
    [[nodiscard]] std::unique_ptr<FakeAuth> takeAuth() { return std::move(m_auth); }

private:
    std::unique_ptr<FakeWebSocket> m_ws;
    std::unique_ptr<FakeAudio> m_audio;
    std::unique_ptr<FakeStt> m_stt;
    std::unique_ptr<FakeAuth> m_auth;

public:
    FakeWebSocket* ws;
    FakeAudio* audio;
    FakeStt* stt;
    FakeAuth* auth;
};

/// What a session stands on, a manual clock and fakes, on a local server.
class SessionSurroundings {
public:
    SessionSurroundings() { preferences.setString(QStringLiteral("serverMode"), QStringLiteral("local")); }
    SessionSurroundings(const SessionSurroundings&) = delete;
    SessionSurroundings& operator=(const SessionSurroundings&) = delete;

    [[nodiscard]] SessionEnvironment environment(ServiceFactory& services, const QString& version) {
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

    /// Ends all that `session` has under way. A test's own variables go before its fixture: nothing may call
    /// into them any more.
    void quieten(SessionViewModel& session, const FakeGivenServices& given, FakeFactory& made) {
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

    [[nodiscard]] QString tokenFilePath() const { return folder.filePath(QStringLiteral("auth.json")); }
    [[nodiscard]] QString debugLogPath() const { return folder.filePath(QStringLiteral("corvellan-debug.log")); }

    /// A server's answer with tokens for both sides.
    static SessionStartedPayload started() {
        return {.sessionId = QStringLiteral("s-1"),
                .openaiEphemeralToken = QStringLiteral("mic-token"),
                .openaiRealtimeUrl = QStringLiteral("ws://stt.test/mic"),
                .openaiEphemeralTokenSystem = QStringLiteral("system-token"),
                .openaiRealtimeUrlSystem = QStringLiteral("ws://stt.test/system")};
    }

    QTemporaryDir folder;
    ManualClock clock;
    MemoryPreferences preferences;
    DebugLog debugLog{debugLogPath(), clock};
    Diagnostics diagnostics;
    FakeHttp http;
    FakeBriefings briefings;
    std::optional<QString> memoryNote;
    /// Where the pumps run; the main executor when null.
    Executor* pumps = nullptr;
};

}  // namespace corvellan::test

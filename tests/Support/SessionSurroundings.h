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
    explicit FakeGivenServices(CallLog& log);

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
    SessionSurroundings();
    ~SessionSurroundings();
    SessionSurroundings(const SessionSurroundings&) = delete;
    SessionSurroundings& operator=(const SessionSurroundings&) = delete;

    [[nodiscard]] SessionEnvironment environment(ServiceFactory& services, const QString& version);

    /// Ends all that `session` has under way. A test's own variables go before its fixture: nothing may call
    /// into them any more.
    void quieten(SessionViewModel& session, const FakeGivenServices& given, FakeFactory& made);

    [[nodiscard]] QString tokenFilePath() const { return folder.filePath(QStringLiteral("auth.json")); }
    [[nodiscard]] QString debugLogPath() const { return folder.filePath(QStringLiteral("corvellan-debug.log")); }

    /// A server's answer with tokens for both sides.
    static SessionStartedPayload started();

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

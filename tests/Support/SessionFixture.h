#pragma once

#include <algorithm>
#include <QFile>
#include <QTemporaryDir>

#include "FakeServices.h"
#include "ManualClock.h"
#include "TestLoop.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan::test {

/// A whole session over fakes and a manual clock, on the main thread. Prepare `preferences`,
/// `loadNote` and the like first; the view model is made at its first use.
class SessionFixture {
public:
    SessionFixture() { preferences.setString(QStringLiteral("serverMode"), QStringLiteral("local")); }
    ~SessionFixture() {
        if (!m_viewModel)
            return;
        // A test's own variables go before the fixture: nothing may call into them any more.
        m_viewModel->disconnect();
        m_viewModel->onSessionActiveChanged = {};
        m_viewModel->onStealthChanged = {};
        m_viewModel->onSessionModeChanged = {};
        m_viewModel->stopSensorPolling();
        m_viewModel->stopSession();
        http.gate.open();
        briefings.gate.open();
        ws->connectGate.open();
        stt->connectGate.open();
        stt->sendGate.open();
        stt->disconnectGate.open();
        factory.systemStt.connectGate.open();
        factory.systemStt.sendGate.open();
        auth->loginGate.open();
        settleAfter(clock, std::chrono::minutes{1});
        // What was held at a gate has gone on and may have armed timers of its own.
        m_viewModel->stopSession();
        settleAfter(clock, std::chrono::minutes{1});
        Q_ASSERT(m_viewModel->isQuiet());
    }
    SessionFixture(const SessionFixture&) = delete;
    SessionFixture& operator=(const SessionFixture&) = delete;

    SessionViewModel& session() {
        if (!m_viewModel) {
            m_viewModel = std::make_unique<SessionViewModel>(
                SessionEnvironment{.main = mainExecutor(),
                                   .pumps = pumps ? *pumps : mainExecutor(),
                                   .clock = clock,
                                   .preferences = preferences,
                                   .debugLog = debugLog,
                                   .diagnostics = diagnostics,
                                   .services = factory,
                                   .http = http,
                                   .briefings = briefings,
                                   .productionUrl = QStringLiteral("wss://coach.test/ws"),
                                   .chatUrl = QStringLiteral("https://chat.test"),
                                   .clientVersion = QStringLiteral("1.2.3"),
                                   .tokenFilePath = tokenFilePath(),
                                   .loadMemoryNote = [this] { return memoryNote; }},
                std::move(m_ws), std::move(m_audio), std::move(m_stt), std::move(m_auth));
        }
        return *m_viewModel;
    }

    [[nodiscard]] QString tokenFilePath() const { return folder.filePath(QStringLiteral("auth.json")); }

    /// A server's answer with tokens for both sides.
    static SessionStartedPayload started() {
        return {.sessionId = QStringLiteral("s-1"),
                .openaiEphemeralToken = QStringLiteral("mic-token"),
                .openaiRealtimeUrl = QStringLiteral("ws://stt.test/mic"),
                .openaiEphemeralTokenSystem = QStringLiteral("system-token"),
                .openaiRealtimeUrlSystem = QStringLiteral("ws://stt.test/system")};
    }

    /// Starts and goes as far as the live phase.
    void goLive(StartRequest request = {}) {
        session().startSession(std::move(request));
        settle();
        ws->deliver(ServerMsg::Value{started()});
        settle();
        log.clear();
    }

    /// Some service was asked for this.
    [[nodiscard]] bool did(const std::string& step) const { return std::ranges::find(log, step) != log.end(); }

    /// The lines of the debug log, without their stamps.
    [[nodiscard]] QStringList debugLines() const {
        QFile file{debugLogPath()};
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        for (auto& line : lines)
            line.remove(0, QStringLiteral("2026-03-02 10:00:00 +0000 ").size());
        return lines;
    }

    [[nodiscard]] QString error() { return session().errorMessage().value_or(QString{}); }

    [[nodiscard]] QString debugLogPath() const { return folder.filePath(QStringLiteral("corvellan-debug.log")); }

    QTemporaryDir folder;
    ManualClock clock;
    MemoryPreferences preferences;
    DebugLog debugLog{debugLogPath(), clock};
    Diagnostics diagnostics;
    CallLog log;
    FakeFactory factory{log};
    FakeHttp http;
    FakeBriefings briefings;
    std::optional<QString> memoryNote;
    /// Where the pumps run; the main executor when null.
    Executor* pumps = nullptr;

private:
    std::unique_ptr<FakeWebSocket> m_ws = std::make_unique<FakeWebSocket>(log);
    std::unique_ptr<FakeAudio> m_audio = std::make_unique<FakeAudio>(log);
    std::unique_ptr<FakeStt> m_stt = std::make_unique<FakeStt>(log, "stt");
    std::unique_ptr<FakeAuth> m_auth = std::make_unique<FakeAuth>(log);

public:
    // Good for as long as the fixture lives: the session owns them once it is made.
    FakeWebSocket* ws = m_ws.get();
    FakeAudio* audio = m_audio.get();
    FakeStt* stt = m_stt.get();
    FakeAuth* auth = m_auth.get();

private:
    std::unique_ptr<SessionViewModel> m_viewModel;
};

}  // namespace corvellan::test

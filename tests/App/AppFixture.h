#pragma once

#include <gtest/gtest.h>

#include <map>

#include "App/AppDelegate.h"
#include "App/Panel/StealthPanel.h"
#include "Panel/PanelFixture.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeServices.h"
#include "Support/LogCapture.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

class FakeUpdater final : public UpdaterProtocol {
public:
    void checkForUpdates() override { ++checks; }
    int checks = 0;
};

class FakeUpdateFeed final : public UpdateFeedProtocol {
public:
    explicit FakeUpdateFeed(CallLog& log) : m_log(log) {}

    QCoro::Task<std::expected<UpdateFeedAnswer, Error>> fetch(QUrl url, std::stop_token) override {
        m_log.emplace_back("updateFeed.fetch");
        asked.push_back(std::move(url));
        if (failure)
            co_return std::unexpected(*failure);
        co_return UpdateFeedAnswer{.body = body};
    }

    QList<QUrl> asked;
    QByteArray body;
    std::optional<Error> failure;

private:
    CallLog& m_log;
};

/// Hands out the fakes that the test prepared, and notes in which order they were asked for.
class FakeAppFactory final : public AppFactory {
public:
    explicit FakeAppFactory(CallLog& log) : m_log(log), session(log) {}

    std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override { return session.makeScreenShare(); }
    std::unique_ptr<TtsServiceProtocol> makeTts() override { return session.makeTts(); }
    std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override { return session.makeSystemAudio(); }
    std::unique_ptr<SttServiceProtocol> makeStt() override { return session.makeStt(); }

    std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override {
        if (!m_ws)
            return session.makeWebSocket();
        m_log.emplace_back("make WebSocketService");
        return std::move(m_ws);
    }
    std::unique_ptr<AudioServiceProtocol> makeAudio() override {
        m_log.emplace_back("make AudioService");
        return std::move(m_audio);
    }
    std::unique_ptr<SttServiceProtocol> makeMicrophoneStt() override {
        m_log.emplace_back("make SttService");
        return std::move(m_stt);
    }
    std::unique_ptr<AuthServiceProtocol> makeAuth() override {
        m_log.emplace_back("make AuthService");
        return std::move(m_auth);
    }

private:
    CallLog& m_log;
    std::unique_ptr<FakeWebSocket> m_ws = std::make_unique<FakeWebSocket>(m_log);
    std::unique_ptr<FakeAudio> m_audio = std::make_unique<FakeAudio>(m_log);
    std::unique_ptr<FakeStt> m_stt = std::make_unique<FakeStt>(m_log, "stt");
    std::unique_ptr<FakeAuth> m_auth = std::make_unique<FakeAuth>(m_log);

public:
    FakeFactory session;
    // Good for as long as the delegate that took them lives.
    FakeWebSocket* ws = m_ws.get();
    FakeAudio* audio = m_audio.get();
    FakeStt* stt = m_stt.get();
    FakeAuth* auth = m_auth.get();
};

/// The whole shell over fakes and a manual clock, on a local server. Prepare the fakes first; the delegate
/// is made at its first use.
class AppFixture : public testing::Test {
protected:
    AppFixture() { preferences.setString(QStringLiteral("serverMode"), QStringLiteral("local")); }

    ~AppFixture() override { takeDown(); }

    /// Also for the destructors of tests that own something which the delegate uses.
    void takeDown() {
        if (!m_delegate)
            return;
        auto& session = m_delegate->viewModel();
        session.disconnect();
        session.onSessionActiveChanged = {};
        session.stopSession();
        services.ws->connectGate.open();
        services.auth->loginGate.open();
        settleAfter(clock, std::chrono::minutes{1});
        session.stopSession();
        session.stopSensorPolling();
        settleAfter(clock, std::chrono::minutes{1});
        m_delegate.reset();
        // What it asked to stop looks once more at the clock.
        settle();
    }

    AppDelegate& delegate() {
        if (!m_delegate)
            m_delegate = std::make_unique<AppDelegate>(environment());
        return *m_delegate;
    }
    SessionViewModel& session() { return delegate().viewModel(); }
    StealthPanel& panel() { return *delegate().panel(); }

    void launch() {
        delegate().applicationDidFinishLaunching();
        settle();
    }

    /// Starts a call and goes as far as the live phase.
    void goLive() {
        services.ws->deliver(ServerMsg::Value{SessionFixture::started()});
        settle();
    }

    // Stand-ins, unless a test has the real ones.
    virtual NotificationCenter& notificationCenter() { return desktop.notifications; }
    virtual WindowActivation& windowActivation() { return desktop.activation; }

    [[nodiscard]] qsizetype count(const std::string& step) const { return std::ranges::count(log, step); }

    QTemporaryDir folder;
    ManualClock clock;
    MemoryPreferences preferences;
    DebugLog debugLog{folder.filePath(QStringLiteral("corvellan-debug.log")), clock};
    Diagnostics diagnostics;
    FakeDesktop desktop;
    CallLog& log = desktop.log;
    FakeCaptureHiding captureHiding;
    FakeAppFactory services{log};
    FakeHttp http;
    FakeBriefings briefings;
    FakeUpdateFeed updateFeed{log};
    IgnoredHandoffWindow handoffWindow;
    LogCapture shell{QStringLiteral("Shell")};
    std::optional<Error> storeFailure;
    QString runningVersion = QStringLiteral("1.9");
    int terminations = 0;
    FakeUpdater* updater = nullptr;
    FakeStore* store = nullptr;

private:
    AppEnvironment environment() {
        return {
            .session = {.main = mainExecutor(),
                        .pumps = mainExecutor(),
                        .clock = clock,
                        .preferences = preferences,
                        .debugLog = debugLog,
                        .diagnostics = diagnostics,
                        .services = services,
                        .http = http,
                        .briefings = briefings,
                        .productionUrl = QStringLiteral("wss://coach.test/ws"),
                        .chatUrl = QStringLiteral("https://chat.test"),
                        .clientVersion = runningVersion,
                        .tokenFilePath = folder.filePath(QStringLiteral("auth.json")),
                        .loadMemoryNote = {}},
            .services = services,
            .desktop = {.notifications = notificationCenter(),
                        .globalKeys = desktop.keys,
                        .statusBar = desktop.statusBar,
                        .loginItems = desktop.loginItems,
                        .permissions = desktop.permissions,
                        .systemSettings = desktop.settings,
                        .alerts = desktop.alerts,
                        .activation = windowActivation(),
                        .captureHiding = captureHiding,
                        .browser = desktop.browser,
                        .appearance = desktop.appearance},
            .handoffWindow = handoffWindow,
            .updateFeed = updateFeed,
            .makeUpdater =
                [this] {
                    log.emplace_back("make updater");
                    auto made = std::make_unique<FakeUpdater>();
                    updater = made.get();
                    return made;
                },
            .openStore = [this]() -> QCoro::Task<std::expected<OpenedStore, Error>> {
                log.emplace_back("store.open");
                if (storeFailure)
                    co_return std::unexpected(*storeFailure);
                auto made = std::make_unique<FakeStore>();
                store = made.get();
                co_return OpenedStore{.store = std::move(made)};
            },
            .runningVersion = runningVersion,
            .runningBuild = QStringLiteral("45"),
            .extensionUrl = QStringLiteral("https://store.test/corvellan-sensor"),
            .launchedAt = clock.now(),
            .terminate = [this] { ++terminations; },
        };
    }

    std::unique_ptr<AppDelegate> m_delegate;
};

}  // namespace corvellan::test

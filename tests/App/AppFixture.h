#pragma once

#include <gtest/gtest.h>

#include "App/AppDelegate.h"
#include "App/Panel/StealthPanel.h"
#include "Panel/PanelFixture.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeServices.h"
#include "Support/LogCapture.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

/// The server of the update feed: the part of HTTP that answers at its address.
class FakeUpdateFeed {
public:
    FakeUpdateFeed(FakeHttp& http, CallLog& log) {
        http.respond = [this, &log](const HttpRequest& request) -> FakeHttp::Result {
            if (request.url.path() != u"/appcast.xml")
                return std::unexpected(FakeHttp::unreachable());
            log.emplace_back("updateFeed.fetch");
            asked.push_back(request.url);
            if (failure)
                return std::unexpected(*failure);
            return HttpAnswer{.status = 200, .body = body};
        };
    }
    FakeUpdateFeed(const FakeUpdateFeed&) = delete;
    FakeUpdateFeed& operator=(const FakeUpdateFeed&) = delete;

    QList<QUrl> asked;
    QByteArray body;
    std::optional<Error> failure;
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
        auto given = m_given.takeWebSocket();
        if (!given)
            return session.makeWebSocket();
        m_log.emplace_back("make WebSocketService");
        return given;
    }
    std::unique_ptr<AudioServiceProtocol> makeAudio() override {
        m_log.emplace_back("make AudioService");
        return m_given.takeAudio();
    }
    std::unique_ptr<SttServiceProtocol> makeMicrophoneStt() override {
        m_log.emplace_back("make SttService");
        return m_given.takeStt();
    }
    std::unique_ptr<AuthServiceProtocol> makeAuth() override {
        m_log.emplace_back("make AuthService");
        return m_given.takeAuth();
    }
    [[nodiscard]] const FakeGivenServices& given() const { return m_given; }

private:
    CallLog& m_log;
    FakeGivenServices m_given{m_log};

public:
    FakeFactory session;
    // Good for as long as the delegate that took them lives.
    FakeWebSocket* ws = m_given.ws;
    FakeAuth* auth = m_given.auth;
};

/// The whole shell over fakes and a manual clock, on a local server. Prepare the fakes first; the delegate
/// is made at its first use.
class AppFixture : public testing::Test, protected SessionSurroundings {
protected:
    ~AppFixture() override { takeDown(); }

    /// Also for the destructors of tests that own something which the delegate uses.
    void takeDown() {
        if (!m_delegate)
            return;
        quieten(m_delegate->viewModel(), services.given(), services.session);
        m_delegate.reset();
        // What it asked to stop looks once more at the clock.
        settle();
    }

    AppDelegate& delegate() {
        if (!m_delegate)
            m_delegate = std::make_unique<AppDelegate>(appEnvironment());
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
        services.ws->deliver(ServerMsg::Value{started()});
        settle();
    }

    // Stand-ins, unless a test has the real ones.
    virtual NotificationCenter& notificationCenter() { return desktop.notifications; }
    virtual WindowActivation& windowActivation() { return desktop.activation; }
    virtual HandoffWindowController& handoffWindowController() { return handoffWindow; }

    [[nodiscard]] qsizetype count(const std::string& step) const { return std::ranges::count(log, step); }

    FakeDesktop desktop;
    CallLog& log = desktop.log;
    FakeCaptureHiding captureHiding;
    FakeAppFactory services{log};
    FakeUpdateFeed updateFeed{http, log};
    IgnoredHandoffWindow handoffWindow;
    LogCapture shell{QStringLiteral("Shell")};
    std::optional<Error> storeFailure;
    /// Called in the middle of it, before there is a panel.
    std::function<void()> duringLaunch;
    QString runningVersion = QStringLiteral("1.9");
    int terminations = 0;
    FakeUpdater* updater = nullptr;
    FakeStore* store = nullptr;

private:
    AppEnvironment appEnvironment() {
        return {
            .session = SessionSurroundings::environment(services, runningVersion),
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
                        .speech = desktop.speech,
                        .appearance = desktop.appearance},
            .handoffWindow = handoffWindowController(),
            .makeUpdater =
                [this] {
                    log.emplace_back("make updater");
                    auto made = std::make_unique<FakeUpdater>();
                    updater = made.get();
                    return made;
                },
            .openStore = [this]() -> QCoro::Task<std::expected<OpenedStore, Error>> {
                log.emplace_back("store.open");
                if (duringLaunch)
                    duringLaunch();
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

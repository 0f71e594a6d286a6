#include "AppDelegate.h"

#include <QCoreApplication>
#include <QDir>

#include "AbsentServices.h"
#include "App/Panel/StealthPanel.h"
#include "AppServices.h"
#include "Base/Deployment.h"
#include "Base/Executor.h"
#include "Base/Log.h"
#include "Base/SettingsPreferences.h"
#include "DiagnosticsObject.h"
#include "Models/MemoryStore.h"
#include "Platform/Linux/PulseAudioInputs.h"
#include "Platform/OwnSpeech.h"
#include "Services/HttpClient.h"
#include "Services/SessionStore/SqliteSessionStore.h"
#include "ViewModels/SessionViewModel.h"
#include "Views/HandoffWindowController.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

/// How long quitting waits for the summary of a call that was just ended.
constexpr auto summaryPatience = 1500ms;
/// How long it waits in all, for what is being closed and stored too.
constexpr auto quitPatience = 2s;

class AbsentHandoffWindow final : public HandoffWindowController {
public:
    void show(const HandoffResponse&) override {}
};

}  // namespace

// In the order of construction, so that everything goes before what it uses. Threads stand above the
// services that work on them.
struct AppDelegate::Parts {
    explicit Parts(MonotonicTime launched) : launchedAt(launched) {}

    MonotonicTime launchedAt;
    EventLoopExecutor main;
    SystemClock clock;
    WorkerThread live{"corvellan-live"};
    WorkerThread network{"corvellan-net"};
    WorkerThread worker{"corvellan-work"};
    DebugLog debugLog{QDir::homePath() + u"/corvellan-debug.log"_s, clock};
    Diagnostics diagnostics;
    SettingsPreferences preferences{SettingsPreferences::defaultPath()};
    OwnSpeech ownSpeech;
    PulseAudioInputs audioInputs{clock, ownSpeech};
    HttpClient http{network.executor(), clock};
    AppServices services{live.executor(), clock, audioInputs, diagnostics};
    AbsentHandoffWindow handoffWindow;
    NoCaptureHiding captureHiding;
    DiagnosticsObject diagnosticsObject{diagnostics};
    std::unique_ptr<SqliteSessionStore> store;
    std::shared_ptr<void> storeWatch;
    std::unique_ptr<SessionViewModel> viewModel;
    std::unique_ptr<StealthPanel> panel;
    bool isQuitting = false;
};

AppDelegate::AppDelegate(MonotonicTime launchedAt) : m_parts(std::make_unique<Parts>(launchedAt)) {
    auto webSocket = m_parts->services.makeWebSocket();
    auto audio = m_parts->services.makeMicrophone();
    auto stt = m_parts->services.makeMicrophoneStt();
    auto auth = std::make_unique<AbsentAuthService>();
    m_parts->viewModel = std::make_unique<SessionViewModel>(
        SessionEnvironment{
            .main = m_parts->main,
            .pumps = m_parts->live.executor(),
            .clock = m_parts->clock,
            .preferences = m_parts->preferences,
            .debugLog = m_parts->debugLog,
            .diagnostics = m_parts->diagnostics,
            .services = m_parts->services,
            .http = m_parts->http,
            .productionUrl = deployment::coachUrl(),
            .chatUrl = deployment::chatUrl(),
            .clientVersion = deployment::version(),
            .tokenFilePath = QDir::homePath() + u"/.config/corvellan/auth.json"_s,
            .loadMemoryNote = [] { return MemoryStore::load(); },
        },
        std::move(webSocket), std::move(audio), std::move(stt), std::move(auth));
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    shellLog(u"applicationDidFinishLaunching"_s);
    openStore();
    m_parts->panel = std::make_unique<StealthPanel>(StealthPanel::Parts{
        .session = *m_parts->viewModel,
        .preferences = m_parts->preferences,
        .captureHiding = m_parts->captureHiding,
        .handoffWindowController = m_parts->handoffWindow,
    });
    installCallbacks();
    measureTips();
    // Nothing else would bring a hidden window back.
    connect(m_parts->panel.get(), &StealthPanel::closedByUser, this, &AppDelegate::quit);
    m_parts->panel->enterIdleMode();
    m_parts->panel->makeKeyAndOrderFront();
    measureStartUp();
    m_parts->diagnosticsObject.publish();
}

void AppDelegate::openStore() {
    static_cast<void>(CancellableTask::start([parts = m_parts.get()](std::stop_token) -> QCoro::Task<void> {
        auto opened = co_await SqliteSessionStore::open(SqliteSessionStore::defaultPath(), parts->worker.executor(),
                                                        parts->clock);
        if (!opened) {
            // Sessions run and summaries show; nothing of them is kept.
            shellLog(u"SwiftData init failed: "_s + opened.error().debugDescription());
            co_return;
        }
        parts->store = std::move(opened->store);
        parts->viewModel->setModelContext(parts->store.get());
        parts->storeWatch = parts->store->observe([parts](const SessionStoreProtocol::Index&) {
            auto& ready = parts->diagnostics.storeReadyMicroseconds;
            if (ready < 0)
                ready = std::chrono::floor<std::chrono::microseconds>(parts->clock.now() - parts->launchedAt).count();
        });
    }));
}

void AppDelegate::installCallbacks() {
    auto& session = *m_parts->viewModel;
    auto* const panel = m_parts->panel.get();
    session.onSessionActiveChanged = [panel](bool isActive) {
        if (isActive)
            panel->enterCallMode();
        else
            panel->enterIdleMode();
    };
    session.onStealthChanged = [panel](bool isEnabled) { panel->setStealth(isEnabled); };
    session.onSessionModeChanged = [panel](const QString& mode) { panel->setSessionMode(mode); };
}

void AppDelegate::measureStartUp() {
    // The window is not exposed yet, so its first swap is the first frame.
    connect(
        m_parts->panel.get(), &QQuickWindow::frameSwapped, this,
        [parts = m_parts.get()] {
            parts->diagnostics.firstFrameMicroseconds =
                std::chrono::floor<std::chrono::microseconds>(parts->clock.now() - parts->launchedAt).count();
        },
        Qt::SingleShotConnection);
}

void AppDelegate::measureTips() {
    connect(m_parts->viewModel.get(), &SessionViewModel::coachingShown, this, [this](MonotonicTime arrivedAt) {
        m_parts->panel->afterNextFrame([parts = m_parts.get(), arrivedAt] {
            parts->diagnostics.tipToScreen.record(parts->clock.now() - arrivedAt);
        });
    });
}

void AppDelegate::quit() {
    if (std::exchange(m_parts->isQuitting, true))
        return;
    m_parts->panel->hide();
    static_cast<void>(CancellableTask::start([parts = m_parts.get()](std::stop_token) -> QCoro::Task<void> {
        const auto asked = parts->clock.now();
        // Stopped at once, a call that was ended just before would leave no record.
        while (parts->viewModel->isEnding() && parts->clock.now() < asked + summaryPatience)
            co_await sleep(parts->clock, 5ms);
        parts->viewModel->stopSession();
        parts->viewModel->stopSensorPolling();
        const auto deadline = asked + quitPatience;
        while (!parts->viewModel->isQuiet() && parts->clock.now() < deadline)
            co_await sleep(parts->clock, 5ms);
        QCoreApplication::exit(0);
    }));
}

}  // namespace corvellan

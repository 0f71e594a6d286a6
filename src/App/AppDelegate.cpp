#include "AppDelegate.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include "App/MenuBar/MenuBarController.h"
#include "App/Panel/StealthPanel.h"
#include "Base/Log.h"
#include "LocalKeyMonitor.h"
#include "Platform/Notifications.h"
#include "Platform/StatusBar.h"
#include "Views/HandoffWindowController.h"
#include "Views/ViewStates.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr auto meetingCheckInterval = 60s;
/// How long quitting waits for the summary of a call that was just ended.
constexpr auto summaryPatience = 1500ms;
/// How long it waits in all, for what is being closed and stored too.
constexpr auto quitPatience = 2s;

}  // namespace

AppDelegate::AppDelegate(AppEnvironment environment)
    : m_environment(std::move(environment)),
      m_permissionChecker(m_environment.desktop.permissions, m_environment.desktop.systemSettings,
                          m_environment.desktop.alerts),
      m_launchAtLogin(m_environment.desktop.loginItems, m_environment.session.preferences) {
    auto webSocket = m_environment.services.makeWebSocket();
    auto audio = m_environment.services.makeAudio();
    auto stt = m_environment.services.makeMicrophoneStt();
    auto auth = m_environment.services.makeAuth();
    m_viewModel = std::make_unique<SessionViewModel>(m_environment.session, std::move(webSocket), std::move(audio),
                                                     std::move(stt), std::move(auth));
    m_updaterController = m_environment.makeUpdater();
}

AppDelegate::~AppDelegate() {
    m_stop.request_stop();
    m_environment.desktop.notifications.didReceive = {};
    m_meetingCheckTimer.clear();
    m_viewModel->stopSensorPolling();
}

void AppDelegate::applicationDidFinishLaunching() {
    shellLog(u"applicationDidFinishLaunching"_s);
    // First, since the desktop may end while the launch still waits for some part of it.
    QCoreApplication::instance()->installEventFilter(this);
    auto& notifications = m_environment.desktop.notifications;
    notifications.didReceive = [this](const NotificationResponse& response) {
        userNotificationCenterDidReceive(response);
    };
    // Whatever the answer: a reminder asks again.
    static_cast<void>(notifications.requestAuthorization());
    m_launchAtLogin.registerIfFirstLaunch();
    openStore();
    makePanel();
    m_menuBarController = std::make_unique<MenuBarController>(MenuBarController::Parts{
        .viewModel = *m_viewModel,
        .panel = *m_panel,
        .statusBar = m_environment.desktop.statusBar,
        .activation = m_environment.desktop.activation,
        .terminate = [this] { quit(); },
    });
    installKeyMonitors();
    startMeetingChecks();
    m_viewModel->startSensorPolling();
    installCallbacks();
    measureTips();
    m_viewModel->setSparkleUpdater(m_updaterController.get());
    static_cast<void>(checkForUpdateBadge());
    m_panel->enterIdleMode();
    m_panel->makeKeyAndOrderFront();
    measureStartUp();
    startPermissionChecks();
}

void AppDelegate::openStore() {
    static_cast<void>([](QPointer<AppDelegate> self) -> QCoro::Task<void> {
        auto opened = co_await self->m_environment.openStore();
        if (!self)
            co_return;
        if (!opened) {
            // Sessions run and summaries show; nothing of them is kept.
            shellLog(u"SwiftData init failed: "_s + opened.error().debugDescription());
            co_return;
        }
        self->m_modelContainer = std::move(opened->store);
        self->m_viewModel->setModelContext(self->m_modelContainer.get());
        self->m_storeWatch = self->m_modelContainer->observe([self](const SessionStoreProtocol::Index&) {
            auto& ready = self->m_environment.session.diagnostics.storeReadyMicroseconds;
            if (ready < 0)
                ready = self->microsecondsSinceLaunch();
        });
    }(this));
}

void AppDelegate::makePanel() {
    m_panel = std::make_unique<StealthPanel>(
        ViewParts{
            .session = *m_viewModel,
            .preferences = m_environment.session.preferences,
            .captureHiding = m_environment.desktop.captureHiding,
            .handoffWindowController = m_environment.handoffWindow,
            .settings = {.permissions = m_permissionChecker,
                         .launchAtLogin = m_launchAtLogin,
                         .notifications = m_environment.desktop.notifications,
                         .systemSettings = m_environment.desktop.systemSettings,
                         .browser = m_environment.desktop.browser,
                         .speech = m_environment.desktop.speech,
                         .productionUrl = m_environment.session.productionUrl,
                         .chatUrl = m_environment.session.chatUrl,
                         .extensionUrl = m_environment.extensionUrl,
                         .version = m_environment.runningVersion,
                         .build = m_environment.runningBuild,
                         .sharesWindows = m_environment.sharesWindows},
            .selfTest = m_environment.captureTest,
        },
        m_environment.desktop.appearance);
    connect(m_panel.get(), &StealthPanel::closedByUser, this, &AppDelegate::onPanelClosed);
}

void AppDelegate::installKeyMonitors() {
    m_keyMonitor = std::make_unique<LocalKeyMonitor>([this](PhysicalKey key) {
        if (key != PhysicalKey::space || !m_viewModel->isTtsPlaying())
            return LocalKeyMonitor::Verdict::pass;
        m_viewModel->stopTtsAndResumeMic();
        return LocalKeyMonitor::Verdict::consume;
    });
    m_globalHotkeyMonitor =
        m_environment.desktop.globalKeys.addGlobalMonitor([this](const KeyDown& key) { onGlobalKeyDown(key); });
    m_globalHotkeyMonitor->onChanged = [this] { showKeyWatch(); };
    showKeyWatch();
}

void AppDelegate::showKeyWatch() {
    m_panel->views().settings()->setGlobalKeyWatch(m_globalHotkeyMonitor->watch(),
                                                   m_globalHotkeyMonitor->explanation());
}

void AppDelegate::onGlobalKeyDown(const KeyDown& key) {
    if (!key.isCommandDown || !key.isShiftDown || key.key != PhysicalKey::j)
        return;
    if (m_viewModel->isSessionActive()) {
        m_viewModel->endSession();
        return;
    }
    bringToFront(key.activationToken);
    // Pressed twice in a hurry: the second attempt would take the first one's place, and the first one's
    // closing would end the call of both. One that still signs in may be replaced.
    if (!m_viewModel->isReachingServer())
        m_viewModel->startSession();
}

void AppDelegate::bringToFront(const QString& activationToken) {
    if (m_panel)
        m_panel->bringToFront(m_environment.desktop.activation, activationToken);
}

void AppDelegate::installCallbacks() {
    const QPointer panel{m_panel.get()};
    m_viewModel->onSessionActiveChanged = [panel](bool isActive) {
        if (!panel)
            return;
        if (isActive) {
            panel->enterCallMode();
            panel->views().live()->applyLayout();
        } else {
            panel->enterIdleMode();
        }
    };
    m_viewModel->onStealthChanged = [panel](bool isEnabled) {
        if (panel)
            panel->setStealth(isEnabled);
    };
    m_viewModel->onSessionModeChanged = [panel](const QString& mode) {
        if (panel)
            panel->setSessionMode(mode);
    };
}

void AppDelegate::startMeetingChecks() {
    m_meetingCheckTimer = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        // Whoever asks to stop may be gone after the wait, and this object with it.
        auto& clock = m_environment.session.clock;
        while (co_await sleep(clock, meetingCheckInterval, stop) == SleepEnd::elapsed)
            checkUpcomingMeetingNotification();
    });
}

void AppDelegate::startPermissionChecks() {
    static_cast<void>([](QPointer<AppDelegate> self) -> QCoro::Task<void> {
        const bool isGranted = co_await self->m_permissionChecker.requestMicrophone();
        if (!isGranted)
            shellLog(u"Microphone permission denied"_s);
        if (!self)
            co_return;
        const auto state = co_await self->m_permissionChecker.check();
        if (!self || state.allGranted())
            co_return;
        shellLog(u"Missing permissions: mic="_s + PermissionChecker::statusText(state.microphone) + u" screen="_s +
                 PermissionChecker::statusText(state.screenRecording));
        co_await self->m_permissionChecker.showMissingPermissionsAlert(state);
    }(this));
}

void AppDelegate::onPanelClosed() {
    if (m_environment.desktop.statusBar.isShown() || std::exchange(m_hasToldOfHiding, true))
        return;
    m_environment.desktop.notifications.add({
        .identifier = u"still-running"_s,
        .title = u"Corvellan Bram keeps running"_s,
        .body = u"Start it again to bring its window back. This desktop shows no icon for it."_s,
    });
}

void AppDelegate::measureStartUp() {
    // The window is not exposed yet, so its first swap is the first frame.
    connect(
        m_panel.get(), &QQuickWindow::frameSwapped, this,
        [this] { m_environment.session.diagnostics.firstFrameMicroseconds = microsecondsSinceLaunch(); },
        Qt::SingleShotConnection);
}

std::int64_t AppDelegate::microsecondsSinceLaunch() const {
    const auto passed = m_environment.session.clock.now() - m_environment.launchedAt;
    return std::chrono::floor<std::chrono::microseconds>(passed).count();
}

void AppDelegate::measureTips() {
    connect(m_viewModel.get(), &SessionViewModel::coachingShown, this, [this](MonotonicTime arrivedAt) {
        auto& environment = m_environment.session;
        m_panel->afterNextFrame([&environment, arrivedAt] {
            environment.diagnostics.tipToScreen.record(environment.clock.now() - arrivedAt);
        });
    });
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    // From the desktop's session manager, say. Taken as it comes, it would first ask the panel to close,
    // which hides instead.
    if (event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    quit();
    return true;
}

void AppDelegate::applicationWillTerminate() {
    m_keyMonitor.reset();
    m_globalHotkeyMonitor.reset();
    m_meetingCheckTimer.clear();
}

void AppDelegate::quit() {
    if (std::exchange(m_isQuitting, true))
        return;
    if (m_panel)
        m_panel->hide();
    static_cast<void>([](QPointer<AppDelegate> self) -> QCoro::Task<void> {
        auto& clock = self->m_environment.session.clock;
        auto& viewModel = *self->m_viewModel;
        const auto asked = clock.now();
        // Stopped at once, a call that was ended just before would leave no record.
        while (self && viewModel.isEnding() && clock.now() < asked + summaryPatience)
            co_await sleep(clock, 5ms);
        if (!self)
            co_return;
        viewModel.stopSession();
        // Its socket says goodbye while there is still somebody to wait for that.
        viewModel.stopSensorPolling();
        while (self && !viewModel.isQuiet() && clock.now() < asked + quitPatience)
            co_await sleep(clock, 5ms);
        if (!self)
            co_return;
        self->applicationWillTerminate();
        self->m_environment.terminate();
    }(this));
}

}  // namespace corvellan

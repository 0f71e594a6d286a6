#include "CorvellanMain.h"

#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QSocketNotifier>

#include "App/Alerts/MessageBoxAlerts.h"
#include "App/Handoff/FloatingHandoffWindow.h"
#include "App/Icon/ApplicationIcon.h"
#include "App/MenuBar/TrayStatusBar.h"
#include "AppDelegate.h"
#include "AppServices.h"
#include "Base/Deployment.h"
#include "Base/Executor.h"
#include "Base/SettingsPreferences.h"
#include "Models/MemoryStore.h"
#include "Platform/CaptureHiding.h"
#include "Platform/Linux/Activation/DesktopActivation.h"
#include "Platform/Linux/Appearance/PortalAppearance.h"
#include "Platform/Linux/Browser/XdgWebBrowser.h"
#include "Platform/Linux/CaptureHiding/MakeCaptureHiding.h"
#include "Platform/Linux/Keys/LinuxGlobalKeys.h"
#include "Platform/Linux/Loopback/SocketLoopbackListener.h"
#include "Platform/Linux/Notifications/DesktopNotifications.h"
#include "Platform/Linux/Permissions/DesktopPermissionSource.h"
#include "Platform/Linux/Permissions/DesktopSettings.h"
#include "Platform/Linux/Permissions/XdgLoginItems.h"
#include "Platform/Linux/PulseAudioInputs.h"
#include "Platform/Linux/Screenshots/MakeScreenCaptures.h"
#include "Platform/Linux/Screenshots/MakeScreenPictures.h"
#include "Platform/Linux/Speech/DesktopSpeech.h"
#include "Platform/OwnSpeech.h"
#include "ProgramObject.h"
#include "Services/Auth/TokenFile.h"
#include "Services/BriefingService.h"
#include "Services/HttpClient.h"
#include "Services/SessionStore/SqliteSessionStore.h"
#include "Shell/DownloadPageUpdater.h"
#include "Shell/SpeechNotice.h"
#include "SingleInstance.h"
#include "Views/MarkdownWebView.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// The desktop's word that the user has started this process, as launchers pass it on. Empty without one.
QString activationToken() {
    for (const char* const variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        if (const QString token = qEnvironmentVariable(variable); !token.isEmpty())
            return token;
    return {};
}

/// Has notes converted on a thread of their own for as long as it lives.
struct NotesElsewhere {
    explicit NotesElsewhere(Executor& worker) { MarkdownWebView::convertOn(&worker); }
    ~NotesElsewhere() { MarkdownWebView::convertOn(nullptr); }
    NotesElsewhere(const NotesElsewhere&) = delete;
    NotesElsewhere& operator=(const NotesElsewhere&) = delete;
};

/// In the order of construction, so that everything goes before what it uses. Threads stand above the
/// services that work on them.
struct RealParts {
    explicit RealParts(Diagnostics& counters) : diagnostics(counters) {}

    Diagnostics& diagnostics;
    QDBusConnection bus = QDBusConnection::sessionBus();
    EventLoopExecutor main;
    SystemClock clock;
    WorkerThread live{"corvellan-live"};
    WorkerThread network{"corvellan-net"};
    WorkerThread worker{"corvellan-work"};
    DebugLog debugLog{QDir::homePath() + u"/corvellan-debug.log"_s, clock};
    SettingsPreferences preferences{SettingsPreferences::defaultPath()};
    OwnSpeech ownSpeech;
    PulseAudioInputs audioInputs{clock, ownSpeech};
    DesktopNotifications notifications{bus};
    SpeechNotice speechNotice{notifications};
    DesktopSpeech speechSynthesizer{clock, ownSpeech, [this](SpeechFailure failure) {
                                        main.post([this, failure] { speechNotice.tell(failure); });
                                    }};
    HttpClient http{network.executor(), clock};
    BriefingService briefings{http, deployment::chatUrl(), debugLog};
    XdgWebBrowser browser{clock};
    SocketLoopbackListeners listeners;
    DesktopSession session = DesktopSession::current();
    std::unique_ptr<ScreenCaptures> screenCaptures = makeScreenCaptures(main, worker.executor(), clock, session, bus);
    AppServices services{AppServices::Parts{
        .main = main,
        .live = live.executor(),
        .network = network.executor(),
        .worker = worker.executor(),
        .clock = clock,
        .audioInputs = audioInputs,
        .screenCaptures = *screenCaptures,
        .speechSynthesizer = speechSynthesizer,
        .http = http,
        .browser = browser,
        .listeners = listeners,
        .tokenFilePath = TokenFile::defaultPath(),
        .diagnostics = diagnostics,
    }};
    MessageBoxAlerts alerts;
    DesktopSettings systemSettings{alerts};
    DesktopPermissionSource permissions{worker.executor(), audioInputs, bus};
    XdgLoginItems loginItems;
    std::unique_ptr<GlobalKeys> globalKeys = makeGlobalKeys(clock);
    DesktopActivation activation;
    std::unique_ptr<CaptureHiding> captureHiding = makeCaptureHiding(clock, session, bus);
    std::unique_ptr<ScreenPictures> screenPictures = makeScreenPictures(worker.executor(), clock, session, bus);
    PortalAppearance appearance{bus};
    TrayStatusBar statusBar;
    NotesElsewhere notesElsewhere{worker.executor()};
    FloatingHandoffWindow handoffWindow{browser, {.url = deployment::crmUrl(), .portal = deployment::crmPortal()}};
};

AppEnvironment environmentOf(RealParts& parts, MonotonicTime launchedAt) {
    return {
        .session = {.main = parts.main,
                    .pumps = parts.live.executor(),
                    .clock = parts.clock,
                    .preferences = parts.preferences,
                    .debugLog = parts.debugLog,
                    .diagnostics = parts.diagnostics,
                    .services = parts.services,
                    .http = parts.http,
                    .briefings = parts.briefings,
                    .productionUrl = deployment::coachUrl(),
                    .chatUrl = deployment::chatUrl(),
                    .clientVersion = deployment::version(),
                    .tokenFilePath = TokenFile::defaultPath(),
                    .loadMemoryNote = [] { return MemoryStore::load(); }},
        .services = parts.services,
        .desktop = {.notifications = parts.notifications,
                    .globalKeys = *parts.globalKeys,
                    .statusBar = parts.statusBar,
                    .loginItems = parts.loginItems,
                    .permissions = parts.permissions,
                    .systemSettings = parts.systemSettings,
                    .alerts = parts.alerts,
                    .activation = parts.activation,
                    .captureHiding = *parts.captureHiding,
                    .browser = parts.browser,
                    .speech = parts.speechSynthesizer,
                    .appearance = parts.appearance},
        .handoffWindow = parts.handoffWindow,
        .makeUpdater =
            [&parts] {
                return std::make_unique<DownloadPageUpdater>(parts.browser, parts.alerts,
                                                             QUrl{deployment::downloadUrl()});
            },
        .openStore = [&parts]() -> QCoro::Task<std::expected<OpenedStore, Error>> {
            auto opened = co_await SqliteSessionStore::open(SqliteSessionStore::defaultPath(), parts.worker.executor(),
                                                            parts.clock);
            if (!opened)
                co_return std::unexpected(opened.error());
            co_return OpenedStore{.store = std::move(opened->store)};
        },
        .runningVersion = deployment::version(),
        .runningBuild = deployment::build(),
        .extensionUrl = deployment::extensionUrl(),
        .sharesWindows = parts.screenCaptures->seesWindows(),
        .launchedAt = launchedAt,
        .terminate = [] { QCoreApplication::exit(0); },
        .captureTest = CaptureSelfTest::Means{*parts.screenPictures, parts.clock, parts.worker.executor()},
    };
}

}  // namespace

CorvellanMain::CorvellanMain(MonotonicTime launchedAt, int endSignals)
    : m_launchedAt(launchedAt),
      m_endSignals(endSignals) {}

int CorvellanMain::run() {
    Diagnostics diagnostics;
    ProgramObject object{diagnostics};
    SingleInstance instance{QDBusConnection::sessionBus()};
    switch (instance.claim(object, activationToken())) {
    case SingleInstance::Outcome::first: break;
    case SingleInstance::Outcome::handedOver: return 0;
    case SingleInstance::Outcome::unreachable:
        std::fputs("Corvellan Bram is running already, but does not answer.\n", stderr);
        return 1;
    }

    QApplication::setWindowIcon(applicationIcon());
    RealParts parts{diagnostics};
    AppDelegate delegate{environmentOf(parts, m_launchedAt)};
    object.onActivate = [&delegate](const QString& token) { delegate.bringToFront(token); };
    QSocketNotifier endNotifier{m_endSignals, QSocketNotifier::Read};
    QObject::connect(&endNotifier, &QSocketNotifier::activated, &delegate, [&delegate] { delegate.quit(); });
    delegate.applicationDidFinishLaunching();
    const int status = QApplication::exec();
    object.onActivate = {};
    return status;
}

}  // namespace corvellan

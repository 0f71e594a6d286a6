#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QCoroTask>
#include <QString>

#include "AppFactory.h"
#include "Base/Clock.h"
#include "Base/Error.h"
#include "Services/Protocols/SessionStoreProtocol.h"
#include "Shell/Stealth/CaptureSelfTest.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

class AlertPresenter;
class CaptureHiding;
class DesktopAppearance;
class GlobalKeys;
class HandoffWindowController;
class LoginItems;
class NotificationCenter;
class PermissionSource;
class SpeechSynthesizer;
class StatusBar;
class SystemSettings;
class WebBrowser;
class WindowActivation;

/// The desktop, as far as the program's shell uses it.
struct Desktop {
    NotificationCenter& notifications;
    GlobalKeys& globalKeys;
    StatusBar& statusBar;
    LoginItems& loginItems;
    PermissionSource& permissions;
    SystemSettings& systemSettings;
    AlertPresenter& alerts;
    WindowActivation& activation;
    CaptureHiding& captureHiding;
    WebBrowser& browser;
    SpeechSynthesizer& speech;
    DesktopAppearance& appearance;
};

/// An open record store.
struct OpenedStore {
    std::unique_ptr<SessionStoreProtocol> store;
};

/// What `AppDelegate` is made of; all of it outlives the delegate.
struct AppEnvironment {
    SessionEnvironment session;
    AppFactory& services;
    Desktop desktop;
    HandoffWindowController& handoffWindow;
    std::function<std::unique_ptr<UpdaterProtocol>()> makeUpdater;
    std::function<QCoro::Task<std::expected<OpenedStore, Error>>()> openStore;
    QString runningVersion;
    QString runningBuild;
    QString extensionUrl;  ///< Where the browser extension is to be had.
    /// The coach can get the picture of a window; otherwise that of the whole screen.
    bool sharesWindows = true;
    /// When `main` began, for the start-up figures.
    MonotonicTime launchedAt{};
    /// Ends the event loop.
    std::function<void()> terminate;
    /// For looking whether captures show the panel; absent where nothing can picture the screen.
    std::optional<CaptureSelfTest::Means> captureTest = std::nullopt;
};

}  // namespace corvellan

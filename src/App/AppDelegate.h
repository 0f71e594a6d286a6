#pragma once

#include <memory>
#include <optional>
#include <QObject>
#include <stop_token>

#include "AppEnvironment.h"
#include "Base/Tasks.h"
#include "Platform/GlobalKeys.h"
#include "Shell/LaunchAtLogin.h"
#include "Shell/PermissionChecker.h"

namespace corvellan {

class LocalKeyMonitor;
class MenuBarController;
class StealthPanel;
struct NotificationResponse;

/// The program's shell: launches it step by step, and then keeps the shortcuts, the reminders, the
/// update badge and the way in and out. Owns the session and the one panel. Main thread.
///
/// Its work is spread over AppDelegate.cpp (launching, shortcuts, ending), MeetingReminders.cpp and
/// UpdateBadge.cpp.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// Creates the four services in their order, the session over them, and the updater. Nothing is
    /// shown yet.
    explicit AppDelegate(AppEnvironment environment);
    ~AppDelegate() override;

    /// Every step of the launch, in order; what must be waited for goes on afterwards.
    void applicationDidFinishLaunching();

    /// Takes the shortcuts and the reminders away. A session is left alone.
    void applicationWillTerminate();

    /// Shows the panel in front, with the keyboard.
    ///
    /// \param activationToken the desktop's proof that the user asked for it; may be empty.
    void bringToFront(const QString& activationToken = {});

    /// Ends a running session, waits until what it started is closed and stored (at most 2 seconds),
    /// then ends the program. Further calls do nothing.
    void quit();

    [[nodiscard]] SessionViewModel& viewModel() { return *m_viewModel; }
    /// Null before the launch.
    [[nodiscard]] StealthPanel* panel() { return m_panel.get(); }
    /// Null before the launch, and when the store did not open.
    [[nodiscard]] SessionStoreProtocol* modelContainer() { return m_modelContainer.get(); }
    /// Null before the launch.
    [[nodiscard]] const GlobalKeyMonitor* globalHotkeyMonitor() const { return m_globalHotkeyMonitor.get(); }

    /// Every event for the application passes here first: a request to quit ends the program our way.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openStore();
    void makePanel();
    void installKeyMonitors();
    void onGlobalKeyDown(const KeyDown& key);
    /// The settings tell the user whether the shortcut works.
    void showKeyWatch();
    void installCallbacks();
    void startMeetingChecks();
    void startPermissionChecks();
    /// Tells once that the program goes on without a window, where no tray shows that it does.
    void onPanelClosed();
    void measureStartUp();
    [[nodiscard]] std::int64_t microsecondsSinceLaunch() const;
    void measureTips();

    // MeetingReminders.cpp
    void checkUpcomingMeetingNotification();
    void showMeetingNotification(const CalendarMeeting& meeting);
    void userNotificationCenterDidReceive(const NotificationResponse& response);

    // UpdateBadge.cpp
    QCoro::Task<void> checkForUpdateBadge();

    AppEnvironment m_environment;
    std::unique_ptr<SessionStoreProtocol> m_modelContainer;
    std::shared_ptr<void> m_storeWatch;
    std::unique_ptr<SessionViewModel> m_viewModel;
    std::unique_ptr<UpdaterProtocol> m_updaterController;
    PermissionChecker m_permissionChecker;
    LaunchAtLogin m_launchAtLogin;
    std::unique_ptr<StealthPanel> m_panel;
    std::unique_ptr<MenuBarController> m_menuBarController;
    std::unique_ptr<LocalKeyMonitor> m_keyMonitor;
    std::unique_ptr<GlobalKeyMonitor> m_globalHotkeyMonitor;
    TaskSlot m_meetingCheckTimer;
    std::optional<QString> m_lastNotifiedMeetingId;
    /// Requested when the delegate goes.
    std::stop_source m_stop;
    bool m_hasToldOfHiding = false;
    bool m_isQuitting = false;
};

}  // namespace corvellan

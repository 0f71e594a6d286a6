#pragma once

#include <functional>
#include <memory>

namespace corvellan {

class SessionViewModel;
class StatusBar;
class StatusItem;
class StealthPanel;
class WindowActivation;

/// The program's permanent way in: an icon in the desktop's bar with a menu that is always the same,
/// whatever the session's state. Nothing here fails; without a bar there is no icon. Main thread.
class MenuBarController {
public:
    /// What it is made of; all of it outlives the controller.
    struct Parts {
        SessionViewModel& viewModel;
        StealthPanel& panel;
        StatusBar& statusBar;
        WindowActivation& activation;
        /// Ends the program. May be called more than once.
        std::function<void()> terminate;
    };

    /// Puts the icon up at once.
    explicit MenuBarController(Parts parts);
    ~MenuBarController();
    MenuBarController(const MenuBarController&) = delete;
    MenuBarController& operator=(const MenuBarController&) = delete;

private:
    void setupStatusItem(StatusBar& statusBar);

    void showWindow();
    void startSession();
    void startTrainSession();
    void endSession();
    void toggleStealth();
    void checkForUpdates();
    void quit();

    std::unique_ptr<StatusItem> m_statusItem;
    SessionViewModel& m_viewModel;
    StealthPanel& m_panel;
    WindowActivation& m_activation;
    std::function<void()> m_terminate;
};

}  // namespace corvellan

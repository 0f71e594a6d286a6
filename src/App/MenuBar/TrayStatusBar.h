#pragma once

#include <memory>

#include "Platform/StatusBar.h"

namespace corvellan {

/// The trays of Linux desktops, of both kinds: StatusNotifier, which is asked first, and XEmbed. Needs the
/// QApplication and goes before it. Main thread.
///
/// A status item appears when the first tray does, however late, and again whenever that kind of tray
/// comes back; the kind is chosen once for the life of the process. What a tray calls the item's title is
/// the application's name, so that has to be one for people.
///
/// A press on the icon shows the window (the menu's first row) and the context click opens the menu. On
/// the Mac a click opens the menu; here, a bar that opens menus by itself does so whatever the
/// program wants, and in all others the first click is expected to bring the program's window.
class TrayStatusBar final : public StatusBar {
public:
    TrayStatusBar();
    ~TrayStatusBar() override;

    /// Null where there is neither a session bus nor an X server. The item must not outlive the bar.
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override;
    [[nodiscard]] bool isShown() const override;

private:
    struct Trays;
    std::unique_ptr<Trays> m_trays;
};

}  // namespace corvellan

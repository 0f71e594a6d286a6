#pragma once

#include <memory>
#include <QQuickView>

#include "Views/HandoffWindowController.h"
#include "Views/HandoffWindowView.h"

namespace corvellan {

class WebBrowser;

/// Shows handoff notes in one window that stands above others, over the program that the call runs in. Each screen
/// that offers the handoff has its own. Needs `prepareQuick`. Main thread.
class FloatingHandoffWindow final : public HandoffWindowController {
public:
    /// \param browser outlives the object.
    FloatingHandoffWindow(WebBrowser& browser, CrmAddress crm);
    ~FloatingHandoffWindow() override;
    FloatingHandoffWindow(const FloatingHandoffWindow&) = delete;
    FloatingHandoffWindow& operator=(const FloatingHandoffWindow&) = delete;

    /// In the window that there is, where the user has put it; else in a new one in the middle of the screen.
    void show(const HandoffResponse& handoff) override;

    /// Closes the window and forgets it. A window that the user closes by its title bar is kept, for the next note.
    void close();

    /// Null when there is none.
    [[nodiscard]] QQuickView* window() const;

private:
    class Window;

    WebBrowser& m_browser;
    CrmAddress m_crm;
    std::unique_ptr<Window> m_window;
};

}  // namespace corvellan

#pragma once

#include <algorithm>

#include "App/MenuBar/MenuBarController.h"
#include "App/Panel/PanelFixture.h"
#include "Support/FakeDesktop.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

/// The menu's controller over a session of fakes and a real panel. The status bar is the test's affair.
class MenuBarFixture : public PanelFixture {
protected:
    void build(StatusBar& statusBar) {
        controller.emplace(MenuBarController::Parts{.viewModel = fixture.session(),
                                                    .panel = panel,
                                                    .statusBar = statusBar,
                                                    .activation = desktop.activation,
                                                    .terminate = [this] { ++terminations; }});
    }

    FakeDesktop desktop;
    FakeUpdater updater;
    int terminations = 0;
    std::optional<MenuBarController> controller;

    /// The tab that the window shows or will show.
    [[nodiscard]] SidebarTab openTab() { return panel.views().dashboard()->selectedTab(); }
};

}  // namespace corvellan::test

#pragma once

#include "FakeDesktop.h"
#include "Shell/LaunchAtLogin.h"
#include "Shell/PermissionChecker.h"
#include "Views/SettingsView.h"

namespace corvellan::test {

/// What the settings show and change, over a desktop of fakes.
class SettingsFixture {
public:
    explicit SettingsFixture(Preferences& preferences) : launchAtLogin(desktop.loginItems, preferences) {}

    [[nodiscard]] SettingsParts parts() {
        return {.permissions = permissions,
                .launchAtLogin = launchAtLogin,
                .notifications = desktop.notifications,
                .systemSettings = desktop.settings,
                .browser = desktop.browser,
                .speech = desktop.speech,
                .productionUrl = QStringLiteral("wss://coach.test/ws"),
                .chatUrl = QStringLiteral("https://chat.test"),
                .extensionUrl = QStringLiteral("https://store.test/corvellan-sensor"),
                .version = QStringLiteral("1.2.3"),
                .build = QStringLiteral("45")};
    }

    FakeDesktop desktop;
    PermissionChecker permissions{desktop.permissions, desktop.settings, desktop.alerts};
    LaunchAtLogin launchAtLogin;
};

}  // namespace corvellan::test

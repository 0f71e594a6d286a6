#pragma once

#include "App/Panel/StealthPanel.h"
#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

/// What one picture is taken of: the window, over a session of fakes whose clock stands at Monday, 2 March 2026,
/// 11:00 in Berlin.
struct ScreenshotScene {
    SessionFixture& fixture;
    FakeStore& store;
    SettingsFixture& settings;
    StealthPanel& panel;

    [[nodiscard]] SessionViewModel& session() const { return fixture.session(); }
    [[nodiscard]] ViewStates& views() const { return panel.views(); }

    void openTab(const QString& tab) const {
        session().setRequestedTab(tab);
        settle();
    }
    /// Nobody has to sign in there.
    void useLocalServer() const { session().setServerURL(QStringLiteral("ws://127.0.0.1:3001/ws")); }
    void signIn() const { session().setUserEmail(QStringLiteral("anna.berger@fernhill.example")); }
    /// Types into the search of the home screen, and waits for its answer.
    void search(const QString& text) const {
        views().home()->setQuickStartCompany(text);
        settleAfter(fixture.clock, std::chrono::milliseconds{400});
        settle();
    }
};

}  // namespace corvellan::test

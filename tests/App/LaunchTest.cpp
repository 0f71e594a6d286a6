#include "AppFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class LaunchTest : public AppFixture {
protected:
    /// What was asked of the surroundings, without the repeats that answers bring.
    [[nodiscard]] CallLog steps(const std::vector<std::string>& of) const {
        CallLog found;
        std::ranges::copy_if(log, std::back_inserter(found),
                             [&](const auto& step) { return std::ranges::find(of, step) != of.end(); });
        return found;
    }
};

TEST_F(LaunchTest, createsTheServicesInOrderThenTheUpdater) {
    delegate();

    EXPECT_EQ(log, (CallLog{"make WebSocketService", "make AudioService", "make SttService", "make AuthService",
                            "make updater"}));
}

TEST_F(LaunchTest, takesEveryStepInItsOrder) {
    delegate();
    log.clear();

    launch();

    const CallLog expected{
        "notifications.requestAuthorization",
        "loginItems.registerItem",
        "store.open",
        "statusBar.makeStatusItem",
        "keys.addGlobalMonitor",
        "updateFeed.fetch",
        "permissions.requestMicrophoneAccess",
        "permissions.microphoneAuthorization",
        "permissions.shareableContent",
    };
    EXPECT_EQ(steps(expected), expected);
    EXPECT_EQ(shell.infos(), QStringList{u"applicationDidFinishLaunching"_s});
    EXPECT_TRUE(panel().isVisible());
    EXPECT_FALSE(panel().isInCallMode());
    EXPECT_EQ(panel().size(), (QSize{680, 520}));
}

TEST_F(LaunchTest, givesTheSessionItsStoreAndItsUpdater) {
    launch();

    EXPECT_EQ(session().modelContext(), store);
    EXPECT_NE(store, nullptr);
    EXPECT_EQ(session().sparkleUpdater(), updater);
}

TEST_F(LaunchTest, asksForTheLoginItemOnceInAllRuns) {
    preferences.setBoolean(u"hasRegisteredLoginItem"_s, true);

    launch();

    EXPECT_EQ(count("loginItems.registerItem"), 0);
}

TEST_F(LaunchTest, goesOnWithoutAStoreThatFails) {
    storeFailure = TransportError{u"disk full"_s};

    launch();

    EXPECT_EQ(shell.infos(), (QStringList{u"applicationDidFinishLaunching"_s, u"SwiftData init failed: disk full"_s}));
    EXPECT_EQ(session().modelContext(), nullptr);
    EXPECT_EQ(session().errorMessage(), std::nullopt);
    session().startSession();
    settle();
    goLive();
    services.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 61}});
    settle();
    ASSERT_TRUE(session().lastSummary());
    EXPECT_EQ(session().lastSummary()->durationSecs, 61U);
}

TEST_F(LaunchTest, showsTheOtherFaceWhileASessionRuns) {
    launch();

    session().startSession();
    settle();
    EXPECT_TRUE(panel().isInCallMode());

    session().stopSession();
    settle();
    EXPECT_FALSE(panel().isInCallMode());
}

TEST_F(LaunchTest, handsStealthAndModeToThePanel) {
    launch();

    session().setIsStealthEnabled(true);
    EXPECT_TRUE(panel().isStealthEnabled());
    EXPECT_EQ(captureHiding.asked.back(), true);

    session().setFontScale(1.0);
    session().setSessionMode(u"coach"_s);
    EXPECT_EQ(panel().maximumSize(), (QSize{500, 400}));
}

TEST_F(LaunchTest, isQuietWhenEverythingIsGranted) {
    launch();

    EXPECT_EQ(count("alerts.runModal"), 0);
}

TEST_F(LaunchTest, tellsOfARefusedMicrophoneAndOpensItsSettings) {
    desktop.permissions.isMicrophoneGranted = false;
    desktop.permissions.microphone = CaptureAuthorization::denied;
    desktop.alerts.answer = 0;

    launch();

    EXPECT_EQ(shell.infos(), (QStringList{u"applicationDidFinishLaunching"_s, u"Microphone permission denied"_s,
                                          u"Missing permissions: mic=denied screen=granted"_s}));
    ASSERT_EQ(desktop.alerts.alerts.size(), 1U);
    EXPECT_EQ(desktop.settings.opened, std::vector{PrivacyPane::microphone});
}

TEST_F(LaunchTest, stateIsUnknownWhereNobodyDecided) {
    desktop.permissions.microphone = CaptureAuthorization::notDetermined;
    desktop.permissions.contentFailure = TransportError{u"no screen"_s};
    desktop.alerts.answer = 1;

    launch();

    EXPECT_EQ(shell.infos().last(), u"Missing permissions: mic=unknown screen=denied"_s);
    EXPECT_TRUE(desktop.settings.opened.empty());
}

TEST_F(LaunchTest, stepsThatWaitHoldNothingUp) {
    desktop.permissions.requestGate.close();
    desktop.notifications.requestGate.close();

    launch();

    EXPECT_TRUE(panel().isVisible());
    EXPECT_EQ(session().sparkleUpdater(), updater);
    desktop.permissions.requestGate.open();
    desktop.notifications.requestGate.open();
    settle();
}

TEST_F(LaunchTest, removesTheMonitorsAndTheTimerAtTheEnd) {
    launch();
    session().setUserEmail(u"ada@example.com"_s);
    session().setUpcomingMeetings({{.id = u"m"_s, .summary = u"Demo"_s, .start = u"2026-03-02T10:02:00Z"_s}});

    delegate().applicationWillTerminate();

    EXPECT_EQ(desktop.keys.monitorCount(), 0U);
    settleAfter(clock, 61s);
    EXPECT_TRUE(desktop.notifications.requests.empty());
}

TEST_F(LaunchTest, leavesARunningSessionAloneAtTheEnd) {
    launch();
    session().startSession();
    settle();

    delegate().applicationWillTerminate();
    settle();

    EXPECT_TRUE(session().isSessionActive());
}

TEST_F(LaunchTest, quitStopsTheSessionAndEndsTheProgramOnce) {
    launch();
    session().startSession();
    settle();
    goLive();

    delegate().quit();
    delegate().quit();
    settleAfter(clock, 10ms);

    EXPECT_FALSE(session().isSessionActive());
    EXPECT_FALSE(panel().isVisible());
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(desktop.keys.monitorCount(), 0U);
}

TEST_F(LaunchTest, quitWaitsForTheSummaryOfACallThatWasJustEnded) {
    launch();
    session().startSession();
    settle();
    goLive();
    session().endSession();
    settle();

    delegate().quit();
    settleAfter(clock, 1s);
    EXPECT_EQ(terminations, 0);
    services.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 61}});
    settleAfter(clock, 10ms);

    EXPECT_EQ(terminations, 1);
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(store->records.size(), 1U);
}

TEST_F(LaunchTest, quitWaitsTwoSecondsAtMost) {
    launch();
    services.ws->connectGate.close();
    session().startSession();
    settle();

    delegate().quit();
    settleAfter(clock, 1900ms);
    EXPECT_EQ(terminations, 0);
    settleAfter(clock, 200ms);

    EXPECT_EQ(terminations, 1);
}

TEST_F(LaunchTest, aRequestToQuitFromOutsideIsNotTakenForAClosedWindow) {
    launch();

    QEvent quit{QEvent::Quit};
    QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
    settleAfter(clock, 10ms);

    EXPECT_EQ(terminations, 1);
}

TEST_F(LaunchTest, aRequestToQuitInTheMiddleOfTheLaunchIsTakenToo) {
    duringLaunch = [] {
        QEvent quit{QEvent::Quit};
        QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
    };
    launch();
    settleAfter(clock, 10ms);

    EXPECT_EQ(terminations, 1);
}

TEST_F(LaunchTest, closingWithoutATrayTellsOnceThatItKeepsRunning) {
    desktop.statusBar.isBarShown = false;
    launch();

    for (int time = 0; time < 2; ++time) {
        delegate().bringToFront();
        panel().close();
        settle();
    }

    EXPECT_FALSE(panel().isVisible());
    EXPECT_EQ(terminations, 0);
    ASSERT_EQ(desktop.notifications.requests.size(), 1U);
    EXPECT_EQ(desktop.notifications.requests.front().title, u"Corvellan Bram keeps running"_s);
}

TEST_F(LaunchTest, closingWithATrayIsSilent) {
    launch();

    panel().close();
    settle();

    EXPECT_FALSE(panel().isVisible());
    EXPECT_TRUE(desktop.notifications.requests.empty());
}

}  // namespace corvellan::test

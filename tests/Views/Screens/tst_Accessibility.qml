import QtQuick
import QtTest
import Corvellan.Views

/// Every screen, in every state that brings other controls, for people with a screen reader or without a mouse.
TestCase {
    id: testCase

    name: "Accessibility"
    when: windowShown
    width: 760
    height: 700
    visible: true

    Component {
        id: mainContent

        Main {
            width: 680
            height: 520
            views: driver.views
        }
    }

    Component {
        id: homeContent

        HomeScreen {
            width: 680
            height: 520
            home: homeDriver.home
            theme: homeDriver.theme
        }
    }

    Component {
        id: calendarContent

        CalendarScreen {
            width: 680
            height: 520
            calendar: homeDriver.calendar
            theme: homeDriver.theme
        }
    }

    Component {
        id: historyContent

        SessionHistoryScreen {
            width: 680
            height: 520
            history: historyDriver.history
            theme: historyDriver.theme
        }
    }

    Component {
        id: handoffContent

        HandoffWindowScreen {
            width: 520
            height: 600
            handoff: handoffDriver.view
            theme: handoffDriver.theme
        }
    }

    function init() {
        driver.reset();
        homeDriver.reset();
        historyDriver.reset();
    }

    /// What shows below `screen` has no fault, and there is something.
    function check(screen) {
        verify(audit.controlsIn(screen) > 0);
        let faults = audit.faultsIn(screen);
        // What has just come may be without its size.
        for (let i = 0; faults.length > 0 && i < 100; ++i) {
            wait(20);
            faults = audit.faultsIn(screen);
        }
        compare(faults.join("\n"), "");
    }

    function make(component) {
        const screen = createTemporaryObject(component, testCase);
        verify(screen);
        return screen;
    }

    // The window between calls

    function test_theFrame_data() {
        return [
            { tag: "signed in", prepare: () => driver.setUser("kim@fernhill.example") },
            { tag: "signed out", prepare: () => driver.useProductionServer() },
            { tag: "with an update", prepare: () => driver.offerUpdate() }
        ];
    }

    function test_theFrame(data) {
        data.prepare();
        check(make(mainContent));
    }

    function test_settings_data() {
        return [
            { tag: "plain", prepare: () => {} },
            { tag: "signed in", prepare: () => driver.setUser("kim@fernhill.example") },
            { tag: "signed out", prepare: () => driver.useProductionServer() },
            { tag: "sensor", prepare: () => driver.setSensor(true, "Sandra Weiss", "Nordwind", true) },
            { tag: "large letters", prepare: () => driver.setFontScale(2) }
        ];
    }

    function test_settings(data) {
        data.prepare();
        const screen = make(mainContent);
        driver.views.dashboard.selectTab("settings");
        tryVerify(() => findChild(screen, "form") !== null);
        check(screen);
    }

    function test_otherTabs_data() {
        return driver.views.dashboard.visibleTabs.map(tab => ({ tag: tab.name }));
    }

    function test_otherTabs(data) {
        const screen = make(mainContent);
        driver.views.dashboard.selectTab(data.tag);
        driver.asked("");
        check(screen);
    }

    function test_onboarding_data() {
        const rows = [];
        for (let step = 0; step < 5; ++step)
            rows.push({ tag: "step " + (step + 1), step: step });
        return rows;
    }

    function test_onboarding(data) {
        driver.resetAsNewUser("kim@fernhill.example");
        driver.setPermissions("denied", false);
        const screen = make(mainContent);
        for (let i = 0; i < data.step; ++i)
            driver.views.onboarding.next();
        check(screen);
    }

    // A call

    function test_aCall_data() {
        const rows = [];
        for (const scale of [1, 1.5, 2])
            for (const presses of [0, 1, 2])
                rows.push({ tag: ["full", "coach", "mini"][presses] + " at " + scale, presses: presses, scale: scale });
        return rows;
    }

    function test_aCall(data) {
        driver.setFontScale(data.scale);
        driver.setBrief("240 devices under contract.");
        driver.setHandoff("## Nordwind");
        driver.goLive();
        const screen = make(mainContent);
        for (let i = 0; i < data.presses; ++i)
            driver.views.live.cycleSessionTab();
        for (let i = 0; i < 60; ++i)
            driver.say(i % 2, "Something was said, and it takes a line.");
        driver.setError("Microphone transcription stopped: connection lost");
        check(screen);
    }

    // Home

    function test_homeSignedOut() {
        homeDriver.signOut();
        homeDriver.setError("Authentication cancelled");
        check(make(homeContent));
    }

    function test_home() {
        homeDriver.setMeetings(4);
        homeDriver.addRecord("Halden Freight", false, false);
        homeDriver.setError("Server did not provide ephemeral token");
        check(make(homeContent));
    }

    function search(screen) {
        homeDriver.knowCompanies();
        homeDriver.home.quickStartCompany = "Nord";
        homeDriver.letTimePass(400);
        tryVerify(() => findChild(screen, "result0") !== null);
    }

    function test_homeWithResults() {
        const screen = make(homeContent);
        search(screen);
        check(screen);
    }

    function test_homeWithEverythingUnfolded() {
        const screen = make(homeContent);
        search(screen);
        homeDriver.home.toggleCompany(0);
        homeDriver.settle();
        homeDriver.home.toggleHandoff(0);
        homeDriver.home.toggleTimeline(0);
        homeDriver.settle();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
        tryVerify(() => homeDriver.home.dossier.hasHandoff && homeDriver.home.dossier.hasEvents);
        check(screen);
    }

    function test_homeWithoutAnAnswer() {
        const screen = make(homeContent);
        search(screen);
        homeDriver.failLoads();
        homeDriver.home.toggleCompany(0);
        homeDriver.settle();
        homeDriver.home.toggleHandoff(0);
        homeDriver.settle();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
        check(screen);
    }

    // Calendar

    function test_calendar_data() {
        return [
            { tag: "folded", prepare: () => homeDriver.setMeetings(4) },
            { tag: "empty", prepare: () => homeDriver.setMeetings(0) },
            { tag: "error", prepare: () => homeDriver.setCalendarError("No answer") },
            {
                tag: "unfolded",
                prepare: () => {
                    homeDriver.setMeetings(4);
                    homeDriver.calendar.toggleMeeting(0);
                }
            }
        ];
    }

    function test_calendar(data) {
        const screen = make(calendarContent);
        homeDriver.settle();
        data.prepare();
        check(screen);
    }

    // History

    function test_historyWithoutSessions() {
        const screen = make(historyContent);
        historyDriver.quieten();
        check(screen);
    }

    function test_history() {
        historyDriver.keepMany(50);
        const screen = make(historyContent);
        tryVerify(() => historyDriver.history.state === "list");
        check(screen);
    }

    function test_summary_data() {
        return [{ tag: "fresh" }, { tag: "stored" }, { tag: "long" }];
    }

    function test_summary(data) {
        const lines = [];
        for (let i = 0; i < 200; ++i)
            lines.push("[Mic] Something was said.");
        const screen = make(historyContent);
        if (data.tag === "fresh") {
            historyDriver.endCall("Nordwind");
        } else {
            historyDriver.keep("Nordwind", 1, { callId: "c-1", transcript: data.tag === "long" ? lines : [] });
            historyDriver.history.open(0);
        }
        tryVerify(() => findChild(screen, "summaryForm") !== null);
        check(screen);
    }

    function test_handoffWindow() {
        handoffDriver.setWhole("## Note\n\nMail kim@fernhill.example or call +49 40 123456 78.");
        const screen = make(handoffContent);
        tryVerify(() => findChild(screen, "link0") !== null);
        check(screen);
    }

    // The audit itself

    Component {
        id: faulty

        FocusScope {
            width: 200
            height: 200

            PressButton {
                objectName: "nameless"
                width: 40
                height: 40
            }
            PressButton {
                objectName: "small"
                width: 40
                height: 27
                text: "Small"
            }
            PressButton {
                objectName: "unreachable"
                width: 40
                height: 40
                text: "Unreachable"
                focusPolicy: Qt.NoFocus
            }
            PressButton {
                objectName: "unspoken"
                width: 40
                height: 40
                text: "Unspoken"
                Accessible.ignored: true
            }
            PressButton {
                objectName: "good"
                width: 40
                height: 40
                text: "Good"
            }
        }
    }

    function test_theAuditFindsEachFault_data() {
        return [
            { tag: "nameless", finds: "no name" },
            { tag: "small", finds: "too small" },
            { tag: "unreachable", finds: "Tab key's reach" },
            { tag: "unspoken", finds: "unknown to screen readers" },
            { tag: "good", finds: "" }
        ];
    }

    function test_theAuditFindsEachFault(data) {
        const screen = make(faulty);
        waitForRendering(screen);
        const found = audit.faultsIn(screen).filter(fault => fault.startsWith(data.tag));
        compare(found.length > 0, data.finds.length > 0, found.join("\n"));
        verify(found.every(fault => fault.includes(data.finds) || fault.includes("without a name")), found.join("\n"));
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "CalendarScreen"
    width: 680
    height: 900

    Component {
        id: content

        CalendarScreen {
            width: 680
            height: 900
            calendar: homeDriver.calendar
            theme: homeDriver.theme
        }
    }

    Component {
        id: surroundings

        FocusScope {
            readonly property CalendarScreen screen: inside
            property int escapes: 0

            width: 680
            height: 900
            Keys.onEscapePressed: ++escapes

            CalendarScreen {
                id: inside

                calendar: homeDriver.calendar
                theme: homeDriver.theme
            }
        }
    }

    function init() {
        homeDriver.reset();
    }

    function open() {
        const screen = createTemporaryObject(content, testCase);
        verify(screen);
        screen.forceActiveFocus();
        draw(screen);
        return screen;
    }

    function test_itAsksForMeetingsWhenItAppears() {
        homeDriver.signOut();
        open();
        compare(homeDriver.meetingRequests(), 1);
    }

    function test_anEmptyCalendarSaysSoAndIsRefreshed_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_anEmptyCalendarSaysSoAndIsRefreshed(data) {
        homeDriver.signOut();
        const screen = open();
        compare(homeDriver.meetingRequests(), 1);
        tryVerify(() => shows(screen, "calendarEmptyState"));
        compare(shownTexts(control(screen, "calendarEmptyState")),
                ["No upcoming meetings", "Your Google Calendar meetings will appear here.", "Refresh"]);
        verify(!shows(screen, "meetingsSection"));
        const button = control(screen, "emptyRefresh");
        if (data.tag === "mouse") {
            press(button);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(button));
        } else {
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        }
        compare(homeDriver.meetingRequests(), 2);
    }

    function test_aFirstLoadShowsASpinner() {
        homeDriver.setLoadingMeetings(true);
        const screen = open();
        verify(shows(screen, "calendarWait"));
        verify(shownTexts(screen).includes("Loading calendar..."));
        verify(!shows(screen, "calendarEmptyState"));
        homeDriver.setLoadingMeetings(false);
        tryVerify(() => !shows(screen, "calendarWait"));
    }

    function test_anErrorStandsAboveTheMeetings() {
        homeDriver.setMeetings(2);
        homeDriver.setCalendarError("Authentication expired");
        const screen = open();
        const texts = shownTexts(screen);
        compare(texts.slice(0, 6), ["Calendar unavailable", "Authentication expired", "Retry", "Upcoming Meetings",
                                    "Meeting 1", "10:00 – 10:30"]);
        homeDriver.setCalendarError("");
        tryVerify(() => !shows(screen, "calendarProblem"));
    }

    function test_anErrorFindsItsPlaceAtOnce_data() {
        return [320, 508, 680].map(width => ({ tag: width.toString(), width: width }));
    }

    function test_anErrorFindsItsPlaceAtOnce(data) {
        failOnWarning(/Polish loop/);
        homeDriver.setCalendarError("Failed to fetch meetings: Briefing API error (HTTP 503)");
        const screen = createTemporaryObject(content, testCase, { width: data.width });
        draw(screen);
        const card = control(screen, "calendarProblem");
        const error = control(screen, "calendarError");
        const retry = control(screen, "retry");
        verify(error.mapToItem(card, 0, error.height).y <= card.height - 12);
        verify(error.mapToItem(card, error.width, 0).x < retry.mapToItem(card, 0, 0).x);
        verify(retry.mapToItem(card, retry.width, 0).x < card.width);
    }

    function test_retryAsksAgain() {
        homeDriver.signOut();
        homeDriver.setCalendarError("Authentication expired");
        const screen = open();
        homeDriver.settle();
        homeDriver.setCalendarError("Authentication expired");
        const before = homeDriver.meetingRequests();
        press(control(screen, "retry"));
        compare(homeDriver.meetingRequests(), before + 1);
    }

    function test_aCardUnfoldsByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_aCardUnfoldsByMouseKeysAndAccessibility(data) {
        homeDriver.setMeetings(2);
        const screen = open();
        const head = control(screen, "meetingHead0");
        compare(driver.spoken(head).name, "Meeting 1");
        compare(driver.spoken(head).description, "Folded, 10:00 – 10:30");
        if (data.tag === "mouse") {
            press(head);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(head));
        } else {
            head.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
        tryVerify(() => shows(screen, "startCall0"));
        verify(driver.spoken(head).description.startsWith("Unfolded"));
        verify(!shows(screen, "quickCall0"));
        verify(shows(screen, "quickCall1"));
    }

    function test_theKeyboardStaysWhereItIsWhateverComes() {
        homeDriver.setMeetings(2);
        const screen = open();
        const head = control(screen, "meetingHead1");
        head.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        tryVerify(() => shows(screen, "startCall1"));
        verify(head.activeFocus, "a card that unfolds keeps it");
        homeDriver.setMeetings(3);
        tryVerify(() => shows(screen, "meetingHead2"));
        verify(head.activeFocus, "a fresh list leaves it there");
    }

    function test_escapeFoldsTheOpenCardAndNothingElse_data() {
        return [{ tag: "from its head", at: "meetingHead0", then: "meetingHead0" },
                { tag: "from within", at: "startCall0", then: "meetingHead0" },
                { tag: "from another", at: "meetingHead1", then: "meetingHead1" },
                { tag: "from the header", at: "refresh", then: "refresh" }];
    }

    function test_escapeFoldsTheOpenCardAndNothingElse(data) {
        homeDriver.setMeetings(2);
        const place = createTemporaryObject(surroundings, testCase);
        const screen = place.screen;
        screen.forceActiveFocus();
        press(control(screen, "meetingHead0"));
        tryVerify(() => shows(screen, "startCall0"));
        control(screen, data.at).forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !shows(screen, "startCall0"));
        verify(control(screen, data.then).activeFocus);
        compare(place.escapes, 0);
        keyClick(Qt.Key_Escape);
        compare(place.escapes, 1, "for whatever lies round it");
    }

    function test_unfoldingASecondCardFoldsTheFirst() {
        homeDriver.setMeetings(2);
        const screen = open();
        press(control(screen, "meetingHead0"));
        tryVerify(() => shows(screen, "startCall0"));
        press(control(screen, "meetingHead1"));
        tryVerify(() => shows(screen, "startCall1"));
        verify(!shows(screen, "startCall0"));
    }

    function test_anUnfoldedCardShowsWhoAndWhichCompany() {
        homeDriver.setMeetings(1);
        const screen = open();
        press(control(screen, "meetingHead0"));
        tryVerify(() => shows(screen, "startCall0"));
        compare(shownTexts(control(screen, "card0")),
                ["Meeting 1", "10:00 – 10:30", "Sandra Weiss", "guest1@nordwind.example", "guest2",
                 "guest2@nordwind.example", "guest3", "guest3@nordwind.example", "guest4", "guest4@nordwind.example",
                 "guest5", "guest5@nordwind.example", "guest6", "guest6@nordwind.example", "+1 more", "Company",
                 "Nordwind Logistics GmbH", "· Germany", "· $248K", "Start Call"]);
        compare(control(screen, "companyName").color, homeDriver.theme.cyan);
        compare(control(screen, "companyRevenue").color, homeDriver.theme.green);
    }

    function test_aCallStartsFromTheCard_data() {
        return [{ tag: "button" }, { tag: "quick" }, { tag: "accessibility" }];
    }

    function test_aCallStartsFromTheCard(data) {
        homeDriver.setMeetings(2);
        const screen = open();
        if (data.tag === "button") {
            press(control(screen, "meetingHead1"));
            tryVerify(() => shows(screen, "startCall1"));
            draw(screen);
            press(control(screen, "startCall1"));
        } else if (data.tag === "quick") {
            press(control(screen, "quickCall1"));
            verify(!shows(screen, "startCall1"));
        } else {
            const quick = control(screen, "quickCall1");
            compare(driver.spoken(quick).name, "Start call: Meeting 2");
            verify(driver.pressThroughAccessibility(quick));
        }
        compare(homeDriver.currentCompany(), "Meeting 2");
    }

    function test_theSmallRefreshLeavesAYoungListAlone() {
        homeDriver.signOut();
        const screen = open();
        homeDriver.setMeetings(1);
        tryVerify(() => shows(screen, "refresh"));
        const before = homeDriver.meetingRequests();
        const refresh = control(screen, "refresh");
        verify(refresh.width >= 28 && refresh.height >= 28);
        compare(driver.spoken(refresh).name, "Refresh");
        press(refresh);
        compare(homeDriver.meetingRequests(), before);
    }
}

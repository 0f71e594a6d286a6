import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "HomeScreen"
    width: 680
    height: 1400

    Component {
        id: content

        HomeScreen {
            width: 680
            height: 1400
            home: homeDriver.home
            theme: homeDriver.theme
        }
    }

    function init() {
        homeDriver.reset();
        homeDriver.knowCompanies();
    }

    function open() {
        const screen = createTemporaryObject(content, testCase);
        verify(screen);
        screen.forceActiveFocus();
        draw(screen);
        return screen;
    }

    /// The screen with the two results of a search.
    function searched() {
        const screen = open();
        type("nord");
        homeDriver.letTimePass(400);
        tryVerify(() => findChild(screen, "resultHead1") !== null);
        // The second stands below the first once they are laid out.
        tryVerify(() => control(screen, "resultHead1").mapToItem(screen, 0, 0).y
                        >= control(screen, "resultHead0").mapToItem(screen, 0, 40).y);
        return screen;
    }

    /// The screen with the first result unfolded.
    function unfolded() {
        const screen = searched();
        press(control(screen, "resultHead0"));
        homeDriver.settle();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
        draw(screen);
        return screen;
    }

    // Signing in

    function test_whoIsNotSignedInIsAskedTo() {
        homeDriver.signOut();
        const screen = open();
        const prompt = control(screen, "loginPrompt");
        compare(shownTexts(prompt),
                ["Sign in to start coaching",
                 "Real-time AI coaching for sales calls — MEDDIC tracking, objection handling, and next-step prompts.",
                 "Sign In"]);
        verify(findChild(screen, "search") === null);
        verify(control(screen, "signIn").activeFocus);
        keyClick(Qt.Key_Return);
        verify(homeDriver.didLogIn());
        homeDriver.setUser("kim@corvellan.example");
        tryVerify(() => findChild(screen, "search") !== null);
        tryVerify(() => control(screen, "search").activeFocus);
    }

    function test_aFailedSignInIsTold() {
        homeDriver.signOut();
        homeDriver.setError("Login: refused");
        const screen = open();
        verify(shownTexts(screen).includes("Login: refused"));
    }

    function test_theTroubleOfASignInStandsInTheMiddle() {
        homeDriver.signOut();
        const screen = open();
        const line = control(screen, "loginProblem");
        const middle = () => line.mapToItem(screen, line.width / 2, 0).x;
        for (const text of ["Login: refused", "Login: " + "refused ".repeat(40)]) {
            homeDriver.setError(text);
            tryVerify(() => Math.abs(middle() - screen.width / 2) < 1, 5000, text);
            verify(line.width < screen.width, text);
        }
        verify(control(line, "problemText").lineCount > 1);
    }

    // What stands where

    function test_theEmptyScreenHasSearchPrepAndTheStart() {
        const screen = open();
        compare(shownTexts(control(screen, "homeArea")).filter(text => !text.match(/^(Discovery|Demo|Budget|Close|Support|Renewal|Upsell)$/)),
                ["Corvellan Bram", "Search company...",
                 "Search CRM & HubSpot to get company context before your call.", "Call Prep", "0/1000",
                 "Follow-up items, prep notes...", "Start Coaching"]);
        for (const section of ["resultsSection", "errorSection", "upcomingSection", "lastSessionSection"])
            verify(!shows(screen, section), section);
    }

    function test_theSectionsStandInTheirOrder() {
        homeDriver.setMeetings(4);
        homeDriver.setError("Session error: refused");
        homeDriver.addRecord("Nordwind", true, false);
        const screen = searched();
        const marks = ["Corvellan Bram", "Results", "Call Prep", "Session error: refused", "Upcoming", "Last Session"];
        compare(shownTexts(screen).filter(text => marks.includes(text)), marks);
    }

    function test_everythingThatCanBePressedIsLargeEnoughAndNamed() {
        homeDriver.setMeetings(1);
        homeDriver.addRecord("Nordwind", false, false);
        const screen = unfolded();
        for (const name of ["clearSearch", "resultHead0", "goal0", "goal6", "startCoaching", "crmLink", "meeting0",
                            "lastSession"]) {
            const item = control(screen, name);
            verify(item.width >= 28 && item.height >= 28, name);
            verify(driver.spoken(item).name.length > 0, name);
        }
    }

    // Search

    function test_theFieldHasTheKeyboardAndIsCyan() {
        const screen = open();
        const field = control(screen, "search");
        tryVerify(() => field.activeFocus);
        compare(control(screen, "searchIcon").color, homeDriver.theme.cyan);
        compare(control(screen, "searchField").borderColor, Qt.alpha(homeDriver.theme.cyan, 0.5));
        compare(driver.spoken(field).name, "Search company");
        keyClick(Qt.Key_Tab);
        verify(!field.activeFocus);
        compare(control(screen, "searchIcon").color, homeDriver.theme.gray);
    }

    function test_typingQuicklyAsksOnce() {
        const screen = open();
        type("nor");
        homeDriver.letTimePass(399);
        compare(homeDriver.searches(), 0);
        type("d");
        homeDriver.letTimePass(399);
        compare(homeDriver.searches(), 0);
        homeDriver.letTimePass(1);
        compare(homeDriver.searches(), 1);
        tryVerify(() => shows(screen, "resultsSection"));
        verify(!shows(screen, "searchHint"));
    }

    function test_aSearchUnderWayIsShown() {
        homeDriver.holdAnswers(true);
        const screen = open();
        type("nord");
        verify(!shows(screen, "searchSpinner"));
        homeDriver.letTimePass(400);
        verify(shows(screen, "searchSpinner"));
        compare(driver.spoken(control(screen, "search")).description, "Searching");
        homeDriver.holdAnswers(false);
        tryVerify(() => !shows(screen, "searchSpinner"));
    }

    function test_theSearchIsCleared_data() {
        return [{ tag: "button" }, { tag: "escape" }, { tag: "escape elsewhere" }, { tag: "accessibility" }];
    }

    function test_theSearchIsCleared(data) {
        const screen = searched();
        const clear = control(screen, "clearSearch");
        if (data.tag === "button") {
            press(clear);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(clear));
        } else {
            if (data.tag === "escape elsewhere")
                control(screen, "goal0").forceActiveFocus();
            keyClick(Qt.Key_Escape);
        }
        compare(control(screen, "search").text, "");
        tryVerify(() => !shows(screen, "resultsSection"));
        verify(!shows(screen, "clearSearch"));
        verify(control(screen, "search").activeFocus);
    }

    function test_returnAndDownLeadFromTheSearchToTheFirstResult_data() {
        return [{ tag: "return", key: Qt.Key_Return }, { tag: "enter", key: Qt.Key_Enter },
                { tag: "down", key: Qt.Key_Down }];
    }

    function test_returnAndDownLeadFromTheSearchToTheFirstResult(data) {
        const empty = open();
        control(empty, "search").forceActiveFocus();
        keyClick(data.key);
        verify(control(empty, "search").activeFocus, "nothing was found yet");
        const screen = searched();
        control(screen, "search").forceActiveFocus();
        keyClick(data.key);
        verify(control(screen, "resultHead0").activeFocus);
        compare(homeDriver.home.quickStartCompany, control(screen, "search").text);
        keyClick(Qt.Key_Return);
        tryVerify(() => shows(screen, "startCoaching"));
    }

    function test_escapeInAnOpenBriefFoldsItAndKeepsTheSearch() {
        const screen = searched();
        const text = control(screen, "search").text;
        homeDriver.home.toggleCompany(0);
        homeDriver.settle();
        tryVerify(() => shows(screen, "startCoaching"));
        control(screen, "startCoaching").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !shows(screen, "startCoaching"));
        verify(control(screen, "resultHead0").activeFocus);
        compare(control(screen, "search").text, text);
        keyClick(Qt.Key_Escape);
        compare(control(screen, "search").text, "");
    }

    function test_escapeInTheNotesLeavesThemAndLosesNothing() {
        const screen = searched();
        const text = control(screen, "search").text;
        const notes = control(screen, "callPrepNotes");
        notes.forceActiveFocus();
        type("ask");
        keyClick(Qt.Key_Escape);
        verify(!notes.activeFocus);
        compare(notes.text, "ask");
        compare(control(screen, "search").text, text);
    }

    // Results

    function test_aResultIsUnfoldedByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_aResultIsUnfoldedByMouseKeysAndAccessibility(data) {
        const screen = searched();
        const head = control(screen, "resultHead0");
        compare(driver.spoken(head).name, "Nordwind Logistics GmbH");
        compare(driver.spoken(head).description, "Folded, CRM, nordwind.example, $248K, 17 orders");
        const act = () => {
            if (data.tag === "mouse") {
                press(head);
            } else if (data.tag === "accessibility") {
                verify(driver.pressThroughAccessibility(head));
            } else {
                head.forceActiveFocus(Qt.TabFocusReason);
                keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
            }
            homeDriver.settle();
        };
        act();
        tryVerify(() => shows(screen, "brief"));
        verify(driver.spoken(head).description.startsWith("Unfolded"));
        act();
        tryVerify(() => !shows(screen, "brief"));
    }

    function test_theBriefStandsInItsOrder() {
        const screen = unfolded();
        compare(shownTexts(control(screen, "brief")),
                ["Total", "$2.5M", "Last 12mo", "$48K", "Orders", "17", "Products", "Zelto Monitor", "$31K",
                 "Zelto Probe", "Contacts", "Sandra Weiss", "sandra.weiss@nordwind.example", "Notes (9)", "CRM",
                 "HubSpot", "AE Handoff", "Engagement"]);
    }

    function test_aLongBriefMakesOnlyTheRowsThatShow_data() {
        return [{ tag: "productList", first: "Product 1" }, { tag: "contactList", first: "Guest 1" }];
    }

    function test_aLongBriefMakesOnlyTheRowsThatShow(data) {
        homeDriver.fillBriefs(2000);
        const screen = unfolded();
        const list = control(screen, data.tag);
        compare(list.count, 2000);
        tryVerify(() => list.height === 320);
        compare(shownTexts(list)[0], data.first);
        verify(list.contentItem.children.length < 60, list.contentItem.children.length);
        list.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_End);
        tryVerify(() => list.itemAtIndex(1999) !== null);
        verify(list.contentItem.children.length < 60, list.contentItem.children.length);
    }

    function test_aShortBriefShowsAllOfItsRows_data() {
        return [{ tag: "one", rows: 1 }, { tag: "three", rows: 3 }];
    }

    function test_aShortBriefShowsAllOfItsRows(data) {
        homeDriver.fillBriefs(data.rows);
        const screen = unfolded();
        for (const name of ["productList", "contactList"]) {
            const list = control(screen, name);
            tryCompare(list, "height", list.contentHeight);
            const last = list.itemAtIndex(data.rows - 1);
            verify(last !== null);
            compare(list.height, last.y + last.height);
            verify(!list.activeFocusOnTab);
        }
    }

    function test_aBriefOnItsWayShowsASpinnerAndTheStart() {
        const screen = searched();
        homeDriver.holdAnswers(true);
        press(control(screen, "resultHead0"));
        homeDriver.settle();
        tryVerify(() => shows(screen, "briefWait"));
        verify(!shows(screen, "brief"));
        verify(shows(screen, "startCoaching"));
        homeDriver.holdAnswers(false);
        tryVerify(() => shows(screen, "brief"));
        verify(!shows(screen, "briefWait"));
    }

    function test_aFailedBriefShowsWhyAndTheStart() {
        homeDriver.failLoads();
        const screen = searched();
        press(control(screen, "resultHead0"));
        homeDriver.settle();
        tryVerify(() => shows(screen, "briefProblem"));
        compare(control(screen, "briefProblem").text, "Briefing API error (HTTP 500)");
        verify(shows(screen, "startCoaching"));
    }

    function test_notesFoldOutInAListOfTheirOwn() {
        const screen = unfolded();
        const notes = control(screen, "notes");
        press(notes.head);
        const list = control(screen, "noteList");
        tryVerify(() => list.visible && list.height > 40);
        verify(list.height <= 320);
        compare(list.count, 9);
        verify(shownTexts(list)[0].startsWith("Note 9: three outages last quarter, asks"));
        press(notes.head);
        tryVerify(() => !list.visible);
    }

    function test_linksOpenPages() {
        const screen = unfolded();
        press(control(screen, "crmLink"));
        compare(homeDriver.openedPage(), "https://crm.example/42");
        press(control(screen, "hubspotLink"));
        compare(homeDriver.openedPage(), "https://hubspot.example/hs-42");
    }

    function test_theHandoffLoadsWhenUnfolded() {
        const screen = unfolded();
        const handoff = control(screen, "handoff");
        homeDriver.holdAnswers(true);
        press(handoff.head);
        homeDriver.settle();
        tryVerify(() => shows(screen, "handoffWait"));
        verify(!shows(screen, "loadHandoff"));
        homeDriver.holdAnswers(false);
        tryVerify(() => shows(screen, "copyHandoff"));
        const texts = shownTexts(handoff);
        for (const text of ["240 devices", "12 calls", "7 emails", "Copy", "Open Window"])
            verify(texts.includes(text), text);
        verify(shows(screen, "handoffNote"));
        press(control(screen, "copyHandoff"));
        verify(homeDriver.clipboard().startsWith("## Summary"));
        press(control(screen, "openHandoff"));
        compare(homeDriver.handoffsShown(), 1);
    }

    function test_aFailedHandoffShowsWhyAndCanBeAskedForAgain() {
        const screen = unfolded();
        homeDriver.failLoads();
        press(control(screen, "handoff").head);
        homeDriver.settle();
        tryVerify(() => shows(screen, "handoffProblem"));
        compare(control(screen, "handoffProblem").text, "Handoff: Briefing API error (HTTP 500)");
        homeDriver.knowCompanies();
        press(control(screen, "loadHandoff"));
        homeDriver.settle();
        tryVerify(() => shows(screen, "copyHandoff"));
        verify(!shows(screen, "handoffProblem"));
    }

    function test_aLongTimelineMakesOnlyTheRowsThatShow() {
        const screen = unfolded();
        const timeline = control(screen, "timeline");
        press(timeline.head);
        homeDriver.settle();
        const list = control(screen, "eventList");
        tryVerify(() => list.visible && list.height > 40);
        compare(list.count, 400);
        verify(list.height <= 320);
        verify(list.contentItem.children.length < 60);
        compare(shownTexts(list).slice(0, 2), ["Event 1", "Connected"]);
        compare(driver.spoken(timeline.head).name, "Engagement, 400");
        list.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_End);
        tryVerify(() => shownTexts(list).includes("Event 400"));
    }

    function test_aCompanyWithoutEventsSaysSo() {
        homeDriver.failLoads();
        const screen = searched();
        homeDriver.knowCompanies();
        press(control(screen, "resultHead0"));
        homeDriver.settle();
        homeDriver.failLoads();
        tryVerify(() => shows(screen, "brief"));
        press(control(screen, "timeline").head);
        homeDriver.settle();
        tryVerify(() => shows(screen, "noEvents"));
        compare(control(screen, "noEvents").text, "No recent activity");
        compare(control(screen, "timelineProblem").text, "Timeline: Briefing API error (HTTP 500)");
    }

    function test_aCallStartsByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_aCallStartsByMouseKeysAndAccessibility(data) {
        const screen = unfolded();
        const button = control(screen, "startCoaching");
        compare(driver.spoken(button).name, "Start Coaching");
        if (data.tag === "mouse") {
            press(button);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(button));
        } else {
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        }
        compare(homeDriver.currentCompany(), "Nordwind Logistics GmbH");
    }

    function test_aCallStartsWithoutACompany() {
        const screen = open();
        const button = control(screen, "startWithoutCompany");
        compare(driver.spoken(button).name, "Start Coaching");
        press(button);
        tryVerify(() => homeDriver.isSessionActive());
        compare(homeDriver.currentCompany(), "");
    }

    function test_aHeldKeyStartsNothing_data() {
        return [{ tag: "return", key: Qt.Key_Return }, { tag: "enter", key: Qt.Key_Enter },
                { tag: "space", key: Qt.Key_Space }];
    }

    function test_aHeldKeyStartsNothing(data) {
        const screen = unfolded();
        control(screen, "startCoaching").forceActiveFocus(Qt.TabFocusReason);
        // As from a key that has ended the last call and is still down.
        for (let i = 0; i < 3; ++i)
            driver.repeatKey(screen.Window.window, data.key);
        compare(homeDriver.currentCompany(), "");
    }

    function test_nothingStartsWhileACallIsOnItsWay() {
        homeDriver.setMeetings(1);
        const screen = unfolded();
        homeDriver.holdConnecting();
        press(control(screen, "startCoaching"));
        homeDriver.settle();
        tryVerify(() => !control(screen, "startCoaching").enabled);
        verify(!control(screen, "meeting0").enabled);
    }

    // Call prep

    function test_aPastedNoteIsCutAndTheCounterWarns() {
        const screen = open();
        const notes = control(screen, "callPrepNotes");
        compare(control(screen, "notesCounter").color, homeDriver.theme.gray);
        notes.forceActiveFocus();
        notes.text = "x".repeat(1500);
        compare(notes.text.length, 1000);
        compare(control(screen, "notesCounter").text, "1000/1000");
        compare(control(screen, "notesCounter").color, homeDriver.theme.orange);
    }

    function test_aTextThatIsFullTakesNoMore() {
        const screen = open();
        const notes = control(screen, "callPrepNotes");
        notes.text = "x".repeat(999);
        notes.forceActiveFocus();
        notes.cursorPosition = 3;
        keyClick("a");
        compare(notes.cursorPosition, 4);
        keyClick("b");
        compare(notes.text.length, 1000);
        compare(notes.text.slice(0, 6), "xxxabx");
    }

    function test_tabLeavesTheNotes() {
        homeDriver.addRecord("Nordwind", false, false);
        const screen = open();
        const notes = control(screen, "callPrepNotes");
        notes.forceActiveFocus();
        keyClick(Qt.Key_Tab);
        verify(!notes.activeFocus);
        compare(notes.text, "");
        verify(control(screen, "startWithoutCompany").activeFocus);
        keyClick(Qt.Key_Backtab);
        verify(notes.activeFocus);
    }

    function test_notesAndGoalsOutliveTheScreen() {
        const first = open();
        control(first, "callPrepNotes").text = "Ask about hosting";
        press(control(first, "goal2"));
        first.destroy();
        const second = open();
        compare(control(second, "callPrepNotes").text, "Ask about hosting");
        verify(driver.spoken(control(second, "goal2")).isChecked);
    }

    function test_goalsAreChosenByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_goalsAreChosenByMouseKeysAndAccessibility(data) {
        const screen = open();
        const goal = control(screen, "goal2");
        const chip = findChild(goal, "chip");
        const tint = homeDriver.theme.named["green"];
        compare(driver.spoken(goal).name, "Budget");
        verify(driver.spoken(goal).isCheckable);
        const act = () => {
            if (data.tag === "mouse") {
                press(goal);
            } else if (data.tag === "accessibility") {
                verify(driver.pressThroughAccessibility(goal));
            } else {
                goal.forceActiveFocus(Qt.OtherFocusReason);
                keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
            }
        };
        compare(chip.color, Qt.alpha(tint, 0.1));
        act();
        verify(driver.spoken(goal).isChecked);
        compare(chip.color, Qt.alpha(tint, 0.25));
        act();
        verify(!driver.spoken(goal).isChecked);
        compare(chip.color, Qt.alpha(tint, 0.1));
    }

    function test_goalsFlowOverSeveralLines() {
        const screen = open();
        screen.width = 360;
        tryVerify(() => control(screen, "goal6").y > control(screen, "goal0").y);
        const area = control(screen, "goals");
        for (let i = 0; i < 7; ++i) {
            const goal = control(screen, "goal" + i);
            tryVerify(() => goal.x + goal.width <= area.width);
            tryVerify(() => goal.y + goal.height <= area.height);
        }
    }

    // Meetings and the last session

    function test_fourMeetingsShowOnlyThreeRows() {
        homeDriver.setMeetings(4);
        const screen = open();
        verify(shows(screen, "meeting2"));
        verify(findChild(screen, "meeting3") === null);
        const row = control(screen, "meeting1");
        compare(driver.spoken(row).name, "Meeting 2");
        compare(driver.spoken(row).description, "10:00 – 10:30. Starts the call");
        press(row);
        compare(homeDriver.currentCompany(), "Meeting 2");
        compare(control(screen, "search").text, "Meeting 2");
    }

    function test_theLastSessionLeadsToTheHistory() {
        homeDriver.addRecord("Nordwind", true, false);
        const screen = open();
        const card = control(screen, "lastSession");
        compare(shownTexts(card), ["4/6", "Nordwind", "TRAIN", "02.03.2026 · 12m 3s"]);
        compare(driver.spoken(card).description, "4/6, Training, 02.03.2026 · 12m 3s");
        press(card);
        compare(homeDriver.historyRequests(), 1);
    }

    function test_aColdCallHasNoScoreOnItsCard() {
        homeDriver.addRecord("", false, true);
        const screen = open();
        compare(shownTexts(control(screen, "lastSession")), ["Session", "02.03.2026 · 12m 3s"]);
    }

    // Looks

    function test_nothingIsCutOffInANarrowWindow() {
        homeDriver.setMeetings(3);
        homeDriver.addRecord("Nordwind", true, false);
        const screen = unfolded();
        screen.width = 380;
        draw(screen);
        const brief = control(screen, "brief");
        verify(brief.width <= 380 - 40);
        for (const name of ["resultHead0", "startCoaching", "lastSession", "meeting0"]) {
            const item = control(screen, name);
            const right = item.mapToItem(screen, item.width, 0).x;
            verify(right <= 380, name);
        }
    }

    function test_aShortWindowScrollsToWhatHasTheKeyboard() {
        homeDriver.setMeetings(3);
        homeDriver.addRecord("Nordwind", true, false);
        const screen = open();
        screen.height = 240;
        draw(screen);
        const card = control(screen, "lastSession");
        card.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => {
            const top = card.mapToItem(screen, 0, 0).y;
            return top >= 0 && top + card.height <= 240;
        });
    }
}

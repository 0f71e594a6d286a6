import QtQuick
import QtTest
import Corvellan.Views

TestCase {
    id: testCase

    name: "HomeScreen"
    when: windowShown
    width: 680
    height: 1400
    visible: true

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
        waitForRendering(screen);
        return screen;
    }

    function item(screen, name) {
        const found = findChild(screen, name);
        verify(found !== null, name);
        return found;
    }

    /// By mouse, once the layout leaves it where it is.
    function press(control) {
        let last = -1;
        tryVerify(() => {
            const before = last;
            last = control.mapToItem(null, 0, 0).y;
            return last === before && control.height > 0;
        });
        mouseClick(control);
    }

    function shows(screen, name) {
        const found = findChild(screen, name);
        return found !== null && found.visible;
    }

    /// All texts that show, from top to bottom.
    function shownTexts(item) {
        let texts = [];
        if (!item.visible)
            return texts;
        if (item.text !== undefined && item.font !== undefined && item.contentItem === undefined
                && item.text.length > 0 && item.font.family !== homeDriver.theme.iconFamily)
            texts.push(item.text);
        for (let i = 0; i < item.children.length; ++i)
            texts = texts.concat(shownTexts(item.children[i]));
        return texts;
    }

    function type(text) {
        for (const letter of text)
            keyClick(letter);
    }

    /// The screen with the two results of a search.
    function searched() {
        const screen = open();
        type("nord");
        homeDriver.letTimePass(400);
        tryVerify(() => findChild(screen, "resultHead1") !== null);
        // The second stands below the first once they are laid out.
        tryVerify(() => item(screen, "resultHead1").mapToItem(screen, 0, 0).y
                        >= item(screen, "resultHead0").mapToItem(screen, 0, 40).y);
        return screen;
    }

    /// The screen with the first result unfolded.
    function unfolded() {
        const screen = searched();
        press(item(screen, "resultHead0"));
        homeDriver.settle();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
        waitForRendering(screen);
        return screen;
    }

    // Signing in

    function test_whoIsNotSignedInIsAskedTo() {
        homeDriver.signOut();
        const screen = open();
        const prompt = item(screen, "loginPrompt");
        compare(shownTexts(prompt),
                ["Sign in to start coaching",
                 "Real-time AI coaching for sales calls — MEDDIC tracking, objection handling, and next-step prompts.",
                 "Sign In"]);
        verify(findChild(screen, "search") === null);
        verify(item(screen, "signIn").activeFocus);
        keyClick(Qt.Key_Return);
        verify(homeDriver.didLogIn());
        homeDriver.setUser("kim@corvellan.example");
        tryVerify(() => findChild(screen, "search") !== null);
        tryVerify(() => item(screen, "search").activeFocus);
    }

    function test_aFailedSignInIsTold() {
        homeDriver.signOut();
        homeDriver.setError("Login: refused");
        const screen = open();
        verify(shownTexts(screen).includes("Login: refused"));
    }

    // What stands where

    function test_theEmptyScreenHasSearchPrepAndTheStart() {
        const screen = open();
        compare(shownTexts(item(screen, "homeArea")).filter(text => !text.match(/^(Discovery|Demo|Budget|Close|Support|Renewal|Upsell)$/)),
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
            const control = item(screen, name);
            verify(control.width >= 28 && control.height >= 28, name);
            verify(driver.spoken(control).name.length > 0, name);
        }
    }

    // Search

    function test_theFieldHasTheKeyboardAndIsCyan() {
        const screen = open();
        const field = item(screen, "search");
        tryVerify(() => field.activeFocus);
        compare(item(screen, "searchIcon").color, homeDriver.theme.cyan);
        compare(item(screen, "searchField").border.color, Qt.alpha(homeDriver.theme.cyan, 0.5));
        compare(driver.spoken(field).name, "Search company");
        keyClick(Qt.Key_Tab);
        verify(!field.activeFocus);
        compare(item(screen, "searchIcon").color, homeDriver.theme.gray);
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
        compare(driver.spoken(item(screen, "search")).description, "Searching");
        homeDriver.holdAnswers(false);
        tryVerify(() => !shows(screen, "searchSpinner"));
    }

    function test_theSearchIsCleared_data() {
        return [{ tag: "button" }, { tag: "escape" }, { tag: "escape elsewhere" }, { tag: "accessibility" }];
    }

    function test_theSearchIsCleared(data) {
        const screen = searched();
        const clear = item(screen, "clearSearch");
        if (data.tag === "button") {
            press(clear);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(clear));
        } else {
            if (data.tag === "escape elsewhere")
                item(screen, "goal0").forceActiveFocus();
            keyClick(Qt.Key_Escape);
        }
        compare(item(screen, "search").text, "");
        tryVerify(() => !shows(screen, "resultsSection"));
        verify(!shows(screen, "clearSearch"));
        verify(item(screen, "search").activeFocus);
    }

    // Results

    function test_aResultIsUnfoldedByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_aResultIsUnfoldedByMouseKeysAndAccessibility(data) {
        const screen = searched();
        const head = item(screen, "resultHead0");
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
        compare(shownTexts(item(screen, "brief")),
                ["Total", "$2.5M", "Last 12mo", "$48K", "Orders", "17", "Products", "Zelto Monitor", "$31K",
                 "Zelto Probe", "Contacts", "Sandra Weiss", "sandra.weiss@nordwind.example", "Notes (9)", "CRM",
                 "HubSpot", "AE Handoff", "Engagement"]);
    }

    function test_aBriefOnItsWayShowsASpinnerAndTheStart() {
        const screen = searched();
        homeDriver.holdAnswers(true);
        press(item(screen, "resultHead0"));
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
        press(item(screen, "resultHead0"));
        homeDriver.settle();
        tryVerify(() => shows(screen, "briefProblem"));
        compare(item(screen, "briefProblem").text, "Briefing API error (HTTP 500)");
        verify(shows(screen, "startCoaching"));
    }

    function test_notesFoldOutInAListOfTheirOwn() {
        const screen = unfolded();
        const notes = item(screen, "notes");
        press(notes.head);
        const list = item(screen, "noteList");
        tryVerify(() => list.visible && list.height > 40);
        verify(list.height <= 320);
        compare(list.count, 9);
        verify(shownTexts(list)[0].startsWith("Note 9: three outages last quarter, asks"));
        press(notes.head);
        tryVerify(() => !list.visible);
    }

    function test_linksOpenPages() {
        const screen = unfolded();
        press(item(screen, "crmLink"));
        compare(homeDriver.openedPage(), "https://crm.example/42");
        press(item(screen, "hubspotLink"));
        compare(homeDriver.openedPage(), "https://hubspot.example/hs-42");
    }

    function test_theHandoffLoadsWhenUnfolded() {
        const screen = unfolded();
        const handoff = item(screen, "handoff");
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
        press(item(screen, "copyHandoff"));
        verify(homeDriver.clipboard().startsWith("## Summary"));
        press(item(screen, "openHandoff"));
        compare(homeDriver.handoffsShown(), 1);
    }

    function test_aFailedHandoffShowsWhyAndCanBeAskedForAgain() {
        const screen = unfolded();
        homeDriver.failLoads();
        press(item(screen, "handoff").head);
        homeDriver.settle();
        tryVerify(() => shows(screen, "handoffProblem"));
        compare(item(screen, "handoffProblem").text, "Handoff: Briefing API error (HTTP 500)");
        homeDriver.knowCompanies();
        press(item(screen, "loadHandoff"));
        homeDriver.settle();
        tryVerify(() => shows(screen, "copyHandoff"));
        verify(!shows(screen, "handoffProblem"));
    }

    function test_aLongTimelineMakesOnlyTheRowsThatShow() {
        const screen = unfolded();
        const timeline = item(screen, "timeline");
        press(timeline.head);
        homeDriver.settle();
        const list = item(screen, "eventList");
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
        press(item(screen, "resultHead0"));
        homeDriver.settle();
        homeDriver.failLoads();
        tryVerify(() => shows(screen, "brief"));
        press(item(screen, "timeline").head);
        homeDriver.settle();
        tryVerify(() => shows(screen, "noEvents"));
        compare(item(screen, "noEvents").text, "No recent activity");
        compare(item(screen, "timelineProblem").text, "Timeline: Briefing API error (HTTP 500)");
    }

    function test_aCallStartsByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_aCallStartsByMouseKeysAndAccessibility(data) {
        const screen = unfolded();
        const button = item(screen, "startCoaching");
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
        const button = item(screen, "startWithoutCompany");
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
        item(screen, "startCoaching").forceActiveFocus(Qt.TabFocusReason);
        // As from a key that has ended the last call and is still down.
        for (let i = 0; i < 3; ++i)
            driver.repeatKey(screen.Window.window, data.key);
        compare(homeDriver.currentCompany(), "");
    }

    function test_nothingStartsWhileACallIsOnItsWay() {
        homeDriver.setMeetings(1);
        const screen = unfolded();
        homeDriver.holdConnecting();
        press(item(screen, "startCoaching"));
        homeDriver.settle();
        tryVerify(() => !item(screen, "startCoaching").enabled);
        verify(!item(screen, "meeting0").enabled);
    }

    // Call prep

    function test_aPastedNoteIsCutAndTheCounterWarns() {
        const screen = open();
        const notes = item(screen, "callPrepNotes");
        compare(item(screen, "notesCounter").color, homeDriver.theme.gray);
        notes.forceActiveFocus();
        notes.text = "x".repeat(1500);
        compare(notes.text.length, 1000);
        compare(item(screen, "notesCounter").text, "1000/1000");
        compare(item(screen, "notesCounter").color, homeDriver.theme.orange);
    }

    function test_aTextThatIsFullTakesNoMore() {
        const screen = open();
        const notes = item(screen, "callPrepNotes");
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
        const notes = item(screen, "callPrepNotes");
        notes.forceActiveFocus();
        keyClick(Qt.Key_Tab);
        verify(!notes.activeFocus);
        compare(notes.text, "");
        verify(item(screen, "startWithoutCompany").activeFocus);
        keyClick(Qt.Key_Backtab);
        verify(notes.activeFocus);
    }

    function test_notesAndGoalsOutliveTheScreen() {
        const first = open();
        item(first, "callPrepNotes").text = "Ask about hosting";
        press(item(first, "goal2"));
        first.destroy();
        const second = open();
        compare(item(second, "callPrepNotes").text, "Ask about hosting");
        verify(driver.spoken(item(second, "goal2")).isChecked);
    }

    function test_goalsAreChosenByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_goalsAreChosenByMouseKeysAndAccessibility(data) {
        const screen = open();
        const goal = item(screen, "goal2");
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
        tryVerify(() => item(screen, "goal6").y > item(screen, "goal0").y);
        const area = item(screen, "goals");
        for (let i = 0; i < 7; ++i) {
            const goal = item(screen, "goal" + i);
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
        const row = item(screen, "meeting1");
        compare(driver.spoken(row).name, "Meeting 2");
        compare(driver.spoken(row).description, "10:00 – 10:30. Starts the call");
        press(row);
        compare(homeDriver.currentCompany(), "Meeting 2");
        compare(item(screen, "search").text, "Meeting 2");
    }

    function test_theLastSessionLeadsToTheHistory() {
        homeDriver.addRecord("Nordwind", true, false);
        const screen = open();
        const card = item(screen, "lastSession");
        compare(shownTexts(card), ["4/6", "Nordwind", "TRAIN", "02.03.2026 · 12m 3s"]);
        compare(driver.spoken(card).description, "4/6, Training, 02.03.2026 · 12m 3s");
        press(card);
        compare(homeDriver.historyRequests(), 1);
    }

    function test_aColdCallHasNoScoreOnItsCard() {
        homeDriver.addRecord("", false, true);
        const screen = open();
        compare(shownTexts(item(screen, "lastSession")), ["Session", "02.03.2026 · 12m 3s"]);
    }

    // Looks

    function test_nothingIsCutOffInANarrowWindow() {
        homeDriver.setMeetings(3);
        homeDriver.addRecord("Nordwind", true, false);
        const screen = unfolded();
        screen.width = 380;
        waitForRendering(screen);
        const brief = item(screen, "brief");
        verify(brief.width <= 380 - 40);
        for (const name of ["resultHead0", "startCoaching", "lastSession", "meeting0"]) {
            const control = item(screen, name);
            const right = control.mapToItem(screen, control.width, 0).x;
            verify(right <= 380, name);
        }
    }

    function test_aShortWindowScrollsToWhatHasTheKeyboard() {
        homeDriver.setMeetings(3);
        homeDriver.addRecord("Nordwind", true, false);
        const screen = open();
        screen.height = 240;
        waitForRendering(screen);
        const card = item(screen, "lastSession");
        card.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => {
            const top = card.mapToItem(screen, 0, 0).y;
            return top >= 0 && top + card.height <= 240;
        });
    }
}

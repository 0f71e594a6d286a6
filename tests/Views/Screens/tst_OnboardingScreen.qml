import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    readonly property string user: "sandra.weiss@nordwind.example"

    name: "OnboardingScreen"
    width: 680
    height: 520

    Component {
        id: content

        Main {
            width: 680
            height: 520
            views: driver.views
        }
    }

    function init() {
        driver.resetAsNewUser(user);
    }

    function make() {
        const window = createTemporaryObject(content, testCase);
        draw(window);
        return window;
    }

    /// The window at a step, from 0.
    function openAt(step) {
        const window = make();
        for (let i = 0; i < step; ++i)
            driver.views.onboarding.next();
        compare(driver.views.onboarding.step, step);
        driver.asked("");
        draw(window);
        return window;
    }

    function shown(window) {
        return shownTexts(control(window, "onboardingArea"));
    }

    // The face

    function test_itStandsInFrontOfTheMainLayoutUntilItIsDone() {
        const window = make();
        verify(findChild(window, "sidebar") === null);
        driver.views.onboarding.finish();
        tryVerify(() => findChild(window, "homeArea") !== null);
        tryVerify(() => findChild(window, "onboardingTitle") === null);
        compare(driver.stored("onboardingCompleted"), true);
    }

    function test_whoIsNotSignedInSeesTheMainLayoutFirst() {
        driver.useProductionServer();
        driver.setUser("");
        const window = make();
        verify(findChild(window, "loginPrompt") !== null);
        driver.setUser(user);
        tryVerify(() => findChild(window, "onboardingTitle") !== null);
    }

    function test_aCallTakesItsPlaceAndItStartsAnew() {
        const window = openAt(2);
        driver.startCall("");
        tryVerify(() => findChild(window, "endSession") !== null);
        driver.stopCall();
        tryVerify(() => findChild(window, "onboardingTitle") !== null);
        compare(control(window, "onboardingProgress").text, "1 of 5");
    }

    // What is shown

    function test_eachStepShowsItsWords() {
        const window = make();
        const onboarding = driver.views.onboarding;
        for (let step = 0; step < 4; ++step) {
            compare(control(window, "onboardingProgress").text, (step + 1) + " of 5");
            const page = onboarding.page;
            const wanted = [page.title];
            if (page.text.length > 0)
                wanted.push(page.text);
            if (step === 0)
                wanted.push("Signed in as " + user);
            for (const row of page.rows) {
                if (row.letter.length > 0)
                    wanted.push(row.letter);
                wanted.push(row.name, row.text);
            }
            if (page.note.text !== undefined)
                wanted.push(page.note.text);
            compare(shown(window), wanted);
            onboarding.next();
        }
        tryVerify(() => !shows(window, "enable0") && !shows(window, "enable1"));
        compare(shown(window), ["Permissions", "Bram needs two permissions to coach you during calls.", "Microphone",
                                "Captures your voice for real-time transcription", "Screen Recording",
                                "Captures customer voice from Zoom / Meet / Teams"]);
    }

    function test_coloursOfSymbolsAndNotes() {
        const window = openAt(0);
        const theme = driver.views.theme;
        compare(control(window, "accountSymbol").symbol, "checkmark.circle.fill");
        compare(control(window, "accountSymbol").color, theme.green);
        driver.views.onboarding.next();
        const colours = [theme.cyan, theme.green, theme.orange, theme.named["purple"]];
        for (let i = 0; i < 4; ++i)
            compare(findChild(control(window, "row" + i), "symbol").color, colours[i]);
        driver.views.onboarding.next();
        compare(control(window, "onboardingNote").color, Qt.alpha(theme.cyan, 0.08));
        compare(control(window, "onboardingNote").symbol, "info.circle");
        driver.views.onboarding.next();
        compare(control(window, "onboardingNote").color, Qt.alpha(theme.orange, 0.1));
        compare(control(window, "onboardingNote").symbol, "lightbulb.fill");
        compare(findChild(control(window, "row2"), "mark").color, theme.named["yellow"]);
    }

    // The navigation row

    function test_theRowOffersWhatTheStepAllows_data() {
        const rows = [];
        for (let step = 0; step < 5; ++step)
            rows.push({ tag: (step + 1) + " of 5", step: step });
        return rows;
    }

    function test_theRowOffersWhatTheStepAllows(data) {
        const window = openAt(data.step);
        const isLast = data.step === 4;
        compare(shows(window, "onboardingBack"), data.step > 0);
        compare(shows(window, "onboardingSkip"), !isLast);
        compare(shows(window, "onboardingNext"), !isLast);
        compare(shows(window, "getStarted"), isLast);
        compare(control(window, "onboardingBack").symbol, "chevron.left");
        compare(control(window, "getStarted").color, driver.views.theme.green);
        for (const name of ["onboardingBack", "onboardingSkip", "onboardingNext", "getStarted"])
            compare(driver.spoken(control(window, name)).role, Accessible.Button);
    }

    function activate(item, way) {
        if (way === "mouse") {
            press(item);
        } else if (way === "accessibility") {
            verify(driver.pressThroughAccessibility(item));
        } else {
            item.forceActiveFocus(Qt.TabFocusReason);
            keyClick(way === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
    }

    function ways() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_nextAndBackLeadThrough_data() {
        return ways();
    }

    function test_nextAndBackLeadThrough(data) {
        const window = make();
        activate(control(window, "onboardingNext"), data.tag);
        tryCompare(driver.views.onboarding, "step", 1);
        activate(control(window, "onboardingNext"), data.tag);
        tryCompare(driver.views.onboarding, "step", 2);
        activate(control(window, "onboardingBack"), data.tag);
        tryCompare(driver.views.onboarding, "step", 1);
        compare(control(window, "onboardingProgress").text, "2 of 5");
    }

    function test_skipOnStepOneIsForGood_data() {
        return ways();
    }

    function test_skipOnStepOneIsForGood(data) {
        const window = openAt(1);
        compare(driver.stored("onboardingCompleted"), undefined);
        activate(control(window, "onboardingSkip"), data.tag);
        tryVerify(() => findChild(window, "homeArea") !== null);
        compare(driver.stored("onboardingCompleted"), true);
    }

    function test_getStartedLeadsToTheMainLayout_data() {
        return ways();
    }

    function test_getStartedLeadsToTheMainLayout(data) {
        const window = openAt(4);
        compare(control(window, "getStarted").text, "Get Started");
        activate(control(window, "getStarted"), data.tag);
        tryVerify(() => findChild(window, "homeArea") !== null);
        compare(driver.stored("onboardingCompleted"), true);
    }

    // Keyboard

    function test_aDoubleClickOnTheLastNextStaysOnTheLastStep() {
        const window = openAt(3);
        driver.pressTwice(control(window, "onboardingNext"));
        compare(driver.views.onboarding.step, 4);
        compare(driver.stored("onboardingCompleted"), undefined);
        activate(control(window, "getStarted"), "mouse");
        compare(driver.stored("onboardingCompleted"), true);
    }

    function test_returnGoesOnFromTheHeadingToTheEnd() {
        const window = make();
        for (let step = 0; step < 5; ++step) {
            compare(driver.views.onboarding.step, step);
            tryVerify(() => control(window, "onboardingTitle").activeFocus);
            keyClick(step % 2 === 0 ? Qt.Key_Return : Qt.Key_Enter);
        }
        tryVerify(() => findChild(window, "homeArea") !== null);
        compare(driver.stored("onboardingCompleted"), true);
    }

    function test_aHeldReturnGoesOneStep() {
        const window = make();
        keyPress(Qt.Key_Return);
        for (let i = 0; i < 5; ++i)
            driver.repeatKey(window.Window.window, Qt.Key_Return);
        keyRelease(Qt.Key_Return);
        compare(driver.views.onboarding.step, 1);
    }

    function test_escapeLosesNothing() {
        const window = openAt(3);
        keyClick(Qt.Key_Escape);
        compare(driver.views.onboarding.step, 3);
        verify(findChild(window, "onboardingTitle") !== null);
        compare(driver.stored("onboardingCompleted"), undefined);
    }

    function test_theHeadingIsSpokenOnEachStep() {
        const window = make();
        const heading = control(window, "onboardingTitle");
        for (let step = 0; step < 5; ++step) {
            verify(heading.activeFocus);
            compare(driver.spoken(heading).role, Accessible.Heading);
            compare(driver.spoken(heading).name, driver.views.onboarding.page.title);
            press(control(window, step < 4 ? "onboardingNext" : "onboardingBack"));
        }
    }

    function test_tabReachesEveryControl() {
        driver.setPermissions("denied", false);
        const window = openAt(4);
        tryVerify(() => shows(window, "enable0") && shows(window, "enable1"));
        for (const name of ["enable0", "enable1", "onboardingBack", "getStarted"]) {
            keyClick(Qt.Key_Tab);
            verify(control(window, name).activeFocus, name);
            verify(control(window, name).height >= driver.views.theme.hitTarget);
        }
    }

    // Permissions

    function test_whoHasBothPermissionsSeesTwoGreenCardsAndNoEnable() {
        const window = openAt(4);
        for (const card of ["0", "1"]) {
            tryVerify(() => !shows(window, "enable" + card));
            const mark = control(window, "permissionMark" + card);
            verify(mark.visible);
            compare(mark.symbol, "checkmark.circle.fill");
            compare(mark.color, driver.views.theme.green);
            compare(control(window, "permissionSymbol" + card).color, driver.views.theme.green);
        }
        verify(!shown(window).includes("Enable"));
    }

    function test_whatIsMissingIsOrangeAndCanBeEnabled_data() {
        return ways();
    }

    function test_whatIsMissingIsOrangeAndCanBeEnabled(data) {
        driver.setPermissions("not determined", false);
        const window = openAt(4);
        for (const card of ["0", "1"]) {
            compare(control(window, "permissionSymbol" + card).color, driver.views.theme.orange);
            verify(!shows(window, "permissionMark" + card));
            compare(control(window, "enable" + card).text, "Enable");
        }
        compare(driver.spoken(control(window, "enable0")).name, "Enable Microphone");
        compare(driver.spoken(control(window, "enable1")).name, "Enable Screen Recording");
        activate(control(window, "enable1"), data.tag);
        tryVerify(() => driver.asked("settings.openPrivacyPane") === 1);
        activate(control(window, "enable0"), data.tag);
        tryVerify(() => driver.asked("permissions.requestMicrophoneAccess") === 1);
        tryVerify(() => !shows(window, "enable0"));
        verify(shows(window, "permissionMark0"));
        verify(shows(window, "enable1"));
        compare(driver.views.onboarding.step, 4);
    }

    function test_aMicrophoneThatDoesNotAnswerIsSaid() {
        driver.setPermissions("denied", true);
        driver.setMicrophoneAnswer(false);
        const window = openAt(4);
        verify(!shows(window, "permissionNotice0"));
        press(control(window, "enable0"));
        tryVerify(() => { driver.asked(""); return shows(window, "permissionNotice0"); });
        verify(shows(window, "enable0"));
        compare(driver.spoken(control(window, "permissionNotice0")).role, Accessible.Notification);
    }

    // Sizes

    function test_noTextIsCutOff_data() {
        const rows = [];
        for (const size of [{ tag: "standard", width: 680, height: 520 }, { tag: "smallest", width: 520, height: 400 },
                            { tag: "largest", width: 900, height: 700 }])
            for (let step = 0; step < 5; ++step)
                rows.push({ tag: size.tag + " " + step, width: size.width, height: size.height, step: step });
        return rows;
    }

    function test_noTextIsCutOff(data) {
        driver.setUser("sandra.weiss-oberhauser.von-und-zu-hohenstein@nordwind-logistics-holding-of-europe.example");
        driver.setPermissions("denied", false);
        driver.setFontScale(2);
        const window = openAt(data.step);
        window.width = data.width;
        window.height = data.height;
        draw(window);
        const area = control(window, "onboardingArea");
        for (const text of shownTextItems(area)) {
            verify(!text.truncated, text.text);
            verify(text.contentWidth <= text.width + 1, text.text);
            const left = text.mapToItem(area, 0, 0).x;
            verify(left >= 0 && left + text.width <= area.width, text.text);
        }
        const last = shows(window, "getStarted") ? "getStarted" : "onboardingNext";
        const button = control(window, last);
        const corner = button.mapToItem(window, button.width, button.height);
        verify(corner.x <= window.width && corner.y <= window.height);
        keyClick(Qt.Key_End);
        const texts = shownTextItems(area);
        const end = texts[texts.length - 1];
        tryVerify(() => end.mapToItem(area, 0, end.height).y <= area.height);
    }

    function test_aNewStepIsShownFromItsBeginning() {
        const window = openAt(2);
        window.width = 520;
        window.height = 400;
        draw(window);
        keyClick(Qt.Key_End);
        const heading = control(window, "onboardingTitle");
        const area = control(window, "onboardingArea");
        tryVerify(() => heading.mapToItem(area, 0, 0).y < 0);
        press(control(window, "onboardingNext"));
        tryVerify(() => heading.mapToItem(area, 0, 0).y >= 0);
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "ScenarioPickerScreen"
    width: 680
    height: 700

    Component {
        id: content

        ScenarioPickerScreen {
            width: 680
            height: 700
            picker: trainingDriver.picker
            theme: trainingDriver.theme
        }
    }

    function init() {
        trainingDriver.reset();
    }

    function open() {
        const screen = createTemporaryObject(content, testCase);
        verify(screen);
        screen.forceActiveFocus();
        draw(screen);
        return screen;
    }

    /// With the list there.
    function openLoaded() {
        const screen = open();
        tryVerify(() => !trainingDriver.picker.isLoading);
        return screen;
    }

    /// Also one that a list is still to make.
    function item(screen, name) {
        tryVerify(() => findChild(screen, name) !== null, 5000, name);
        return findChild(screen, name);
    }

    function test_whileLoadingThereIsTheSpinnerAlone() {
        trainingDriver.holdAnswers(true);
        const screen = open();
        compare(shownTexts(screen), ["Loading scenarios..."]);
        trainingDriver.holdAnswers(false);
        tryVerify(() => shows(screen, "trainArea"));
        verify(!shows(screen, "scenarioWait"));
    }

    function test_theSectionsStandInTheirOrder() {
        const screen = openLoaded();
        tryVerify(() => findChild(screen, "scenario2") !== null);
        compare(shownTexts(screen),
                ["Scenario", "Scenario 1", "Company 1 · Logistics", "Scenario 2", "Company 2 · Logistics", "Scenario 3",
                 "Company 3 · Logistics", "Buyer Personality", "Dominant", "Influential", "Steady", "Conscientious",
                 "Random", "Mode", "Question Game", "Start Training"]);
    }

    function test_anErrorStandsAboveTheSections() {
        trainingDriver.refuseWithAPage();
        const screen = openLoaded();
        tryVerify(() => shows(screen, "fetchErrorSection"));
        const texts = shownTexts(screen);
        verify(texts[0].startsWith("Failed to load: "), texts[0]);
        compare(texts.slice(1), ["Scenario", "Buyer Personality", "Dominant", "Influential", "Steady", "Conscientious",
                                 "Random", "Mode", "Question Game", "Start Training"]);
        compare(item(screen, "problemText").color, trainingDriver.theme.named["red"]);
        verify(!item(screen, "startTrain").enabled);
        compare(trainingDriver.requests(), 1);
    }

    function test_anEmptyListLeavesNothingToStart() {
        trainingDriver.setScenarios(0);
        const screen = openLoaded();
        tryVerify(() => shows(screen, "noScenarios"));
        verify(!shows(screen, "scenarioList"));
        verify(!item(screen, "startTrain").enabled);
        verify(!shows(screen, "fetchErrorSection"));
        press(item(screen, "startTrain"));
        compare(trainingDriver.started(), {});
    }

    function test_theSelectedScenarioIsMarked() {
        const screen = openLoaded();
        const first = item(screen, "scenario0");
        const second = item(screen, "scenario1");
        compare(findChild(first, "scenarioName").font.weight, Font.DemiBold);
        compare(findChild(first, "scenarioMark").opacity, 1);
        compare(findChild(first, "scenarioMark").color, trainingDriver.theme.cyan);
        compare(findChild(second, "scenarioName").font.weight, Font.Normal);
        compare(findChild(second, "scenarioMark").opacity, 0);
    }

    function test_aScenarioIsChosen_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "arrow" }, { tag: "accessibility" }];
    }

    function test_aScenarioIsChosen(data) {
        const screen = openLoaded();
        const second = item(screen, "scenario1");
        if (data.tag === "mouse") {
            press(second);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(second));
        } else if (data.tag === "arrow") {
            item(screen, "scenario0").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Down);
            verify(second.activeFocus);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Up);
        } else {
            second.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
        tryVerify(() => second.isSelected);
        verify(!item(screen, "scenario0").isSelected);
        compare(driver.spoken(second).role, Accessible.RadioButton);
        compare(driver.spoken(second).name, "Scenario 2");
        compare(driver.spoken(second).description, "Company 2 · Logistics");
        compare(driver.spoken(second).isChecked, true);
        compare(driver.spoken(item(screen, "scenario0")).isChecked, false);
    }

    function test_aPersonalityIsChosen_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "arrow" }, { tag: "accessibility" }];
    }

    function test_aPersonalityIsChosen(data) {
        const screen = openLoaded();
        const chip = item(screen, "personality3");
        const random = item(screen, "personality4");
        verify(random.isSelected);
        if (data.tag === "mouse") {
            press(chip);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(chip));
        } else if (data.tag === "arrow") {
            random.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            keyClick(Qt.Key_Left);
            verify(chip.activeFocus);
        } else {
            chip.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        }
        tryVerify(() => chip.isSelected);
        verify(!random.isSelected);
        compare(driver.spoken(chip).role, Accessible.RadioButton);
        compare(driver.spoken(chip).name, "Buyer Personality: Conscientious");
        compare(driver.spoken(chip).isChecked, true);
        const label = findChild(chip, "chipLabel");
        compare(label.font.weight, Font.Bold);
        fuzzyCompare(label.color.a, 0.7, 0.01);
        verify(Qt.colorEqual(Qt.alpha(label.color, 1), trainingDriver.theme.named["blue"]));
        const other = findChild(random, "chipLabel");
        compare(other.font.weight, Font.Normal);
        compare(other.color, trainingDriver.theme.gray);
        fuzzyCompare(findChild(random, "chip").color.a, 0.06, 0.01);
    }

    function test_chipsFlowOverLinesInANarrowWindow() {
        const screen = openLoaded();
        const first = item(screen, "personality0");
        const last = item(screen, "personality4");
        tryVerify(() => last.width > 0 && last.y === first.y);
        screen.width = 300;
        tryVerify(() => last.y > first.y);
        verify(last.height >= 28);
    }

    function test_theGameIsASwitchThatTellsItsRules_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_theGameIsASwitchThatTellsItsRules(data) {
        const screen = openLoaded();
        const game = item(screen, "gameSwitch");
        const rules = "Score points for open MEDDIC questions. Closed questions = penalty.";
        compare(driver.spoken(game).role, Accessible.CheckBox);
        compare(driver.spoken(game).name, "Question Game");
        compare(driver.spoken(game).isChecked, false);
        verify(!shownTexts(screen).includes(rules));
        if (data.tag === "mouse") {
            press(game);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(game));
        } else {
            game.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
        }
        tryVerify(() => shownTexts(screen).includes(rules));
        compare(driver.spoken(game).isChecked, true);
        const start = item(screen, "startTrain");
        compare(start.text, "Start Game");
        compare(start.symbol, "gamecontroller.fill");
        compare(start.color, trainingDriver.theme.named["orange"]);
    }

    function test_aTrainingStarts_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_aTrainingStarts(data) {
        const screen = openLoaded();
        const start = item(screen, "startTrain");
        tryVerify(() => start.enabled);
        compare(start.symbol, "play.fill");
        compare(start.color, trainingDriver.theme.named["cyan"]);
        if (data.tag === "mouse") {
            press(start);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(start));
        } else {
            start.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        }
        compare(trainingDriver.started(),
                { simMode: true, scenario: "scenario-1", discType: "unknown", gameMode: false });
    }

    function test_tabWalksThroughTheGroups() {
        const screen = openLoaded();
        item(screen, "scenario0");
        keyClick(Qt.Key_Tab);
        verify(item(screen, "scenario0").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(item(screen, "personality4").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(item(screen, "gameSwitch").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(item(screen, "startTrain").activeFocus);
        keyClick(Qt.Key_Backtab);
        keyClick(Qt.Key_Backtab);
        keyClick(Qt.Key_Backtab);
        verify(item(screen, "scenario0").activeFocus);
    }

    function test_aLongListMakesOnlyTheRowsThatShow() {
        trainingDriver.setScenarios(2000);
        const screen = openLoaded();
        tryVerify(() => findChild(screen, "scenario0") !== null);
        verify(findChild(screen, "scenario1999") === null);
        compare(item(screen, "scenarioList").count, 2000);
        verify(item(screen, "scenarioList").height <= 400);
    }

    function test_openingAgainFetchesAgain() {
        trainingDriver.refuseWithAPage();
        const first = openLoaded();
        tryVerify(() => shows(first, "fetchErrorSection"));
        first.visible = false;
        trainingDriver.setScenarios(1);
        const second = openLoaded();
        tryVerify(() => shows(second, "scenario0"));
        verify(!shows(second, "fetchErrorSection"));
        compare(trainingDriver.requests(), 2);
    }
}

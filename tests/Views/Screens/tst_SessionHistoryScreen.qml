import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "SessionHistoryScreen"
    width: 508
    height: 520

    Component {
        id: content

        Rectangle {
            width: 508
            height: 520
            color: historyDriver.theme.windowBackground

            SessionHistoryScreen {
                anchors.fill: parent
                history: historyDriver.history
                theme: historyDriver.theme
            }
        }
    }

    function init() {
        historyDriver.reset();
    }

    function open() {
        const screen = createTemporaryObject(content, testCase);
        draw(screen);
        historyDriver.quieten();
        return screen;
    }

    function row(screen, index) {
        const list = control(screen, "sessions");
        tryVerify(() => list.itemAtIndex(index) !== null);
        return list.itemAtIndex(index);
    }

    // Without records

    function test_withoutSessionsItSaysSoAndOffersTheServer() {
        const screen = open();
        tryVerify(() => control(screen, "emptyHeadline").visible);
        compare(shownTexts(screen), ["History", "No sessions yet",
                                "Start a call or training session to see history here.", "Sync from Server"]);
        verify(!control(screen, "sessions").visible, "no pickers either");
        compare(historyDriver.syncsAsked(), 1);
        press(control(screen, "syncFromServer"));
        compare(historyDriver.syncsAsked(), 2);
        verify(historyDriver.pressThroughAccessibility(control(screen, "syncFromServer")));
        compare(historyDriver.syncsAsked(), 3);
        control(screen, "syncFromServer").forceActiveFocus();
        keyClick(Qt.Key_Return);
        compare(historyDriver.syncsAsked(), 4);
    }

    function test_whileSyncingAnEmptyHistoryShowsThat() {
        historyDriver.holdSync();
        const screen = createTemporaryObject(content, testCase);
        tryCompare(control(screen, "busyText"), "text", "Syncing from server...");
        verify(control(screen, "busySign").visible);
        verify(!control(screen, "emptyHeadline").visible);
        historyDriver.releaseSync();
        tryVerify(() => control(screen, "emptyHeadline").visible);
    }

    // The list

    function test_rowsShowWhatASessionWas() {
        historyDriver.keep("Nordwind", 1, { score: 4, train: true });
        historyDriver.keep("Anruf GmbH", 2, { audience: "cold_call" });
        historyDriver.keep("", 25, { scenario: "price_push", score: 1 });
        const screen = open();
        compare(shownTexts(row(screen, 0)), ["4/6", "Nordwind", "TRAIN", "3m 12s", "12 turns"]);
        compare(shownTexts(row(screen, 1)), ["Anruf GmbH", "Cold Call", "3m 12s", "12 turns"]);
        verify(control(row(screen, 1), "symbol").visible);
        compare(shownTexts(row(screen, 2)), ["1/6", "price_push", "3m 12s", "12 turns"]);
        verify(Qt.colorEqual(control(row(screen, 2), "rowTitle").color, historyDriver.theme.cyan));
        verify(Qt.colorEqual(control(row(screen, 0), "score").color, historyDriver.theme.named["yellow"]));
        const days = shownTextItems(control(screen, "sessions")).filter(item => item.objectName === "day");
        days.sort((one, other) => one.mapToItem(screen, 0, 0).y - other.mapToItem(screen, 0, 0).y);
        compare(days.map(day => day.text), ["Today", "Yesterday"]);
    }

    function test_statisticsFollowTheFilters() {
        historyDriver.keep("Nordwind", 1, { score: 6 });
        historyDriver.keep("Alt", 50, { score: 0 });
        const screen = open();
        const list = control(screen, "sessions");
        compare(list.contentY, list.originY, "the filters are in view");
        compare(shownTexts(control(screen, "statCards")),
                ["2", "Sessions", "3.0/6", "Avg MEDDIC", "3m 12s", "Avg Duration",
                 "6m", "Total Time"]);
        compare(shownTexts(control(screen, "criterionRates")),
                ["M", "50%", "E", "50%", "D", "50%", "D", "50%", "I", "50%",
                 "C", "50%"]);
        const period = control(screen, "timeRange");
        press(control(period, "segment0"));
        tryCompare(control(screen, "sessions"), "count", 1);
        compare(control(control(screen, "statCard0"), "value").text, "1");
        compare(shownTexts(control(screen, "criterionRates"))[1], "100%");
        verify(Qt.colorEqual(control(control(screen, "criterionRate0"), "letter").color, historyDriver.theme.green));
    }

    function test_aFilterThatReplacesEveryRowLeavesTheListAtItsBeginning() {
        for (let i = 0; i < 30; ++i)
            historyDriver.keep("Company " + i, 30 - i, { train: i % 2 === 0 });
        const screen = open();
        const list = control(screen, "sessions");
        const period = control(screen, "filterMode");
        for (const [segment, title] of [[1, "Company 28"], [0, "Company 29"], [1, "Company 28"], [2, "Company 29"]]) {
            list.scrollBy(40);
            press(control(period, "segment" + segment));
            tryCompare(list, "count", segment === 2 ? 30 : 15);
            tryVerify(() => row(screen, 0) && control(row(screen, 0), "rowTitle").text === title);
            compare(list.contentY, list.originY, "the filters are in view");
            compare(list.currentIndex, -1);
            const first = row(screen, 0);
            verify(first.y > 0 && row(screen, 1).y === first.y + first.height + list.spacing);
        }
    }

    function test_aFilterWithoutMatchesKeepsThePickers() {
        historyDriver.keep("Nordwind", 1);
        const screen = open();
        press(control(control(screen, "filterMode"), "segment1"));
        tryVerify(() => shownTexts(screen).includes("No train sessions yet"));
        verify(!control(screen, "statCards").visible);
        verify(!control(screen, "criterionRates").visible);
        verify(control(screen, "filterMode").visible && control(screen, "timeRange").visible);
        compare(control(screen, "sessions").count, 0);
    }

    function test_pickersAreChosenByKeysAndSayWhatTheyAre() {
        historyDriver.keep("Nordwind", 1);
        const screen = open();
        const picker = control(screen, "filterMode");
        const all = control(picker, "segment2");
        compare(historyDriver.spoken(all).name, "Type: All");
        verify(historyDriver.spoken(all).isChecked);
        all.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Left);
        compare(historyDriver.history.filterModeIndex, 1);
        verify(control(picker, "segment1").activeFocus);
        keyClick(Qt.Key_Left);
        keyClick(Qt.Key_Left);
        compare(historyDriver.history.filterModeIndex, 0);
        keyClick(Qt.Key_Tab);
        verify(control(control(screen, "timeRange"), "segment3").activeFocus, "one stop for each picker");
        verify(historyDriver.pressThroughAccessibility(control(picker, "segment1")));
        compare(historyDriver.history.filterModeIndex, 1);
    }

    function test_aRowOpensByMouseKeysAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_aRowOpensByMouseKeysAndAccessibility(data) {
        historyDriver.keep("Nordwind", 1);
        historyDriver.keep("Zweite", 2);
        const screen = open();
        const list = control(screen, "sessions");
        row(screen, 1);
        verify(list.activeFocus);
        if (data.tag === "mouse") {
            list.positionViewAtEnd();
            press(row(screen, 1));
        } else if (data.tag === "accessibility") {
            verify(historyDriver.pressThroughAccessibility(row(screen, 1)));
        } else {
            keyClick(Qt.Key_Down);
            keyClick(data.tag === "return" ? Qt.Key_Return : Qt.Key_Space);
        }
        tryVerify(() => findChild(screen, "company") !== null);
        compare(control(screen, "company").text, "Zweite");
        verify(!list.visible);
        tryVerify(() => control(screen, "back").activeFocus);
        keyClick(Qt.Key_Escape);
        tryVerify(() => list.visible);
        tryVerify(() => list.activeFocus);
        compare(list.currentIndex, 1, "the keyboard is where it was");
    }

    function test_afterACallItsSummaryOpens() {
        historyDriver.keep("Alt", 1);
        const screen = open();
        historyDriver.endCall("Nordwind");
        tryVerify(() => findChild(screen, "company") !== null);
        compare(control(screen, "company").text, "Nordwind");
        verify(control(screen, "done").visible);
        press(control(screen, "done"));
        tryVerify(() => control(screen, "sessions").visible);
        compare(control(screen, "sessions").count, 2);
    }

    function test_anOpenRecordGoesWithTheScreen() {
        historyDriver.keep("Nordwind", 1);
        const screen = open();
        historyDriver.history.open(0);
        tryVerify(() => findChild(screen, "company") !== null);
        screen.destroy();
        tryVerify(() => historyDriver.history.detail === null);
        const again = open();
        tryVerify(() => control(again, "sessions").visible);
    }

    function test_aHundredThousandSessionsHaveAsManyRowsAsFit() {
        historyDriver.keepMany(100000);
        const screen = open();
        const list = control(screen, "sessions");
        compare(list.count, 100000);
        verify(list.contentItem.children.length < 60, list.contentItem.children.length);
        list.forceActiveFocus();
        keyClick(Qt.Key_End);
        tryCompare(list, "currentIndex", 99999);
        compare(control(row(screen, 99999), "rowTitle").text, "Company 99999");
        verify(list.contentItem.children.length < 120, list.contentItem.children.length);
        keyClick(Qt.Key_Home);
        tryVerify(() => control(screen, "filterMode").mapToItem(list, 0, 0).y >= 0, 5000, "the filters are in view again");
    }

    function test_everyTextFitsInTheSmallestWindow_data() {
        return [{ tag: "dark" }, { tag: "light" }];
    }

    function test_everyTextFitsInTheSmallestWindow(data) {
        historyDriver.setDark(data.tag === "dark");
        historyDriver.keep("Nordwind", 1, { score: 4, train: true, audience: "discovery" });
        const screen = open();
        screen.width = 347;
        screen.height = 400;
        draw(screen);
        for (const text of shownTextItems(screen)) {
            verify(!text.truncated, text.text);
            const left = text.mapToItem(screen, 0, 0).x;
            verify(left >= 0 && left + text.width <= screen.width, text.text);
        }
        for (const name of ["filterMode", "timeRange"])
            verify(control(control(screen, name), "segment0").height >= 28);
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "MemoryScreen"
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
        driver.reset();
    }

    /// The window with the note open.
    function open() {
        const window = createTemporaryObject(content, testCase);
        driver.views.dashboard.selectTab("memory");
        tryVerify(() => findChild(window, "memoryText") !== null);
        draw(window);
        return window;
    }

    // Ways in

    function test_theTabOpensIt_data() {
        return [{ tag: "mouse" }, { tag: "key" }, { tag: "accessibility" }, { tag: "request" }];
    }

    function test_theTabOpensIt(data) {
        const window = createTemporaryObject(content, testCase);
        draw(window);
        const tab = control(window, "tab-memory");
        compare(driver.spoken(tab).name, "Memory");
        compare(tab.symbol, "brain");
        if (data.tag === "mouse") {
            press(tab);
        } else if (data.tag === "key") {
            tab.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(tab));
        } else {
            driver.requestTab("memory");
        }
        tryVerify(() => findChild(window, "memoryText") !== null);
        verify(tab.isSelected);
    }

    // What is shown

    function test_theThreeSectionsStandInTheirOrder() {
        const window = open();
        compare(shownTexts(control(window, "memoryArea")),
                ["Your Context",
                 "Personal notes sent with every coaching session. E.g., your territory, product focus, selling style.",
                 "0/2000", "Save", "File", "~/.config/corvellan/memory.md"]);
        verify(control(window, "memoryEditor").height >= 200);
        verify(control(window, "saveMemory").enabled);
        compare(control(window, "saveMemory").symbol, "checkmark.circle");
        verify(!control(window, "memorySaved").visible);
        compare(driver.spoken(control(window, "memoryTitle")).role, Accessible.Heading);
    }

    function test_theFilesTextStandsInTheEditorAndIsSavedAgain() {
        driver.setNoteFile("Territory: north");
        const window = open();
        compare(control(window, "memoryText").text, "Territory: north");
        driver.passTime(500);
        verify(control(window, "memorySaved").visible);
        compare(driver.noteFile(), "Territory: north");
        driver.passTime(2000);
        verify(!control(window, "memorySaved").visible);
    }

    function test_lineEndsThatTheEditorShowsOtherwiseStayAsTheyAre() {
        driver.setNoteFile("North\r\nSouth\u00a0East");
        const window = open();
        compare(control(window, "memoryText").text.split("\n").length, 2);
        driver.passTime(500);
        compare(driver.noteFile(), "North\r\nSouth\u00a0East");
    }

    function test_aFileThatCanNotBeShownIsToldAndKeptUntilSaveIsPressed() {
        const tooLong = "a".repeat(1024 * 1024 + 1);
        driver.setNoteFile(tooLong);
        const window = open();
        const notice = control(window, "memoryNotice");
        verify(notice.visible);
        compare(driver.spoken(notice).role, Accessible.Notification);
        control(window, "memoryText").forceActiveFocus(Qt.TabFocusReason);
        type("north");
        driver.passTime(1000);
        verify(driver.noteFile() === tooLong);
        press(control(window, "saveMemory"));
        compare(driver.noteFile(), "north");
        tryVerify(() => !notice.visible);
    }

    function test_aFileThatCanNoLongerBeShownLeavesNothingOfItBehind() {
        driver.setNoteFile("Territory: north");
        const window = open();
        compare(control(window, "memoryText").text, "Territory: north");
        driver.passTime(5000);
        driver.views.dashboard.selectTab("settings");
        tryVerify(() => findChild(window, "memoryText") === null);
        const tooLong = "a".repeat(1024 * 1024 + 1);
        driver.setNoteFile(tooLong);
        driver.views.dashboard.selectTab("memory");
        tryVerify(() => findChild(window, "memoryText") !== null);
        verify(control(window, "memoryNotice").visible);
        compare(control(window, "memoryText").text, "");
        compare(control(window, "memoryCounter").text, "0/2000");
        driver.passTime(5000);
        verify(driver.noteFile() === tooLong);
    }

    function test_escapeLeavesTheTextAndKeepsIt() {
        const window = open();
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        type("north");
        keyClick(Qt.Key_Escape);
        verify(!text.activeFocus);
        compare(text.text, "north");
        driver.passTime(500);
        compare(driver.noteFile(), "north");
        keyClick("x");
        compare(text.text, "north");
    }

    function test_theCounterTurnsOrangeAfter1800() {
        driver.setNoteFile("a".repeat(1800));
        const window = open();
        const counter = control(window, "memoryCounter");
        compare(counter.text, "1800/2000");
        compare(counter.color, driver.views.theme.gray);
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        text.cursorPosition = text.length;
        keyClick("b");
        compare(counter.text, "1801/2000");
        compare(counter.color, driver.views.theme.orange);
        compare(driver.spoken(counter).name, "1801 of 2000 characters");
    }

    // Editing

    function test_typedTextIsWrittenHalfASecondLater() {
        const window = open();
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        keyClick("h");
        driver.passTime(499);
        keyClick("i");
        driver.passTime(499);
        compare(driver.noteFile(), undefined);
        driver.passTime(1);
        compare(driver.noteFile(), "hi");
        verify(control(window, "memorySaved").visible);
        compare(control(window, "memorySaved").color, driver.views.theme.green);
    }

    function test_whatIsPastedBeyondTheLimitIsCutAndTheCursorStays() {
        const window = open();
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        text.insert(0, "a".repeat(2500));
        compare(text.length, 2000);
        compare(text.cursorPosition, 2000);
        compare(control(window, "memoryCounter").text, "2000/2000");
        compare(control(window, "memoryCounter").color, driver.views.theme.orange);

        text.cursorPosition = 10;
        keyClick("z");
        compare(text.length, 2000);
        compare(text.cursorPosition, 11);
        compare(text.text[10], "z");
        driver.passTime(500);
        compare(driver.noteFile(), text.text);

        // Whatever is taken back, the view state knows what shows.
        keyClick(Qt.Key_Z, Qt.ControlModifier);
        compare(driver.views.memory.memory, text.text);
        verify(text.length <= 2000);
    }

    function test_aFamilyIsOneCharacter() {
        const family = "\u{1F468}\u200D\u{1F469}\u200D\u{1F467}\u200D\u{1F466}";
        const window = open();
        const text = control(window, "memoryText");
        text.insert(0, family.repeat(2001));
        compare(control(window, "memoryCounter").text, "2000/2000");
        compare(text.text, family.repeat(2000));
    }

    function test_saveWritesAtOnceAndRests_data() {
        return [{ tag: "mouse" }, { tag: "return" }, { tag: "space" }, { tag: "accessibility" }];
    }

    function test_saveWritesAtOnceAndRests(data) {
        const window = open();
        control(window, "memoryText").insert(0, "North");
        const save = control(window, "saveMemory");
        compare(driver.spoken(save).role, Accessible.Button);
        compare(driver.spoken(save).name, "Save");
        if (data.tag === "mouse") {
            press(save);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(save));
        } else {
            save.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
        compare(driver.noteFile(), "North");
        verify(!save.enabled);
        verify(control(window, "memorySaved").visible);
        compare(control(window, "memorySaved").text, "Saved");
        driver.passTime(2000);
        driver.passTime(2000);
        verify(save.enabled);
        verify(!control(window, "memorySaved").visible);
    }

    function test_thePathIsSelectedAndCopied() {
        const window = open();
        const path = findChild(control(window, "memoryFile"), "selectable");
        compare(driver.spoken(path).name, "File");
        press(path);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(path.selectedText, "~/.config/corvellan/memory.md");
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(driver.clipboard(), "~/.config/corvellan/memory.md");
        keyClick("x");
        compare(path.text, "~/.config/corvellan/memory.md");
    }

    function test_anEditSurvivesAQuickLookElsewhere() {
        const window = open();
        control(window, "memoryText").insert(0, "North");
        driver.views.dashboard.selectTab("settings");
        tryVerify(() => !isSeen(window, "memoryText"));
        driver.views.dashboard.selectTab("memory");
        tryVerify(() => isSeen(window, "memoryText"));
        compare(control(window, "memoryText").text, "North");
    }

    // Keyboard, sizes, looks

    function test_tabWalksThroughIt() {
        const window = open();
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        verify(control(window, "saveMemory").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(control(window, "memoryFile"), "selectable").activeFocus);
        keyClick(Qt.Key_Backtab);
        keyClick(Qt.Key_Backtab);
        verify(text.activeFocus);
        compare(text.text, "");
        compare(driver.spoken(text).name, "Your Context");
        compare(driver.spoken(text).role, Accessible.EditableText);
    }

    function test_nothingIsCutOff_data() {
        return [{ tag: "standard", width: 680, height: 520 }, { tag: "smallest", width: 520, height: 400 },
                { tag: "largest", width: 900, height: 700 }];
    }

    function test_nothingIsCutOff(data) {
        driver.setNoteFile("North ".repeat(400));
        driver.setFontScale(2);
        const window = open();
        window.width = data.width;
        window.height = data.height;
        draw(window);
        const area = control(window, "memoryArea");
        for (const name of ["memoryTitle", "memoryExplanation", "memoryCounter"]) {
            const item = control(window, name);
            verify(!item.truncated, name);
            verify(item.contentWidth <= item.width + 1, name);
            const left = item.mapToItem(area, 0, 0).x;
            verify(left >= 0 && left + item.width <= area.width, name);
        }
        verify(control(window, "memoryEditor").height >= 200);
        for (const item of [control(window, "saveMemory"), findChild(control(window, "memoryFile"), "selectable")]) {
            item.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => {
                const top = item.mapToItem(area, 0, 0).y;
                return top >= 0 && top + item.height <= area.height;
            });
        }
    }

    function test_theLastLineIsSeenWhileItIsWritten() {
        driver.setNoteFile("line\n".repeat(100));
        const window = open();
        const text = control(window, "memoryText");
        text.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_End, Qt.ControlModifier);
        keyClick("x");
        const editor = control(window, "memoryEditor");
        tryVerify(() => {
            const cursor = text.mapToItem(editor, 0, text.cursorRectangle.y);
            return cursor.y >= 0 && cursor.y + text.cursorRectangle.height <= editor.height;
        });
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "HandoffWindowScreen"
    width: 520
    height: 600

    Component {
        id: handoffScreen

        HandoffWindowScreen {
            width: 520
            height: 600
            handoff: handoffDriver.view
            theme: handoffDriver.theme
        }
    }

    function make() {
        const screen = createTemporaryObject(handoffScreen, testCase);
        verify(screen);
        draw(screen);
        return screen;
    }

    function init() {
        driver.reset();
    }

    function test_theHeaderHasItsTitleAndButtonsInOrder() {
        handoffDriver.setWhole("## Note");
        const screen = make();
        compare(findChild(screen, "title").text, "AE Handoff");
        verify(Qt.colorEqual(findChild(screen, "title").color, handoffDriver.theme.orange));
        let last = findChild(screen, "title").x;
        for (const name of ["hubSpot", "copy", "close"]) {
            const button = findChild(screen, name);
            verify(button.visible, name);
            verify(button.x > last, name);
            last = button.x;
        }
        compare(findChild(screen, "hubSpot").text, "HubSpot");
        compare(findChild(screen, "hubSpot").symbol, "link");
        compare(findChild(screen, "copy").text, "Copy");
        compare(findChild(screen, "copy").symbol, "doc.on.doc");
        compare(findChild(screen, "close").symbol, "xmark.circle.fill");
    }

    function test_theStatisticsStandBelow() {
        handoffDriver.setWhole("## Note");
        const screen = make();
        verify(findChild(screen, "statistics").visible);
        compare(findChild(screen, "statistic0").text, "12 devices");
        compare(findChild(screen, "statistic0").symbol, "server.rack");
        compare(findChild(screen, "statistic1").text, "3 calls");
        compare(findChild(screen, "statistic2").text, "1 emails");
        verify(!findChild(screen, "statistic3"));
    }

    function test_whatIsAbsentIsNotShown() {
        handoffDriver.setUnclosable("note");
        const screen = make();
        verify(!findChild(screen, "hubSpot").visible);
        verify(!findChild(screen, "statistics").visible);
        verify(!findChild(screen, "close").visible);
        verify(!findChild(screen, "notice").visible);
        verify(findChild(screen, "copy").visible);
    }

    function test_theNoteFillsTheRest() {
        handoffDriver.setWhole("## Note\n\ntext");
        const screen = make();
        const note = findChild(screen, "note");
        compare(note.width, 520);
        compare(note.mapToItem(screen, 0, note.height).y, 600);
        compare(findChild(screen, "page").plainText, "Note\ntext");
        verify(findChild(screen, "page").activeFocus);
    }

    function test_theSurfaceIsDark() {
        handoffDriver.setNote("x");
        verify(make().color.hslLightness < 0.2);
    }

    function test_theButtonsDoWhatTheySay() {
        handoffDriver.setWhole("## A & B");
        const screen = make();
        press(findChild(screen, "hubSpot"));
        compare(handoffDriver.opened(), ["https://crm.example/contacts/42/company/77"]);
        press(findChild(screen, "copy"));
        compare(driver.clipboard(), "## A & B");
        press(findChild(screen, "close"));
        compare(handoffDriver.closings(), 1);
    }

    function test_theButtonsAreThereForKeysAndScreenReaders() {
        handoffDriver.setWhole("x");
        const screen = make();
        for (const name of ["hubSpot", "copy", "close"]) {
            const button = findChild(screen, name);
            button.forceActiveFocus(Qt.TabFocusReason);
            verify(button.activeFocus, name);
            compare(driver.spoken(button).role, Accessible.Button);
        }
        compare(driver.spoken(findChild(screen, "close")).name, "Close");
        keyClick(Qt.Key_Return);
        compare(handoffDriver.closings(), 1);
        verify(driver.pressThroughAccessibility(findChild(screen, "copy")));
    }

    function test_keysCloseTheWindow_data() {
        return [
            { tag: "Escape", key: Qt.Key_Escape, modifiers: Qt.NoModifier },
            { tag: "Ctrl+W", key: Qt.Key_W, modifiers: Qt.ControlModifier },
        ];
    }

    function test_keysCloseTheWindow(data) {
        handoffDriver.setNote("x");
        make();
        keyClick(data.key, data.modifiers);
        compare(handoffDriver.closings(), 1);
    }

    function test_keysZoomTheNote() {
        handoffDriver.setNote("text");
        const note = findChild(make(), "note");
        compare(note.zoom, 1);
        keyClick(Qt.Key_Plus, Qt.ControlModifier);
        verify(note.zoom > 1);
        keyClick(Qt.Key_0, Qt.ControlModifier);
        compare(note.zoom, 1);
        keyClick(Qt.Key_Minus, Qt.ControlModifier);
        verify(note.zoom < 1);
        for (let i = 0; i < 20; ++i)
            keyClick(Qt.Key_Minus, Qt.ControlModifier);
        compare(note.zoom, 0.5);
        for (let i = 0; i < 40; ++i)
            keyClick(Qt.Key_Plus, Qt.ControlModifier);
        compare(note.zoom, 3);
    }

    function test_theSelectionIsCopiedWhereverTheKeyboardIs() {
        handoffDriver.setNote("some text");
        const screen = make();
        keyClick(Qt.Key_A, Qt.ControlModifier);
        findChild(screen, "close").forceActiveFocus();
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(driver.clipboard().trim(), "some text");
    }

    function test_linksOpenOutside() {
        handoffDriver.setNote("jo@mail.example");
        const screen = make();
        press(findChild(screen, "link0"));
        compare(handoffDriver.opened(), ["mailto:jo@mail.example"]);
    }

    function test_whatCouldNotBeOpenedIsSaid() {
        handoffDriver.setNote("jo@mail.example");
        handoffDriver.refuseToOpen("No program here takes mail addresses.");
        const screen = make();
        press(findChild(screen, "link0"));
        handoffDriver.opened();
        verify(findChild(screen, "notice").visible);
        compare(findChild(screen, "notice").text, "No program here takes mail addresses.");
    }

    function test_aNoteOfMarkupShowsItAsText() {
        handoffDriver.setNote("<script>alert(1)</script><img src=\"file:///etc/passwd\">");
        compare(findChild(make(), "page").plainText,
                "<script>alert(1)</script><img src=\"file:///etc/passwd\">");
    }

    function test_aNoteThatIsNotShownWholeSaysSo() {
        handoffDriver.setNote("line\n".repeat(3000));
        const screen = make();
        verify(findChild(screen, "cutNotice").visible);
        press(findChild(screen, "copy"));
        compare(driver.clipboard().length, 15000);
    }
}

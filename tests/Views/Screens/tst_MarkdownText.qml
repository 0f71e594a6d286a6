import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "MarkdownText"
    width: 500
    height: 600

    Component {
        id: markdownText

        MarkdownText {
            width: 500
            height: implicitHeight
            theme: driver.views.theme
        }
    }

    SignalSpy {
        id: links

        signalName: "linkActivated"
    }

    function init() {
        driver.reset();
    }

    function make(text) {
        const item = createTemporaryObject(markdownText, testCase, { text: text });
        verify(item);
        draw(item);
        links.target = item;
        links.clear();
        return item;
    }

    function test_itIsNeverLowerThanItsLeastHeight() {
        compare(make("x").height, 100);
        compare(make("").height, 100);
    }

    function test_itIsAsHighAsItsNote() {
        const item = make("line\n\n".repeat(20));
        verify(item.height > 300);
        verify(!findChild(item, "scrollBar").visible);
    }

    function test_aLongNoteScrollsInside() {
        const item = make("line\n\n".repeat(500));
        compare(item.height, 2000);
        verify(findChild(item, "scrollBar").visible);
        verify(!findChild(item, "cutNotice").visible);
    }

    function test_aNoteThatIsNotShownWholeSaysSo() {
        const item = make("line\n".repeat(2500));
        verify(findChild(item, "cutNotice").visible);
        compare(driver.spoken(findChild(item, "cutNotice")).name,
                "The note goes on: it is too long to be shown whole. \"Copy\" copies all of it.");
    }

    function test_theFontHasNoEffect() {
        const item = make("text");
        const before = findChild(item, "page").contentHeight;
        item.font = Qt.font({ pixelSize: 40 });
        compare(findChild(item, "page").contentHeight, before);
    }

    function test_screenReadersHaveTheTextAndTheLinks() {
        const item = make("## Head\nask jo@mail.example");
        const page = driver.spoken(findChild(item, "page"));
        verify(page.name.includes("Head"));
        verify(page.name.includes("ask jo@mail.example"));
        compare(page.role, Accessible.Document);
        const link = driver.spoken(findChild(item, "link0"));
        compare(link.name, "jo@mail.example");
        compare(link.role, Accessible.Link);
        verify(driver.pressThroughAccessibility(findChild(item, "link0")));
        compare(links.count, 1);
        compare(links.signalArguments[0][0], "mailto:jo@mail.example");
    }

    function test_linksAreReachedAndPressedByKeys() {
        const item = make("jo@mail.example, +49 30 123456");
        findChild(item, "page").forceActiveFocus();
        keyClick(Qt.Key_Tab);
        verify(findChild(item, "link0").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(item, "link1").activeFocus);
        keyClick(Qt.Key_Return);
        compare(links.count, 1);
        compare(links.signalArguments[0][0], "tel:+49 30 123456");
    }

    function test_theRingShowsThatTheTabKeyLedHere() {
        const item = make("text");
        const page = findChild(item, "page");
        page.forceActiveFocus(Qt.TabFocusReason);
        verify(findChild(item, "focusRing").visible);
        press(item);
        testCase.forceActiveFocus();
        verify(!findChild(item, "focusRing").visible);
        press(page);
        verify(page.activeFocus);
        verify(!findChild(item, "focusRing").visible);
    }

    function test_aLinkIsPressedByMouse() {
        const item = make("jo@mail.example");
        const link = findChild(item, "link0");
        press(link);
        compare(links.count, 1);
    }

    function test_aLinkOutOfSightIsBroughtIntoView() {
        const item = make("line\n\n".repeat(300) + "jo@mail.example");
        const page = findChild(item, "page");
        compare(page.contentY, 0);
        findChild(item, "link0").forceActiveFocus();
        verify(page.contentY > 0);
        verify(findChild(item, "link0").y < page.height);
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "GuideScreen"
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

    /// The window with the guide open.
    function open() {
        const window = createTemporaryObject(content, testCase);
        driver.views.dashboard.selectTab("guide");
        tryVerify(() => findChild(window, "guideArea") !== null);
        draw(window);
        return window;
    }

    function test_theTabOpensIt_data() {
        return [{ tag: "mouse" }, { tag: "key" }, { tag: "accessibility" }, { tag: "request" }];
    }

    function test_theTabOpensIt(data) {
        const window = createTemporaryObject(content, testCase);
        draw(window);
        const tab = control(window, "tab-guide");
        compare(driver.spoken(tab).name, "Guide");
        compare(tab.symbol, "book");
        if (data.tag === "mouse") {
            press(tab);
        } else if (data.tag === "key") {
            tab.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(tab));
        } else {
            driver.requestTab("guide");
        }
        tryVerify(() => findChild(window, "guideArea") !== null);
        verify(tab.isSelected);
    }

    function test_everythingOfTheModelShowsInItsOrder() {
        const window = open();
        const wanted = [driver.views.guide.title, driver.views.guide.subtitle];
        for (const section of driver.views.guide.sections) {
            wanted.push(section.title, section.text);
            for (const row of section.rows) {
                if (row.letter.length > 0)
                    wanted.push(row.letter);
                wanted.push(row.name, row.text);
            }
            if (section.note.text !== undefined)
                wanted.push(section.note.text);
        }
        wanted.push(driver.views.stealth.statusText);
        compare(shownTexts(control(window, "guideArea")), wanted);
        compare(wanted.length, 2 + 14 + 10 * 3 + 12 * 2 + 2 + 4 * 3 + 1);
    }

    function test_colours() {
        const window = open();
        const theme = driver.views.theme;
        const row = findChild(control(window, "guideSection1"), "row3");
        compare(findChild(row, "mark").color, theme.named["yellow"]);
        compare(findChild(findChild(control(window, "guideSection2"), "row0"), "mark").color, theme.named["red"]);
        const stage = findChild(findChild(control(window, "guideSection3"), "row0"), "symbol");
        compare(stage.symbol, "chevron.right.circle.fill");
        compare(stage.color, theme.cyan);
        const note = control(window, "guideNote5");
        compare(note.symbol, "lightbulb.fill");
        compare(note.color, Qt.alpha(theme.orange, 0.1));
        verify(!control(window, "guideNote6").visible);
    }

    function test_headingsAndRowsAreSpoken() {
        const window = open();
        compare(driver.spoken(control(window, "guideTitle")).role, Accessible.Heading);
        for (let i = 0; i < 7; ++i) {
            const section = driver.views.guide.sections[i];
            const heading = shownTextItems(control(window, "guideSection" + i))[0];
            compare(heading.text, section.title);
            compare(driver.spoken(heading).role, Accessible.Heading);
            compare(driver.spoken(heading).name, section.title);
        }
        compare(driver.spoken(findChild(control(window, "guideSection0"), "row0")).name,
                "1, Start a call: Search for the company, hit Call. Bram connects to your mic and system audio.");
        compare(driver.spoken(findChild(control(window, "guideSection3"), "row5")).name,
                "Closing: Summarize agreements. Set next steps with specific dates.");
    }

    function test_whatHoldsOfHidingOnThisDesktopIsSaid() {
        driver.setHidingOffer("doesNotHide", "This desktop shows every window to whoever watches the screen.");
        const window = open();
        const note = control(window, "guideHiding");
        compare(note.text, driver.views.stealth.statusText);
        compare(note.symbol, "exclamationmark.triangle.fill");
        compare(note.colorName, "orange");
        verify(note.text.length > 0);
        driver.setHidingOffer("hides", "");
        tryCompare(note, "symbol", "info.circle");
    }

    function test_keysScroll() {
        const window = open();
        const area = control(window, "guideArea");
        const title = control(window, "guideTitle");
        // Without a look at where the keyboard is, and from the page itself.
        keyClick(Qt.Key_PageDown);
        verify(title.mapToItem(area, 0, 0).y < 0);
        keyClick(Qt.Key_Tab);
        tryVerify(() => area.activeFocus);
        keyClick(Qt.Key_End);
        verify(title.mapToItem(area, 0, 0).y < 0);
        const last = control(window, "guideHiding");
        verify(last.mapToItem(area, 0, last.height).y <= area.height);
        keyClick(Qt.Key_Home);
        verify(title.mapToItem(area, 0, 0).y > 0);
        keyClick(Qt.Key_PageDown);
        verify(title.mapToItem(area, 0, 0).y < 0);
    }

    function test_noTextIsCutOff_data() {
        return [{ tag: "standard", width: 680, height: 520 }, { tag: "smallest", width: 520, height: 400 },
                { tag: "largest", width: 900, height: 700 }];
    }

    function test_noTextIsCutOff(data) {
        driver.setFontScale(2);
        const window = open();
        window.width = data.width;
        window.height = data.height;
        draw(window);
        const area = control(window, "guideArea");
        const texts = shownTextItems(area);
        verify(texts.length > 80);
        for (const text of texts) {
            verify(!text.truncated, text.text);
            verify(text.contentWidth <= text.width + 1, text.text);
            const left = text.mapToItem(area, 0, 0).x;
            verify(left >= 0 && left + text.width <= area.width, text.text);
        }
    }
}

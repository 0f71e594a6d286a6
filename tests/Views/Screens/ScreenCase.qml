import QtQuick
import QtTest

/// Tests of a screen in a window: what is shown, and what a press does.
TestCase {
    id: screenCase

    when: windowShown
    visible: true

    /// The control of that name; the test fails without it.
    function control(parent, name) {
        const found = findChild(parent, name);
        verify(found !== null, name);
        return found;
    }

    function shows(parent, name) {
        const found = findChild(parent, name);
        return found !== null && found.visible;
    }

    /// Within the window: beside it wait the screens of the tabs that are not open.
    function isSeen(window, name) {
        const found = findChild(window, name);
        return found !== null && found.visible && found.mapToItem(window, 0, 0).x < window.width;
    }

    /// All items that show a text, from top to bottom; icons are none.
    function shownTextItems(item) {
        let shown = [];
        if (!item.visible)
            return shown;
        if (item.text !== undefined && item.font !== undefined && item.contentItem === undefined
                && item.text.length > 0 && item.font.family !== driver.views.theme.iconFamily)
            shown.push(item);
        for (let i = 0; i < item.children.length; ++i)
            shown = shown.concat(shownTextItems(item.children[i]));
        return shown;
    }

    function shownTexts(item) {
        return shownTextItems(item).map(text => text.text);
    }

    /// One frame more, also where nothing has changed since the last. False when none came.
    function draw(item) {
        driver.askForFrame(item);
        return waitForRendering(item);
    }

    /// By mouse, once layout and animations leave it where it is. On a busy machine they may be far behind.
    function press(item) {
        let last = {};
        tryVerify(() => {
            const before = last;
            last = driver.placeAfterLayout(item);
            return last.x === before.x && last.y === before.y && last.height === before.height && last.height > 0;
        });
        mouseClick(item);
    }

    function type(text) {
        for (const letter of text)
            keyClick(letter);
    }
}

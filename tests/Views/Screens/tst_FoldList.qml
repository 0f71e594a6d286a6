import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "FoldList"
    width: 400
    height: 500

    property int rowsMade: 0

    ListModel {
        id: rows
    }

    Component {
        id: content

        FoldList {
            id: list

            width: 300
            height: implicitHeight
            theme: driver.views.theme
            model: rows
            Accessible.name: "Rows"

            delegate: Item {
                width: list.width
                implicitHeight: 24
                Component.onCompleted: ++testCase.rowsMade
            }
        }
    }

    function init() {
        driver.reset();
        rowsMade = 0;
        failOnWarning(/.?/);
        fill(400);
    }

    function fill(count) {
        rows.clear();
        for (let i = 0; i < count; ++i)
            rows.append({ number: i });
    }

    /// The list, with all its rows in their places.
    function open() {
        const list = createTemporaryObject(content, testCase);
        tryVerify(() => list.height === list.greatestHeight);
        draw(list);
        return list;
    }

    // What Qt warns of here, nobody who uses the program can help.

    function test_itIsSilentWhateverBecomesOfItsRows_data() {
        return [{ tag: "folded while it opens", shown: 0, left: 400 },
                { tag: "emptied", shown: 1, left: 0 },
                { tag: "shortened", shown: 1, left: 3 },
                { tag: "shortened at its end", shown: 2, left: 3 },
                { tag: "shortened in view", shown: 2, left: 3, isInView: true },
                { tag: "gone", shown: 2, left: 400 }];
    }

    function test_itIsSilentWhateverBecomesOfItsRows(data) {
        const list = data.shown === 0 ? createTemporaryObject(content, testCase) : open();
        if (data.shown === 2) {
            list.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_End);
        } else if (data.shown === 1) {
            list.scrollBy(60);
        }
        while (rows.count > data.left)
            rows.remove(rows.count - 1);
        if (data.isInView)
            draw(list);
        list.visible = false;
        wait(0);
        list.visible = true;
        wait(0);
        compare(list.count, data.left);
        list.destroy();
        wait(0);
    }

    function test_itMakesNoRowBeyondItsEdge() {
        const list = open();
        const inView = Math.ceil((list.height + list.spacing) / (24 + list.spacing));
        verify(rowsMade <= inView + 1, rowsMade);
        // Nor a little later.
        for (let i = 0; i < 5; ++i)
            wait(0);
        verify(rowsMade <= inView + 1, rowsMade);
    }
}

import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "Main"
    width: 680
    height: 520

    Component {
        id: mainContent

        Main {
            width: 680
            height: 520
            views: driver.views
        }
    }

    Component {
        id: moverItem

        WindowMover {
            width: 200
            height: 200
        }
    }

    SignalSpy {
        id: moves

        signalName: "moveRequested"
    }

    function init() {
        driver.reset();
    }

    function make() {
        const screen = createTemporaryObject(mainContent, testCase);
        verify(screen);
        draw(screen);
        return screen;
    }

    function test_theFaceFollowsTheSession() {
        const screen = make();
        verify(findChild(screen, "homeArea"));
        driver.startCall("");
        tryVerify(() => findChild(screen, "endSession") !== null);
        driver.stopCall();
        tryVerify(() => findChild(screen, "homeArea") !== null);
    }

    function test_aDragAsksOnceToMoveTheWindow() {
        const mover = createTemporaryObject(moverItem, testCase);
        moves.target = mover;
        moves.clear();
        mousePress(mover, 50, 50);
        mouseMove(mover, 53, 53);
        compare(moves.count, 0, "a click that trembles");
        mouseMove(mover, 57, 57);
        mouseMove(mover, 90, 90);
        compare(moves.count, 1);
        mouseRelease(mover, 90, 90);
        mousePress(mover, 50, 50);
        mouseMove(mover, 70, 50);
        compare(moves.count, 2, "the next drag asks again");
        mouseRelease(mover, 70, 50);
    }
}

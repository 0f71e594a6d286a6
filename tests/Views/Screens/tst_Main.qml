import QtQuick
import QtTest
import Corvellan.Views

TestCase {
    id: testCase

    name: "Main"
    when: windowShown
    width: 680
    height: 520
    visible: true

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
        waitForRendering(screen);
        return screen;
    }

    function test_theFaceFollowsTheSession() {
        const screen = make();
        verify(findChild(screen, "startCoaching"));
        driver.startCall("");
        tryVerify(() => findChild(screen, "endSession") !== null);
        driver.stopCall();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
    }

    function test_startCoachingByMouseKeyboardAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_startCoachingByMouseKeyboardAndAccessibility(data) {
        const screen = make();
        const button = findChild(screen, "startCoaching");
        if (data.tag === "mouse") {
            mouseClick(button);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(button));
        } else {
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
        verify(driver.isSessionActive());
    }

    function test_theStartHasTheKeyboardWithoutATab_data() {
        return [{ tag: "space", key: Qt.Key_Space }, { tag: "return", key: Qt.Key_Return }];
    }

    function test_theStartHasTheKeyboardWithoutATab(data) {
        const screen = make();
        verify(findChild(screen, "startCoaching").activeFocus);
        keyClick(data.key);
        verify(driver.isSessionActive());
        tryVerify(() => findChild(screen, "endSession") !== null);
        keyClick(data.key);
        verify(!driver.wasSessionEnded(), "ending takes a Tab first");
        driver.stopCall();
        tryVerify(() => findChild(screen, "startCoaching") !== null);
        verify(findChild(screen, "startCoaching").activeFocus);
    }

    function test_aHeldKeyStartsNothing_data() {
        return [{ tag: "return", key: Qt.Key_Return }, { tag: "enter", key: Qt.Key_Enter },
                { tag: "space", key: Qt.Key_Space }];
    }

    function test_aHeldKeyStartsNothing(data) {
        const screen = make();
        verify(findChild(screen, "startCoaching").activeFocus);
        // As from a key that has ended the last call and is still down.
        for (let i = 0; i < 3; ++i)
            driver.repeatKey(screen.Window.window, data.key);
        verify(!driver.isSessionActive());
    }

    function test_startCoachingIsDisabledWhileAStartIsOnItsWay() {
        driver.holdConnecting();
        const screen = make();
        const button = findChild(screen, "startCoaching");
        verify(button.enabled);
        button.forceActiveFocus(Qt.TabFocusReason);

        keyClick(Qt.Key_Space);
        compare(driver.connectionsAsked(), 1);
        verify(!button.enabled);
        keyClick(Qt.Key_Space);
        mouseClick(button);
        driver.pressThroughAccessibility(button);
        compare(driver.connectionsAsked(), 1, "no second attempt");

        driver.setStatus("Ready");
        verify(button.enabled);
        verify(button.activeFocus, "the keyboard is back where it was");
    }

    function test_startCoachingStaysEnabledWhileSigningIn() {
        const screen = make();
        driver.setStatus("Authenticating...");
        verify(findChild(screen, "startCoaching").enabled);
    }

    function test_anErrorIsReadableAndLeavesTheButtonInPlace_data() {
        return [{ tag: "standard size", width: 680, height: 520 }, { tag: "smallest size", width: 520, height: 400 }];
    }

    function test_anErrorIsReadableAndLeavesTheButtonInPlace(data) {
        const screen = make();
        screen.width = data.width;
        screen.height = data.height;
        verify(!findChild(screen, "errorBox").visible);
        driver.setError("No microphone found. ".repeat(40));
        waitForRendering(screen);
        verify(findChild(screen, "errorBox").visible);
        const button = findChild(screen, "startCoaching");
        const server = findChild(screen, "server");
        verify(button.mapToItem(screen, 0, button.height).y < server.mapToItem(screen, 0, 0).y);
        verify(findChild(screen, "errorMessage").mapToItem(screen, 0, 0).y > 0);
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

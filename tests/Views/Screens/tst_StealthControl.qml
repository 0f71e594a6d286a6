import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "StealthControl"
    width: 700
    height: 400

    Component {
        id: control

        StealthControl {
            x: 20
            y: 20
            stealth: driver.views.stealth
            theme: driver.views.theme
        }
    }

    Component {
        id: overlayScreen

        CoachingOverlayScreen {
            overlay: driver.views.overlay
            theme: driver.views.theme
            stealth: driver.views.stealth
        }
    }

    Component {
        id: miniBar

        Item {
            width: 600
            height: 36

            StealthControl {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                stealth: driver.views.stealth
                theme: driver.views.theme
                size: 10
                isCompact: true
            }
        }
    }

    SignalSpy {
        id: alerts

        signalName: "raised"
    }

    function init() {
        driver.reset();
    }

    function make(component, properties) {
        const item = createTemporaryObject(component, testCase, properties ?? {});
        verify(item);
        draw(item);
        return item;
    }

    function test_pressingTheEyeFlipsStealth_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_pressingTheEyeFlipsStealth(data) {
        const button = findChild(make(control), "stealthButton");
        button.forceActiveFocus(Qt.TabFocusReason);
        for (const isOn of [true, false]) {
            if (data.tag === "mouse")
                press(button);
            else if (data.tag === "accessibility")
                verify(driver.pressThroughAccessibility(button));
            else
                keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
            compare(driver.isStealthOn(), isOn);
            compare(button.Accessible.checked, isOn);
        }
    }

    function test_theEyeIsOpenInCyanAndClosedInFaintWhite() {
        const button = findChild(make(control), "stealthButton");
        compare(button.contentItem.symbol, "eye.fill");
        verify(Qt.colorEqual(button.contentItem.color, driver.views.theme.cyan));
        driver.setStealth(true);
        compare(button.contentItem.symbol, "eye.slash");
        fuzzyCompare(button.contentItem.color.a, 0.25, 0.01);
    }

    function test_theWarningStandsOnlyWhereStealthIsOnAndNotConfirmed_data() {
        return [
            { tag: "off", isOn: false, visibility: "visible", warns: false },
            { tag: "off, still hidden", isOn: false, visibility: "hidden", warns: false },
            { tag: "asked", isOn: true, visibility: "hiding", warns: true },
            { tag: "confirmed", isOn: true, visibility: "hidden", warns: false },
            { tag: "no facility", isOn: true, visibility: "unsupported", warns: true },
            { tag: "configuration", isOn: true, visibility: "needsConfiguration", warns: true },
            { tag: "refused", isOn: true, visibility: "failed", warns: true },
            { tag: "between calls", isOn: true, visibility: "visible", warns: true },
        ];
    }

    function test_theWarningStandsOnlyWhereStealthIsOnAndNotConfirmed(data) {
        const warning = findChild(make(control), "stealthWarning");
        driver.setCaptureVisibility(data.visibility, "So it is.");
        driver.setStealth(data.isOn);
        compare(warning.visible, data.warns);
        if (data.warns)
            verify(warning.Accessible.name.startsWith("S"), warning.Accessible.name);
    }

    function test_theWarningSaysWhyWhenItHasTheKeyboard() {
        const item = make(control);
        driver.setStealth(true);
        driver.setCaptureVisibility("unsupported", "On X11 all is open.");
        findChild(item, "stealthButton").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        const warning = findChild(item, "stealthWarning");
        verify(warning.activeFocus);
        const tip = findChild(warning, "stealthWarningTip");
        tryVerify(() => tip.opened);
        compare(tip.text, "Screen sharing shows this window. On X11 all is open.");
        compare(tip.text, warning.Accessible.name);
    }

    function test_theWarningSaysWhyUnderThePointer() {
        const warning = findChild(make(control), "stealthWarning");
        driver.setStealth(true);
        driver.setCaptureVisibility("failed", "It refused.");
        tryVerify(() => warning.x > 0);
        mouseMove(testCase, 600, 300);
        mouseMove(warning, 5, 5);
        mouseMove(warning, 8, 8);
        tryVerify(() => findChild(warning, "stealthWarningTip").opened);
    }

    function test_beforeItIsTurnedOnTheTipSaysWhetherItWillHide() {
        const button = findChild(make(control), "stealthButton");
        driver.setHidingOffer("doesNotHide", "It can't.");
        button.forceActiveFocus(Qt.TabFocusReason);
        const tip = findChild(button, "stealthTip");
        tryVerify(() => tip.opened);
        compare(tip.text, "Stealth would not hide this window from screen sharing. It can't.");
        compare(button.Accessible.description, tip.text);
    }

    function test_aFailureIsSpokenAndWaitingIsNot() {
        const warning = findChild(make(control), "stealthWarning");
        alerts.target = findChild(warning, "stealthAlert");
        verify(alerts.valid);
        alerts.clear();
        driver.setCaptureVisibility("hiding", "Asked.");
        driver.setStealth(true);
        compare(alerts.count, 0);
        driver.setCaptureVisibility("hidden", "Done.");
        compare(alerts.count, 0);
        driver.setCaptureVisibility("failed", "It refused.");
        tryCompare(alerts, "count", 1);
    }

    function test_theOverlayHasRoomForItInEveryLayout_data() {
        const rows = [];
        for (const size of [[700, 350], [500, 400]])
            for (const scale of [1, 1.5, 2])
                rows.push({ tag: `${size[0]}x${size[1]} x ${scale}`, size: size, scale: scale });
        return rows;
    }

    function test_theOverlayHasRoomForItInEveryLayout(data) {
        driver.setFontScale(data.scale);
        driver.setStealth(true);
        driver.setCaptureVisibility("failed", "It refused.");
        driver.setError("System audio is not available: the default output has no monitor to record from here");
        const screen = make(overlayScreen, { width: data.size[0] * data.scale, height: data.size[1] * data.scale });
        const end = findChild(screen, "endSession");
        const warning = findChild(screen, "stealthWarning");
        const problem = findChild(screen, "errorMessage");
        verify(warning.visible);
        for (const item of [end, warning, problem, findChild(screen, "stealthButton")]) {
            const place = item.mapToItem(screen, 0, 0, item.width, item.height);
            verify(place.x >= 0 && place.y >= 0, item.objectName);
            verify(place.x + place.width <= screen.width && place.y + place.height <= screen.height, item.objectName);
        }
        verify(warning.mapToItem(screen, warning.width, 0).x <= end.mapToItem(screen, 0, 0).x);
        verify(problem.mapToItem(screen, problem.width, 0).x
               <= findChild(screen, "stealthButton").mapToItem(screen, 0, 0).x);
    }

    function test_anOverlayWithoutItHasNone() {
        const screen = make(overlayScreen, { width: 700, height: 350, stealth: null });
        compare(findChild(screen, "stealthButton"), null);
        verify(findChild(screen, "endSession").visible);
    }

    function test_fitsTheMiniBar() {
        driver.setStealth(true);
        driver.setCaptureVisibility("failed", "It refused.");
        const bar = make(miniBar);
        for (const name of ["stealthButton", "stealthWarning"]) {
            const item = findChild(bar, name);
            const place = item.mapToItem(bar, 0, 0, item.width, item.height);
            verify(place.y >= 0 && place.y + place.height <= bar.height, name);
        }
    }

    function test_aTipOfTheMiniBarIsNoHigherThanTheBar() {
        driver.setStealth(true);
        driver.setCaptureVisibility("unsupported", "On X11 every program can read the whole screen, so this window "
            + "can't be hidden from screen sharing.");
        const warning = findChild(make(miniBar), "stealthWarning");
        warning.forceActiveFocus(Qt.TabFocusReason);
        const tip = findChild(warning, "stealthWarningTip");
        tryVerify(() => tip.opened);
        verify(tip.height <= 36, tip.height);
    }
}

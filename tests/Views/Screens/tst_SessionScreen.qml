import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "SessionScreen"
    width: 1050
    height: 525

    Component {
        id: content

        Main {
            width: 1050
            height: 525
            views: driver.views
        }
    }

    SignalSpy {
        id: overlayAlerts

        signalName: "raised"
    }

    SignalSpy {
        id: miniAlerts

        signalName: "raised"
    }

    function init() {
        driver.reset();
    }

    function make() {
        driver.goLive();
        const window = createTemporaryObject(content, testCase);
        draw(window);
        return window;
    }

    // Layouts

    function test_theFullLayoutIsSplitInHalves() {
        const window = make();
        const overlay = control(window, "overlay");
        const transcript = control(window, "transcriptPanel");
        fuzzyCompare(overlay.width, 525, 1);
        fuzzyCompare(transcript.width, 525, 1);
        verify(transcript.mapToItem(window, 0, 0).x >= overlay.mapToItem(window, overlay.width, 0).x);
    }

    function test_theLayoutsGoRound_data() {
        return [{ tag: "mouse" }, { tag: "keys" }, { tag: "shortcut" }, { tag: "accessibility" }];
    }

    function test_theLayoutsGoRound(data) {
        const window = make();
        const cycle = () => {
            const mini = control(window, "miniSessionBar");
            const button = control(window, mini.visible ? "expandButton" : "layoutButton");
            if (data.tag === "mouse") {
                press(button);
            } else if (data.tag === "accessibility") {
                verify(driver.pressThroughAccessibility(button));
            } else if (data.tag === "keys") {
                if (driver.views.live.sessionTab === "full")
                    button.forceActiveFocus(Qt.TabFocusReason);
                verify(button.activeFocus, "the keyboard stays with the control");
                keyClick(Qt.Key_Space);
            } else {
                keyClick(Qt.Key_L, Qt.ControlModifier);
            }
            draw(window);
        };
        verify(findChild(window, "transcriptPanel"));
        cycle();
        compare(driver.views.live.sessionTab, "coach");
        tryVerify(() => findChild(window, "transcriptPanel") === null);
        compare(control(window, "overlay").width, 1050);
        cycle();
        compare(driver.views.live.sessionTab, "mini");
        verify(control(window, "miniSessionBar").visible);
        verify(!control(window, "sessionHeader").visible);
        cycle();
        compare(driver.views.live.sessionTab, "full");
        verify(control(window, "sessionHeader").visible);
        verify(findChild(window, "transcriptPanel"));
    }

    function test_everyButtonIsNamedAndLargeEnough() {
        driver.setHandoff("# Note");
        const window = make();
        for (const [name, spoken] of [["stealthButton", "Stealth"], ["fontButton", "Text size"],
                                      ["layoutButton", "Layout"], ["handoffButton", "Open AE Handoff"],
                                      ["stopButton", "Stop"], ["muteButton", "Mute the buyer's voice"]]) {
            const button = control(window, name);
            compare(driver.spoken(button).name, spoken);
            verify(button.width >= 28 && button.height >= 28, name);
            verify(button.activeFocusOnTab || button.focusPolicy !== Qt.NoFocus, name);
        }
    }

    // Header

    function test_theHeaderTellsCompanyAndTime() {
        driver.startCall("Nordwind Logistics");
        const window = createTemporaryObject(content, testCase);
        draw(window);
        compare(control(window, "sessionHeader").visible, true);
        compare(findChild(control(window, "sessionHeader"), "company").text, "Nordwind Logistics");
        compare(control(window, "timer").text, "0:00");
        driver.setElapsed(3725);
        compare(control(window, "timer").text, "62:05");
    }

    function test_theHandoffButtonShowsWithANoteAndOpensIt() {
        const window = make();
        const button = control(window, "handoffButton");
        verify(!button.visible);
        driver.setHandoff("# Note");
        verify(button.visible);
        compare(button.tip, "Open AE Handoff");
        press(button);
        compare(driver.handoffsShown(), 1);
    }

    function test_theFontButtonChangesTheTranscriptsLetters() {
        driver.setFontScale(1.0);
        const window = make();
        driver.say(0, "Hello");
        const list = control(window, "transcript");
        tryVerify(() => list.itemAtIndex(0) !== null);
        compare(findChild(list.itemAtIndex(0), "text").font.pixelSize, 11);
        press(control(window, "fontButton"));
        press(control(window, "fontButton"));
        compare(findChild(list.itemAtIndex(0), "text").font.pixelSize, 22);
        compare(findChild(list.itemAtIndex(0), "tag").width, 72);
    }

    function test_stopEndsTheSession_data() {
        return [{ tag: "header", button: "stopButton", cycles: 0 }, { tag: "mini", button: "miniStop", cycles: 2 }];
    }

    function test_stopEndsTheSession(data) {
        const window = make();
        for (let i = 0; i < data.cycles; ++i)
            driver.views.live.cycleSessionTab();
        draw(window);
        press(control(window, data.button));
        verify(driver.wasSessionEnded());
    }

    // One line

    function test_theOneLineTellsScoreBuyerMoodAndTip() {
        const window = make();
        driver.views.live.cycleSessionTab();
        driver.views.live.cycleSessionTab();
        compare(control(window, "miniScore").text, "0/6");
        verify(!control(window, "miniDisc").visible);
        driver.setBuyer("steady");
        compare(control(window, "miniDiscLetter").text, "S");
        verify(control(window, "miniDisc").visible);
        compare(control(window, "miniMessage").text, "Listening...");
        compare(control(window, "miniMessage").font.pixelSize, 10);
        driver.tip("whisper", "low", "Ask who signs");
        compare(control(window, "miniMessage").text, "Ask who signs");
        compare(control(window, "miniMessage").font.pixelSize, 11);
        driver.setMode("cold_call");
        verify(!control(window, "miniScore").visible);
    }

    function test_aTipIsSpokenOnceInEachLayout_data() {
        return [{ tag: "full", cycles: 0 }, { tag: "coach", cycles: 1 }, { tag: "mini", cycles: 2 }];
    }

    function test_aTipIsSpokenOnceInEachLayout(data) {
        const window = make();
        for (let i = 0; i < data.cycles; ++i)
            driver.views.live.cycleSessionTab();
        draw(window);
        overlayAlerts.target = control(window, "tipAlert");
        miniAlerts.target = control(window, "miniTipAlert");
        overlayAlerts.clear();
        miniAlerts.clear();
        const isMini = data.tag === "mini";
        const shown = isMini ? miniAlerts : overlayAlerts;
        for (let tips = 1; tips <= 3; ++tips) {
            driver.tip("whisper", "low", "Tip " + tips);
            tryCompare(shown, "count", tips);
        }
        compare((isMini ? overlayAlerts : miniAlerts).count, 0);
        compare(driver.spoken(shown.target.target).name, "Tip 3");
        compare(driver.spoken(shown.target.target).role, Accessible.Notification);
    }

    // Transcript panel

    function test_levels() {
        const window = make();
        const mic = control(window, "micRow");
        verify(!control(window, "systemRow").visible);
        driver.setMicrophoneLevel(0.5);
        compare(findChild(mic, "percentage").text, "50%");
        const bar = findChild(mic, "bar");
        fuzzyCompare(findChild(bar, "fill").width, bar.width / 2, 1);
        driver.setSystemLevel(0.8);
        const system = control(window, "systemRow");
        verify(system.visible);
        compare(findChild(system, "bar").fillColor, driver.views.callTheme.red);
    }

    function test_theDotsColorFollowsTheStatus() {
        const window = make();
        const dot = control(window, "statusDot");
        driver.setStatus("Listening...");
        compare(dot.color, driver.views.callTheme.green);
        driver.setStatus("Coaching");
        compare(dot.color, driver.views.callTheme.cyan);
        driver.setStatus("Listening");
        compare(dot.color, driver.views.callTheme.orange);
        compare(control(window, "status").text, "Listening");
    }

    function test_theBuyersVoiceCanBeSkippedAndMuted() {
        const window = make();
        verify(!control(window, "skipHint").visible);
        driver.setSpeaking(true);
        verify(control(window, "skipHint").visible);
        const mute = control(window, "muteButton");
        compare(mute.symbol, "speaker.wave.2.fill");
        press(mute);
        compare(mute.symbol, "speaker.slash.fill");
        verify(driver.spoken(mute).isChecked);
    }

    function test_waitingAndErrorsShow() {
        const window = make();
        verify(!control(window, "waiting").visible);
        verify(!control(window, "errorBox").visible);
        driver.setWaiting(true);
        verify(control(window, "waiting").visible);
        driver.setError("Microphone transcription stopped");
        verify(control(window, "errorBox").visible);
        compare(control(window, "panelError").text, "Microphone transcription stopped");
    }

    function test_theEmptyTranscriptAsksToSpeak() {
        const window = make();
        const hint = control(window, "transcriptHint");
        verify(hint.visible);
        compare(hint.text, "Speak into mic to start...");
        driver.setStreaming("Well");
        verify(!hint.visible);
        driver.setStreaming("");
        verify(hint.visible);
        driver.say(1, "Hello");
        tryVerify(() => !hint.visible);
    }

    function test_linesTellWhoSaidThem() {
        const window = make();
        for (const source of [0, 0, 1, 2])
            driver.say(source, "Words");
        const list = control(window, "transcript");
        tryVerify(() => list.itemAtIndex(3) !== null);
        const tags = [0, 1, 2, 3].map(row => findChild(list.itemAtIndex(row), "tag").text);
        compare(tags, ["YOU", "YOU", "THEM", "COACH"]);
        const lines = [0, 1, 2, 3].map(row => findChild(list.itemAtIndex(row), "hairline").visible);
        compare(lines, [false, false, true, true]);
        compare(driver.spoken(list.itemAtIndex(2)).name, "THEM: Words");
    }

    function test_theLastLineAndTheStreamedOneRollIntoView() {
        const window = make();
        const list = control(window, "transcript");
        for (let i = 0; i < 300; ++i)
            driver.say(i % 2, "Line " + i + ", which is long enough for the panel to break it into two lines of text.");
        tryVerify(() => list.itemAtIndex(299) !== null && list.atYEnd);
        list.scrollBy(-100000);
        verify(!list.atYEnd);
        driver.setStreaming("A word");
        tryVerify(() => list.itemAtIndex(299) !== null && list.atYEnd);
        compare(findChild(list.contentItem, "streaming").text, "A word");
        verify(findChild(list.contentItem, "streaming").visible);
        // Only rows in view have delegates.
        verify(list.itemAtIndex(0) === null);
    }

    function test_aLineRollsInSlowerThanAStreamedWord() {
        const window = make();
        const list = control(window, "transcript");
        for (let i = 0; i < 60; ++i)
            driver.say(i % 2, "Line " + i);
        tryVerify(() => list.itemAtIndex(59) !== null && list.atYEnd);
        const glide = findChild(list, "glide");
        compare(glide.easing.type, Easing.OutQuad);
        driver.setStreaming("A word");
        tryVerify(() => glide.duration === 100);
        tryVerify(() => !glide.running && list.atYEnd);
        driver.say(0, "The last line");
        tryVerify(() => glide.duration === 200);
        tryVerify(() => !glide.running && list.atYEnd);
        driver.setStreaming("");
        draw(window);
        compare(glide.duration, 200, "an end of the stream scrolls nothing");
    }

    function test_tenThousandLinesHaveAsManyRowsAsFit() {
        const window = make();
        const list = control(window, "transcript");
        for (let i = 0; i < 10000; ++i)
            driver.say(i % 2, "Line " + i);
        tryCompare(list, "count", 10000);
        tryVerify(() => list.itemAtIndex(9999) !== null && list.atYEnd);
        verify(list.contentItem.children.length < 100, list.contentItem.children.length);
    }

    function test_keysScrollTheTranscript() {
        const window = make();
        const list = control(window, "transcript");
        for (let i = 0; i < 100; ++i)
            driver.say(i % 2, "Line " + i);
        tryVerify(() => list.itemAtIndex(99) !== null && list.atYEnd);
        list.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Home);
        verify(list.atYBeginning);
        keyClick(Qt.Key_End);
        verify(list.atYEnd);
    }

    function test_nothingIsCutOffAtTheSmallestSizeWithLargeLetters_data() {
        return [{ tag: "1.0", scale: 1.0, width: 700, height: 350 }, { tag: "2.0", scale: 2.0, width: 700, height: 350 }];
    }

    function test_nothingIsCutOffAtTheSmallestSizeWithLargeLetters(data) {
        driver.setFontScale(data.scale);
        driver.setHandoff("# Note");
        const window = make();
        window.width = data.width;
        window.height = data.height;
        draw(window);
        for (const name of ["stealthButton", "fontButton", "layoutButton", "handoffButton", "timer", "stopButton",
                            "muteButton"]) {
            const item = control(window, name);
            const left = item.mapToItem(window, 0, 0).x;
            verify(left >= 0 && left + item.width <= window.width, name);
        }
        verify(control(window, "transcript").height > 80);
    }
}

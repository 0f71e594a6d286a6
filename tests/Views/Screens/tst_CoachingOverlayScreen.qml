import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "CoachingOverlayScreen"
    width: 700
    height: 350

    Component {
        id: overlayScreen

        CoachingOverlayScreen {
            width: 700
            height: 350
            overlay: driver.views.overlay
            theme: driver.views.theme
        }
    }

    SignalSpy {
        id: alerts

        signalName: "raised"
    }

    function init() {
        driver.reset();
    }

    function make() {
        const screen = createTemporaryObject(overlayScreen, testCase);
        verify(screen);
        draw(screen);
        return screen;
    }

    function shown(screen, name) {
        const item = findChild(screen, name);
        verify(item, name);
        return item.visible;
    }

    function test_theTipStandsUnderItsKind() {
        const screen = make();
        driver.tip("objection_handler", "high", "Acknowledge price");
        compare(findChild(screen, "tipLabel").text, "OBJECTION");
        verify(shown(screen, "urgency"));
        compare(findChild(screen, "message").text, "Acknowledge price");
        compare(findChild(screen, "message").font.pixelSize, 21);
    }

    function test_markupFromTheServerIsNeverRendered() {
        const screen = make();
        driver.tip("whisper", "", "<img src='http://127.0.0.1/x'><b>bold</b>");
        compare(findChild(screen, "message").textFormat, Text.PlainText);
        compare(findChild(screen, "message").text, "<img src='http://127.0.0.1/x'><b>bold</b>");
    }

    function test_withoutATipTheStatusStandsDimmed() {
        const screen = make();
        driver.setStatus("Listening...");
        const message = findChild(screen, "message");
        compare(message.text, "Listening...");
        compare(message.font.pixelSize, 18);
        fuzzyCompare(message.color.a, 0.3, 0.01);
        verify(!shown(screen, "tipLabel"));
    }

    function test_aKindWithoutATipStandsOverTheDimmedStatus() {
        const screen = make();
        driver.setStatus("Listening...");
        driver.tip("listen", "", "");
        compare(findChild(screen, "tipLabel").text, "LISTEN");
        verify(shown(screen, "tipLabel"));
        const message = findChild(screen, "message");
        compare(message.text, "Listening...");
        fuzzyCompare(message.color.a, 0.3, 0.01);
        verify(message.mapToItem(screen, 0, 0).y >= findChild(screen, "tipLabel").mapToItem(screen, 0, 9).y);
    }

    function test_anEmptyPhaseTakesNoLine() {
        const screen = make();
        verify(!shown(screen, "phase"));
        driver.setPhase("needs_analysis");
        compare(findChild(screen, "phase").text, "→ Needs Analysis");
        verify(shown(screen, "phase"));
        driver.setPhase("");
        verify(!shown(screen, "phase"));
    }

    function test_theProductHintShowsOnlyWhenThereIsOne() {
        const screen = make();
        verify(!shown(screen, "productHint"));
        driver.setProductHint("Zelto Monitor");
        verify(shown(screen, "productHint"));
    }

    function test_everyScaledSizeFollowsTheScale() {
        const screen = make();
        driver.tip("whisper", "", "Tip");
        driver.setFontScale(2.0);
        compare(findChild(screen, "message").font.pixelSize, 28);
        compare(findChild(screen, "scoreText").font.pixelSize, 20);
        compare(findChild(screen, "discLabel").font.pixelSize, 22);
        compare(findChild(screen, "moodEmoji").font.pixelSize, 36);
        compare(findChild(screen, "tipLabel").font.pixelSize, 9);
    }

    function test_aColdCallShowsNeitherScoreNorChecklist() {
        const screen = make();
        verify(shown(screen, "score"));
        verify(shown(screen, "meddicChecklist"));
        driver.setMode("cold_call");
        compare(findChild(screen, "modeBadge").text, "Cold Call");
        verify(!shown(screen, "score"));
        verify(!shown(screen, "meddicChecklist"));
    }

    function test_aConfirmedCriterionLightsUpGraduallyAndFadesAgain() {
        const screen = make();
        const row = findChild(screen, "criterion3");
        compare(row.color.a, 0);
        driver.setJustConfirmed(3);
        verify(row.color.a < 0.2, "the change is animated");
        tryVerify(() => Math.abs(row.color.a - 0.2) < 0.01);
        compare(findChild(screen, "criterion2").color.a, 0);
        fuzzyCompare(row.inset, 4, 0.5);
        driver.setJustConfirmed(-1);
        tryCompare(row.color, "a", 0);
    }

    function test_theLightOfACriterionTakesFourTenthsOfASecond() {
        const row = findChild(make(), "criterion3");
        // Their animations are made at their first use.
        driver.setJustConfirmed(3);
        for (const name of ["lighting", "insetting"]) {
            const animation = findChild(row, name).animation;
            compare(animation.duration, 400);
            compare(animation.easing.type, Easing.InOutQuad);
        }
    }

    function test_longEvidenceStaysOnOneLine() {
        const screen = make();
        driver.setEvidence(0, "word ".repeat(100));
        const evidence = findChild(screen, "evidence0");
        draw(screen);
        compare(evidence.lineCount, 1);
        verify(evidence.truncated);
    }

    function test_theCompanyRowFoldsTheBriefByMouseAndByKeyboard() {
        driver.startCall("Nordwind");
        driver.setBrief("240 devices");
        driver.setMode("cold_call");
        const screen = make();
        const row = findChild(screen, "companyRow");
        const brief = findChild(screen, "brief");
        verify(row.height >= 28);
        verify(!brief.visible);

        press(row);
        tryVerify(() => brief.visible && brief.height > 20);

        row.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryVerify(() => !brief.visible);
        keyClick(Qt.Key_Return);
        tryVerify(() => brief.visible);
    }

    function test_aHandoffOpensItsWindow() {
        driver.startCall("Nordwind");
        driver.setBrief("240 devices");
        driver.setHandoff("# Note");
        driver.setMode("cold_call");
        const screen = make();
        verify(shown(screen, "handoffCaption"));
        press(findChild(screen, "companyRow"));
        compare(driver.handoffsShown(), 1);
        verify(!shown(screen, "brief"));
    }

    function test_aHandoffTakesThePlaceOfAnUnfoldedBriefAtOnce() {
        driver.startCall("Nordwind");
        driver.setBrief("240 devices");
        driver.setMode("cold_call");
        const screen = make();
        press(findChild(screen, "companyRow"));
        tryVerify(() => shown(screen, "brief"));
        driver.setHandoff("# Note");
        verify(!shown(screen, "brief"));
        press(findChild(screen, "companyRow"));
        compare(driver.handoffsShown(), 1);
        verify(!shown(screen, "brief"));
    }

    function test_aBriefWithoutACompanyShowsNothing() {
        driver.setBrief("240 devices");
        const screen = make();
        verify(!shown(screen, "companyRow"));
        verify(!shown(screen, "brief"));
    }

    function test_aCompanyWithoutABriefCantBePressed() {
        driver.startCall("Nordwind");
        const screen = make();
        verify(!findChild(screen, "companyRow").enabled);
        verify(!shown(screen, "chevron"));
    }

    function test_aShortCompanyNameIsNotCutOff() {
        driver.startCall("Nordwind Logistics GmbH");
        driver.setBrief("240 devices");
        const screen = make();
        verify(!findChild(screen, "companyName").truncated);
    }

    function test_endSessionByMouseKeyboardAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "space" }, { tag: "return" }, { tag: "accessibility" }];
    }

    function test_endSessionByMouseKeyboardAndAccessibility(data) {
        driver.goLive();
        const screen = make();
        const button = findChild(screen, "endSession");
        verify(button.width >= 28 && button.height >= 28);
        verify(!driver.wasSessionEnded());
        if (data.tag === "mouse") {
            press(button);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(button));
        } else {
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.tag === "space" ? Qt.Key_Space : Qt.Key_Return);
        }
        verify(driver.wasSessionEnded());
    }

    function test_theSpeakingNoticeShowsOnlyWhileTheBuyerSpeaks() {
        const screen = make();
        verify(!shown(screen, "speakingNotice"));
        driver.setSpeaking(true);
        verify(shown(screen, "speakingNotice"));
    }

    function test_tipAndFooterStayInViewWhateverTheTexts_data() {
        return [{ tag: "1.0", scale: 1.0 }, { tag: "1.5", scale: 1.5 }, { tag: "2.0", scale: 2.0 }];
    }

    function test_tipAndFooterStayInViewWhateverTheTexts(data) {
        driver.startCall("Company ".repeat(30));
        driver.setBrief("brief ".repeat(500));
        driver.tip("whisper", "high", "word ".repeat(300));
        driver.setProductHint("hint ".repeat(50));
        driver.setError("problem ".repeat(100));
        driver.setSpeaking(true);
        driver.setFontScale(data.scale);
        const screen = make();
        const footer = findChild(screen, "endSession");
        const state = findChild(screen, "stateBlock");
        const tip = findChild(screen, "message");
        verify(footer.mapToItem(screen, 0, footer.height).y <= screen.height);
        verify(tip.mapToItem(screen, 0, 0).y >= 0);
        verify(tip.mapToItem(screen, 0, 0).y < 60);
        verify(state.height > 60);
        verify(state.isOverflowing);
        verify(findChild(screen, "errorMessage").width < screen.width);
    }

    function test_theWheelScrollsTheStateAndTabReachesTheCompany() {
        driver.startCall("Nordwind");
        driver.setBrief("brief");
        driver.setFontScale(2.0);
        const screen = make();
        const state = findChild(screen, "stateBlock");
        const row = findChild(screen, "companyRow");
        verify(state.isOverflowing);
        verify(row.mapToItem(state, 0, row.height).y > state.height, "below the fold");

        row.forceActiveFocus(Qt.TabFocusReason);
        verify(row.mapToItem(state, 0, row.height).y <= state.height + 0.5, "revealed by focus");

        mouseWheel(state, 100, 50, 0, 3000);
        verify(row.mapToItem(state, 0, row.height).y > state.height, "scrolled back up");
    }

    function test_tabWalksFromTheCompanyToTheFooter() {
        driver.startCall("Nordwind");
        driver.setBrief("brief");
        driver.setMode("cold_call");
        const screen = make();
        findChild(screen, "companyRow").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        verify(findChild(screen, "endSession").activeFocus);
    }

    function test_aNewTipIsSpokenOnce() {
        const screen = make();
        alerts.target = findChild(screen, "tipAlert");
        alerts.clear();
        driver.tip("whisper", "", "Ask about budget");
        tryCompare(alerts, "count", 1);
        compare(alerts.target.target, findChild(screen, "message"));
        compare(driver.spoken(alerts.target.target).name, "Ask about budget");
        compare(driver.spoken(alerts.target.target).role, Accessible.Notification);
        driver.setStatus("Coaching");
        driver.tip("whisper", "high", "Ask about budget");
        driver.tip("whisper", "high", "Name the next step");
        tryCompare(alerts, "count", 2);
        wait(0);
        compare(alerts.count, 2, "the same tip again");
    }

    function test_aProblemIsSpoken() {
        const screen = make();
        alerts.target = findChild(screen, "problemAlert");
        alerts.clear();
        driver.setError("Microphone transcription stopped");
        tryCompare(alerts, "count", 1);
        compare(driver.spoken(alerts.target.target).name, "Microphone transcription stopped");
        compare(driver.spoken(alerts.target.target).role, Accessible.Notification);
    }
}

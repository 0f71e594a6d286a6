import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "SessionSummaryScreen"
    width: 508
    height: 700

    Component {
        id: content

        Rectangle {
            width: 508
            height: 700
            color: historyDriver.theme.windowBackground

            SessionHistoryScreen {
                anchors.fill: parent
                history: historyDriver.history
                theme: historyDriver.theme
            }
        }
    }

    function init() {
        historyDriver.reset();
    }

    /// The summary of the newest record.
    function open() {
        const screen = createTemporaryObject(content, testCase);
        draw(screen);
        historyDriver.quieten();
        if (findChild(screen, "summaryForm") === null)
            historyDriver.history.open(0);
        tryVerify(() => findChild(screen, "summaryForm") !== null);
        draw(screen);
        return screen;
    }

    function pressNamed(screen, name) {
        const item = control(screen, name);
        control(screen, "summaryForm").reveal(item);
        press(item);
    }

    function test_theSectionsStandInTheirOrder() {
        historyDriver.keep("Nordwind", 30, { score: 4, callId: "c-1", rating: 1, points: ["Ask who signs"],
                                             transcript: ["[Mic] Hello"] });
        const screen = open();
        screen.height = 1400;
        draw(screen);
        const titles = ["MEDDIC Score", "Session", "Key Points", "Feedback", "Transcript"];
        compare(shownTexts(screen).filter(text => titles.includes(text)), titles);
        compare(shownTexts(control(screen, "meddic")).slice(0, 2), ["MEDDIC Score", "4/6"]);
        compare(shownTexts(control(screen, "facts")), ["Session", "Duration", "3m 12s", "Turns", "12", "DISC", "Steady",
                                                  "Date", control(screen, "date").text]);
        compare(shownTexts(control(screen, "storedFeedback")), ["Feedback", "Helpful"]);
        verify(!control(screen, "feedback").visible);
        verify(!control(screen, "done").visible);
    }

    function test_theHeaderTellsWhoseSessionItWas() {
        historyDriver.keep("Nordwind", 30, { train: true, audience: "channel_partner" });
        const screen = open();
        const form = control(screen, "summaryForm");
        compare(control(form, "company").text, "Nordwind");
        verify(control(form, "trainBadge").visible);
        compare(shownTexts(control(form, "audienceBadge")), ["Channel"]);
    }

    function test_aColdCallHasNoMeddicSection() {
        historyDriver.keep("Nordwind", 30, { audience: "cold_call" });
        const screen = open();
        verify(!control(screen, "meddic").visible);
        verify(control(screen, "facts").visible);
    }

    function test_criteriaShowTheirEvidence() {
        historyDriver.keep("Nordwind", 30, { score: 1, evidence: ["20 % churn"] });
        const screen = open();
        const met = control(screen, "criterion0");
        compare(shownTexts(met), ["M", "Metrics", "20 % churn"]);
        compare(control(met, "mark").symbol, "checkmark.circle.fill");
        const open_ = control(screen, "criterion1");
        compare(shownTexts(open_), ["E", "Economic Buyer"]);
        compare(control(open_, "mark").symbol, "circle");
        compare(historyDriver.spoken(met).name, "Metrics: confirmed, 20 % churn");
    }

    function test_afterACallTheUserIsAskedAndTheAnswerStays_data() {
        return [{ tag: "helpful", rating: 1, word: "Helpful" }, { tag: "notHelpful", rating: -1, word: "Not helpful" }];
    }

    function test_afterACallTheUserIsAskedAndTheAnswerStays(data) {
        const screen = createTemporaryObject(content, testCase);
        draw(screen);
        historyDriver.quieten();
        historyDriver.endCall("Nordwind");
        tryVerify(() => findChild(screen, "summaryForm") !== null);
        draw(screen);
        verify(shownTexts(control(screen, "feedback")).includes("How was this session?"));
        const note = control(screen, "feedbackNote");
        verify(control(note, "placeholder").visible);
        compare(control(note, "placeholder").text, "Optional note...");
        note.forceActiveFocus();
        keyClick("G");
        keyClick("o");
        verify(!control(note, "placeholder").visible);
        pressNamed(screen, data.tag);
        compare(JSON.parse(historyDriver.lastReport()), { note: "Go", rating: data.rating });
        tryVerify(() => control(screen, "result").visible);
        compare(shownTexts(control(screen, "result")), [data.word]);
        verify(!control(screen, "helpful").visible && !control(screen, "notHelpful").visible);
    }

    function test_tabLeavesTheNote() {
        historyDriver.keep("Nordwind", 1, { callId: "c-1" });
        const screen = open();
        const note = control(screen, "feedbackNote");
        control(screen, "notHelpful").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        verify(note.activeFocus);
        keyClick(Qt.Key_Tab);
        verify(!note.activeFocus);
        compare(note.text, "");
        note.forceActiveFocus();
        keyClick(Qt.Key_Backtab, Qt.ShiftModifier);
        verify(control(screen, "notHelpful").activeFocus);
    }

    function test_theTabKeyGoesThroughTheHeaderInOrder() {
        historyDriver.keep("Nordwind", 1, { callId: "c-1" });
        const screen = open();
        tryVerify(() => control(screen, "back").activeFocus);
        for (const name of ["copyTranscript", "copySummary", "share", "helpful", "notHelpful", "feedbackNote"]) {
            keyClick(Qt.Key_Tab);
            verify(control(screen, name).activeFocus, name);
        }
    }

    function test_transcriptAndSummaryAreCopied() {
        historyDriver.keep("Nordwind", 30, { transcript: ["[Mic] Hello", "no prefix"] });
        const screen = open();
        pressNamed(screen, "copyTranscript");
        compare(historyDriver.clipboard(), "[Mic] Hello\nno prefix");
        compare(control(screen, "shareNotice").text, "Transcript copied.");
        pressNamed(screen, "copySummary");
        verify(historyDriver.clipboard().startsWith("# Corvellan Bram — Session Report\n\n**Company:** Nordwind\n"));
    }

    function test_sharingUnfoldsWhatThisDesktopHas() {
        historyDriver.keep("Nordwind", 30);
        const screen = open();
        verify(!control(screen, "shareWays").visible);
        pressNamed(screen, "share");
        verify(control(screen, "shareWays").visible);
        pressNamed(screen, "shareByMail");
        compare(historyDriver.mailed(), "Session report: Nordwind");
        pressNamed(screen, "shareAsFile");
        verify(control(screen, "shareNotice").text.startsWith("Saved as "));
        pressNamed(screen, "share");
        verify(!control(screen, "shareWays").visible);
    }

    function test_backByMouseAndAccessibility_data() {
        return [{ tag: "mouse" }, { tag: "accessibility" }, { tag: "escape" }];
    }

    function test_backByMouseAndAccessibility(data) {
        historyDriver.keep("Nordwind", 30);
        const screen = open();
        const back = control(screen, "back");
        compare(historyDriver.spoken(back).name, "Back");
        verify(back.height >= 28);
        if (data.tag === "mouse")
            press(back);
        else if (data.tag === "escape")
            keyClick(Qt.Key_Escape);
        else
            verify(historyDriver.pressThroughAccessibility(back));
        tryVerify(() => findChild(screen, "summaryForm") === null);
    }

    function test_escapeLeavesTheNoteBeforeThePage() {
        historyDriver.keep("Nordwind", 1, { callId: "c-1" });
        const screen = open();
        const note = control(screen, "feedbackNote");
        note.forceActiveFocus(Qt.TabFocusReason);
        type("good");
        keyClick(Qt.Key_Escape);
        verify(!note.activeFocus);
        compare(note.text, "good");
        verify(findChild(screen, "summaryForm") !== null);
        keyClick(Qt.Key_Escape);
        tryVerify(() => findChild(screen, "summaryForm") === null);
    }

    function test_aLongTranscriptHasOnlyTheLinesInView() {
        const lines = [];
        for (let i = 0; i < 5000; ++i)
            lines.push("[Audio] line " + i);
        historyDriver.keep("Nordwind", 30, { audience: "cold_call", transcript: lines });
        const screen = open();
        const form = control(screen, "summaryForm");
        compare(form.count, 5000);
        verify(form.contentItem.children.length < 100);
        keyClick(Qt.Key_End);
        tryVerify(() => shownTexts(form).includes("line 4999"));
        keyClick(Qt.Key_Home);
        tryVerify(() => shownTexts(form).includes("Copy Transcript") && form.contentY <= form.originY + 1);
    }

    function test_linesBearTheTagOfTheirSpeaker() {
        historyDriver.keep("Nordwind", 30, { audience: "cold_call",
                                             transcript: ["[Mic] a", "[Audio] b", "[Coach] c", "d"] });
        const screen = open();
        const all = shownTexts(control(screen, "summaryForm"));
        compare(all.slice(all.indexOf("Transcript")), ["Transcript", "R", "a", "C", "b", "AI", "c", "?", "d"]);
    }

    function test_everyTextFitsInTheSmallestWindow() {
        historyDriver.keep("Nordwind", 1, { score: 4, train: true, audience: "discovery", callId: "c-1",
                                            points: ["A point that is rather long and has to be wrapped somewhere"],
                                            evidence: ["An evidence that is rather long and has to be wrapped"],
                                            transcript: ["[Mic] A line that is rather long and has to be wrapped"] });
        const screen = open();
        screen.width = 347;
        screen.height = 2000;
        pressNamed(screen, "share");
        draw(screen);
        for (const text of shownTextItems(screen)) {
            verify(!text.truncated, text.text);
            const left = text.mapToItem(screen, 0, 0).x;
            verify(left >= 0 && left + text.width <= screen.width, text.text + " " + left + " " + text.width);
        }
    }
}

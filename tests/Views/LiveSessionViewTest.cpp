#include "Views/LiveSessionView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "FakeHandoffWindow.h"
#include "Support/SessionFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

TEST(FormatTimerTest, minutesNeverRollIntoHours) {
    EXPECT_EQ(formatTimer(0), u"0:00"_s);
    EXPECT_EQ(formatTimer(59), u"0:59"_s);
    EXPECT_EQ(formatTimer(60), u"1:00"_s);
    EXPECT_EQ(formatTimer(3725), u"62:05"_s);
    EXPECT_EQ(formatTimer(36'000'000'000), u"600000000:00"_s);
}

TEST(LiveSessionRulesTest, levelsAreRedAboveSevenTenthsAndYellowAboveFour) {
    const auto color = [](float level) { return LiveSessionView::levelColor(level, ColorRole::orange); };
    EXPECT_EQ(color(0), ColorRole::orange);
    EXPECT_EQ(color(0.4F), ColorRole::orange);
    EXPECT_EQ(color(0.41F), ColorRole::yellow);
    EXPECT_EQ(color(0.7F), ColorRole::yellow);
    EXPECT_EQ(color(0.71F), ColorRole::red);
}

TEST(LiveSessionRulesTest, theDotsColorHangsOnTheLiteralWords) {
    EXPECT_EQ(LiveSessionView::statusColor(u"Listening..."_s), ColorRole::green);
    EXPECT_EQ(LiveSessionView::statusColor(u"Listening"_s), ColorRole::orange);
    EXPECT_EQ(LiveSessionView::statusColor(u"Coaching"_s), ColorRole::cyan);
    EXPECT_EQ(LiveSessionView::statusColor(u"Ready"_s), ColorRole::orange);
}

class LiveSessionViewTest : public ::testing::Test {
protected:
    SessionViewModel& session() { return fixture.session(); }

    SessionFixture fixture;
    FakeHandoffWindow handoffWindow;
    LiveSessionView view{fixture.session(), handoffWindow};
};

TEST_F(LiveSessionViewTest, theTextGrowsInThreeStepsAndRoundAgain) {
    session().setFontScale(1.0);
    EXPECT_EQ(view.fontScaleIcon(), u"textformat.size.smaller"_s);
    view.cycleFontScale();
    EXPECT_EQ(session().fontScale(), 1.5);
    EXPECT_EQ(view.fontScaleIcon(), u"textformat.size"_s);
    view.cycleFontScale();
    EXPECT_EQ(session().fontScale(), 2.0);
    EXPECT_EQ(view.fontScaleIcon(), u"textformat.size.larger"_s);
    view.cycleFontScale();
    EXPECT_EQ(session().fontScale(), 1.0);
}

TEST_F(LiveSessionViewTest, aTextScaleLeftInTheStoreBecomesTheStandardOne) {
    session().setFontScale(1.2);
    EXPECT_EQ(view.fontScaleIcon(), u"textformat.size.smaller"_s);
    view.cycleFontScale();
    EXPECT_EQ(session().fontScale(), 1.0);
}

TEST_F(LiveSessionViewTest, theLayoutsGoRoundAndThePanelIsTold) {
    QStringList modes;
    session().onSessionModeChanged = [&](const QString& mode) { modes.push_back(mode); };
    EXPECT_EQ(view.sessionTab(), SessionTab::full);
    EXPECT_EQ(view.sessionTabIcon(), u"rectangle.split.2x1"_s);
    view.cycleSessionTab();
    EXPECT_EQ(view.sessionTabIcon(), u"rectangle"_s);
    view.cycleSessionTab();
    EXPECT_EQ(view.sessionTabIcon(), u"minus"_s);
    view.cycleSessionTab();
    EXPECT_EQ(view.sessionTab(), SessionTab::full);
    EXPECT_EQ(modes, (QStringList{u"coach"_s, u"mini"_s, u"full"_s}));
    session().onSessionModeChanged = {};
}

TEST_F(LiveSessionViewTest, theLayoutOutlivesASessionAndIsAppliedToTheNext) {
    view.cycleSessionTab();
    fixture.goLive();
    session().stopSession();
    settle();
    EXPECT_EQ(view.sessionTab(), SessionTab::coach);
    QStringList modes;
    session().onSessionModeChanged = [&](const QString& mode) { modes.push_back(mode); };
    view.applyLayout();
    EXPECT_EQ(modes, QStringList{u"coach"_s});
    session().onSessionModeChanged = {};
}

TEST_F(LiveSessionViewTest, theFullLayoutNeedsNoApplying) {
    bool isTold = false;
    session().onSessionModeChanged = [&](const QString&) { isTold = true; };
    view.applyLayout();
    EXPECT_FALSE(isTold) << "the panel begins every call with it";
    session().onSessionModeChanged = {};
}

TEST_F(LiveSessionViewTest, theBuyersTypeIsOneLetter) {
    EXPECT_EQ(view.discLetter(), QString{});
    for (const auto& [type, letter] : {std::pair{DiscType::dominant, u"D"_s},
                                       {DiscType::influential, u"I"_s},
                                       {DiscType::steady, u"S"_s},
                                       {DiscType::conscientious, u"C"_s}}) {
        session().setBuyerDisc({.discType = type, .confidence = DiscConfidence::low});
        EXPECT_EQ(view.discLetter(), letter);
    }
}

TEST_F(LiveSessionViewTest, theMicrophoneIsHeardAboveOnePercent) {
    session().setAudioLevel(0.01F);
    EXPECT_FALSE(view.isMicHeard());
    session().setAudioLevel(0.426F);
    EXPECT_TRUE(view.isMicHeard());
    EXPECT_EQ(view.micLevelText(), u"43%"_s);
    EXPECT_EQ(view.micLevelColor(), paint(ColorRole::yellow));
}

TEST_F(LiveSessionViewTest, aLevelBetweenTwoPercentagesIsWrittenAsTheEvenOne) {
    session().setAudioLevel(0.125F);
    EXPECT_EQ(view.micLevelText(), u"12%"_s);
    session().setSystemAudioLevel(0.375F);
    EXPECT_EQ(view.systemLevelText(), u"38%"_s);
}

TEST_F(LiveSessionViewTest, theOtherSideShowsOnceItSoundsOrStreams) {
    EXPECT_FALSE(view.showsSystem());
    session().setSystemAudioLevel(0.005F);
    EXPECT_TRUE(view.showsSystem());
    EXPECT_FALSE(view.isSystemHeard());
    EXPECT_EQ(view.systemLevelColor(), paint(ColorRole::orange));
    session().setSystemAudioLevel(0);
    EXPECT_FALSE(view.showsSystem());
    session().setCounterpartStreamingText(u"Well"_s);
    EXPECT_TRUE(view.showsSystem());
    EXPECT_EQ(view.systemLevelText(), u"0%"_s);
}

TEST_F(LiveSessionViewTest, theHandoffOpensWhereThereIsOne) {
    view.openHandoff();
    EXPECT_EQ(handoffWindow.shown.size(), 0);
    session().setCachedHandoff(HandoffResponse{.handoffNote = u"# Note"_s});
    view.openHandoff();
    ASSERT_EQ(handoffWindow.shown.size(), 1);
}

TEST_F(LiveSessionViewTest, tagsHaveTheColorsOfTheirSources) {
    EXPECT_EQ(view.tagColor(0), paint(ColorRole::cyan));
    EXPECT_EQ(view.tagColor(1), paint(ColorRole::orange));
    EXPECT_EQ(view.tagColor(2), paint(ColorRole::white, 0.4));
}

TEST_F(LiveSessionViewTest, aLineByAnotherSourceBeginsATurn) {
    auto& lines = session().transcriptLines();
    for (const auto source : {TranscriptSource::mic, TranscriptSource::mic, TranscriptSource::system})
        lines.append({.source = source, .text = u"words"_s});
    const auto startsTurn = [&](int row) {
        return lines.data(lines.index(row), TranscriptModel::startsTurnRole).toBool();
    };
    EXPECT_FALSE(startsTurn(0));
    EXPECT_FALSE(startsTurn(1));
    EXPECT_TRUE(startsTurn(2));
}

TEST_F(LiveSessionViewTest, waitingIsAStageOfTraining) {
    EXPECT_FALSE(view.isWaiting());
    session().setTrainStage(TrainStage::waitingLLM);
    EXPECT_TRUE(view.isWaiting());
}

}  // namespace

}  // namespace corvellan::test

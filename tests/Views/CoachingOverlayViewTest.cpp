#include "Views/CoachingOverlayView.h"

#include <gtest/gtest.h>

#include <functional>
#include <QSignalSpy>

#include "FakeHandoffWindow.h"
#include "Support/SessionFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class CoachingOverlayViewTest : public testing::Test {
protected:
    void startCall(const QString& company) {
        session.startSession({.company = company});
        settle();
    }
    [[nodiscard]] QColor stageText(int cell) { return view.stages()->value(cell, "textColor").value<QColor>(); }
    [[nodiscard]] QColor stageGround(int cell) { return view.stages()->value(cell, "background").value<QColor>(); }

    SessionFixture fixture;
    SessionViewModel& session = fixture.session();
    FakeHandoffWindow handoffWindow;
    CoachingOverlayView view{session, handoffWindow};
};

TEST_F(CoachingOverlayViewTest, aTipKindWithoutAMessageStandsOverTheStatus) {
    session.setStatusText(u"Listening..."_s);
    session.setCoachingType(CoachingType::listen);

    EXPECT_EQ(view.tipLabel(), u"LISTEN"_s);
    EXPECT_FALSE(view.hasMessage());
    EXPECT_EQ(view.message(), u"Listening..."_s);
}

TEST_F(CoachingOverlayViewTest, aMessageTakesThePlaceOfTheStatus) {
    session.setStatusText(u"Coaching"_s);
    QSignalSpy changes{&view, &CoachingOverlayView::messageChanged};

    session.setCoachingMessage(u"Ask about budget"_s);
    session.setStatusText(u"Listening..."_s);

    EXPECT_TRUE(view.hasMessage());
    EXPECT_EQ(view.message(), u"Ask about budget"_s);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(CoachingOverlayViewTest, theChipIsPaintedInTheColorOfItsKind) {
    EXPECT_TRUE(view.tipLabel().isEmpty());

    session.setCoachingType(CoachingType::objectionHandler);

    EXPECT_EQ(view.tipColor(), paint(ColorRole::red));
    EXPECT_EQ(view.tipBackground(), paint(ColorRole::red, 0.15));
}

TEST_F(CoachingOverlayViewTest, onlyHighUrgencyShows) {
    session.setCoachingUrgency(CoachingUrgency::high);
    EXPECT_FALSE(view.isUrgent()) << "the tag row is empty without a kind";
    session.setCoachingType(CoachingType::whisper);
    EXPECT_TRUE(view.isUrgent());
    for (const auto urgency : {CoachingUrgency::medium, CoachingUrgency::low}) {
        session.setCoachingUrgency(urgency);
        EXPECT_FALSE(view.isUrgent());
    }
    session.setCoachingUrgency(std::nullopt);
    EXPECT_FALSE(view.isUrgent());
}

TEST_F(CoachingOverlayViewTest, aColdCallHasNoMeddicAtAll) {
    session.setMeddicScore({.metrics = true});
    session.setCoachingMode(AudienceType::coldCall);

    EXPECT_FALSE(view.showsMeddic());
    EXPECT_EQ(view.modeLabel(), u"Cold Call"_s);
    EXPECT_EQ(view.modeColor(), paint(ColorRole::orange));

    for (const auto mode : {AudienceType::directSale, AudienceType::channelPartner, AudienceType::discovery}) {
        session.setCoachingMode(mode);
        EXPECT_TRUE(view.showsMeddic());
    }
}

TEST_F(CoachingOverlayViewTest, stagesBehindTheCurrentAreGreenAndThoseAheadDark) {
    session.setCallStage(CallStage::demo);

    ASSERT_EQ(view.stages()->rowCount(), 7);
    for (int cell = 0; cell < 7; ++cell) {
        const bool isBehind = cell < 3;
        const bool isCurrent = cell == 3;
        EXPECT_EQ(view.stages()->value(cell, "isCurrent").toBool(), isCurrent) << cell;
        EXPECT_EQ(stageText(cell), isBehind    ? paint(ColorRole::green)
                                   : isCurrent ? paint(ColorRole::cyan)
                                               : paint(ColorRole::white, 0.2))
            << cell;
        EXPECT_EQ(stageGround(cell), isBehind    ? paint(ColorRole::green, 0.15)
                                     : isCurrent ? paint(ColorRole::cyan, 0.15)
                                                 : QColor{Qt::transparent})
            << cell;
    }
}

TEST_F(CoachingOverlayViewTest, stagesOutsideTheLadderLeaveTheWholeBarDark) {
    for (const auto stage : {CallStage::renewal, CallStage::support}) {
        session.setCallStage(CallStage::closing);
        session.setCallStage(stage);
        for (int cell = 0; cell < 7; ++cell) {
            EXPECT_EQ(stageText(cell), paint(ColorRole::white, 0.2)) << cell;
            EXPECT_EQ(stageGround(cell), QColor{Qt::transparent}) << cell;
            EXPECT_FALSE(view.stages()->value(cell, "isCurrent").toBool()) << cell;
        }
    }
}

TEST_F(CoachingOverlayViewTest, theNextStageTellsOfTwoCellsOnly) {
    session.setCallStage(CallStage::demo);
    QSignalSpy changes{view.stages(), &QAbstractItemModel::dataChanged};

    session.setCallStage(CallStage::negotiation);

    EXPECT_EQ(changes.count(), 2);
}

TEST_F(CoachingOverlayViewTest, anEmptyPhaseShowsNoLoneArrow) {
    EXPECT_EQ(view.phaseText(), QString{});
    session.setCallPhase(u""_s);
    EXPECT_EQ(view.phaseText(), QString{});
    session.setCallPhase(u"needs_analysis"_s);
    EXPECT_EQ(view.phaseText(), u"→ Needs Analysis"_s);
}

TEST_F(CoachingOverlayViewTest, theScoreCountsTheCriteriaThatHold) {
    EXPECT_EQ(view.scoreText(), u"0/6"_s);
    EXPECT_EQ(view.scoreColor(), paint(ColorRole::red));

    session.setMeddicScore({.metrics = true, .decisionProcess = true, .identifyPain = true, .champion = true});

    EXPECT_EQ(view.scoreText(), u"4/6"_s);
    EXPECT_EQ(view.scoreColor(), paint(ColorRole::green));
    EXPECT_EQ(view.scoreBars()->value(3, "barColor").value<QColor>(), paint(ColorRole::green));
    EXPECT_EQ(view.scoreBars()->value(4, "barColor").value<QColor>(), paint(ColorRole::white, 0.1));
}

TEST_F(CoachingOverlayViewTest, theChecklistPairsItsOwnLabelsWithTheCriteria) {
    session.setMeddicScore({.economicBuyer = true, .identifyPain = true});

    const QStringList labels{u"Metrics"_s,          u"Economic Buyer"_s, u"Decision Criteria"_s,
                             u"Decision Process"_s, u"Pain"_s,           u"Champion"_s};
    for (int row = 0; row < meddicCriteria; ++row) {
        const bool isMet = row == 1 || row == 4;
        EXPECT_EQ(view.checklist()->value(row, "label").toString(), labels[row]);
        EXPECT_EQ(view.checklist()->value(row, "mark").toString(), isMet ? u"✓"_s : u"✗"_s);
        EXPECT_EQ(view.checklist()->value(row, "markColor").value<QColor>(),
                  isMet ? paint(ColorRole::green) : paint(ColorRole::white, 0.2));
        EXPECT_EQ(view.checklist()->value(row, "labelColor").value<QColor>(),
                  paint(ColorRole::white, isMet ? 0.8 : 0.3));
    }
}

TEST_F(CoachingOverlayViewTest, evidenceShowsWhereItIsPresentWhateverTheCriterionSays) {
    session.setMeddicEvidence({u"40,000 a day"_s, std::nullopt, u"two\nlines"_s});

    EXPECT_EQ(view.checklist()->value(0, "evidence").toString(), u"— 40,000 a day"_s);
    EXPECT_EQ(view.checklist()->value(1, "evidence").toString(), QString{});
    EXPECT_EQ(view.checklist()->value(2, "evidence").toString(), u"— two lines"_s);
    EXPECT_EQ(view.checklist()->value(5, "evidence").toString(), QString{});
    EXPECT_EQ(view.checklist()->value(0, "spoken").toString(), u"Metrics: open — 40,000 a day"_s);
}

TEST_F(CoachingOverlayViewTest, onlyTheRowJustConfirmedIsHighlighted) {
    session.setMeddicJustConfirmed(4);
    for (int row = 0; row < meddicCriteria; ++row)
        EXPECT_EQ(view.checklist()->value(row, "isHighlighted").toBool(), row == 4) << row;

    QSignalSpy changes{view.checklist(), &QAbstractItemModel::dataChanged};
    session.setMeddicJustConfirmed(std::nullopt);

    EXPECT_FALSE(view.checklist()->value(4, "isHighlighted").toBool());
    EXPECT_EQ(changes.count(), 1) << "the other rows keep still";
}

TEST_F(CoachingOverlayViewTest, anUnknownBuyerHasNoConfidence) {
    session.setBuyerDisc({.discType = DiscType::unknown, .confidence = DiscConfidence::high});
    EXPECT_EQ(view.buyerLabel(), u"Unknown"_s);
    EXPECT_EQ(view.buyerColor(), paint(ColorRole::gray));
    EXPECT_EQ(view.buyerConfidence(), QString{});

    session.setBuyerDisc({.discType = DiscType::steady, .confidence = DiscConfidence::medium});
    EXPECT_EQ(view.buyerConfidence(), u"(Medium)"_s);
}

TEST_F(CoachingOverlayViewTest, theMoodIsAnEmojiAndItsNameCapitalised) {
    session.setSentiment(CustomerSentiment::skeptical);
    EXPECT_EQ(view.moodEmoji(), u"🤨"_s);
    EXPECT_EQ(view.moodLabel(), u"Skeptical"_s);
    EXPECT_EQ(view.moodColor(), paint(ColorRole::yellow));
}

TEST_F(CoachingOverlayViewTest, withoutACompanyNeitherRowNorBriefAppears) {
    session.setCrmBrief(u"240 devices"_s);
    view.pressCompanyRow();

    EXPECT_FALSE(view.hasCompany());
    EXPECT_FALSE(view.isBriefShown());
}

TEST_F(CoachingOverlayViewTest, aCompanyWithoutABriefHasNoChevronAndAPressDoesNothing) {
    startCall(u"Nordwind"_s);

    view.pressCompanyRow();

    EXPECT_TRUE(view.hasCompany());
    EXPECT_EQ(view.companySymbol(), u"building.2"_s);
    EXPECT_EQ(view.chevronSymbol(), QString{});
    EXPECT_FALSE(view.isCompanyRowActive());
    EXPECT_FALSE(view.showBrief());
    EXPECT_TRUE(handoffWindow.shown.empty());
}

TEST_F(CoachingOverlayViewTest, aPressFoldsTheBriefOutAndIn) {
    startCall(u"Nordwind"_s);
    session.setCrmBrief(u"<b>240</b> devices"_s);
    EXPECT_EQ(view.chevronSymbol(), u"chevron.down"_s);

    view.pressCompanyRow();
    EXPECT_TRUE(view.isBriefShown());
    EXPECT_EQ(view.chevronSymbol(), u"chevron.up"_s);
    EXPECT_EQ(view.briefText(), u"240 devices"_s);

    view.pressCompanyRow();
    EXPECT_FALSE(view.isBriefShown());
}

TEST_F(CoachingOverlayViewTest, aHandoffWinsOverTheBriefEvenOneThatIsUnfolded) {
    startCall(u"Nordwind"_s);
    session.setCrmBrief(u"240 devices"_s);
    view.pressCompanyRow();
    session.setCachedHandoff(HandoffResponse{.handoffNote = u"# Note"_s});

    view.pressCompanyRow();

    EXPECT_FALSE(view.isBriefShown());
    EXPECT_TRUE(view.showBrief());
    EXPECT_EQ(view.companySymbol(), u"doc.text"_s);
    EXPECT_EQ(view.chevronSymbol(), QString{});
    ASSERT_EQ(handoffWindow.shown.size(), 1U);
    EXPECT_EQ(handoffWindow.shown[0].handoffNote, u"# Note"_s);
}

TEST_F(CoachingOverlayViewTest, anUnfoldedBriefStaysSoOverSessions) {
    startCall(u"Nordwind"_s);
    session.setCrmBrief(u"240 devices"_s);
    view.pressCompanyRow();

    session.stopSession();
    settle();
    startCall(u"Ostwind"_s);

    EXPECT_TRUE(view.showBrief());
}

TEST_F(CoachingOverlayViewTest, theErrorStandsAsTheSessionTellsIt) {
    session.setErrorMessage(u"<b>Broken</b>"_s);
    EXPECT_EQ(view.errorMessage(), u"<b>Broken</b>"_s);
    session.setErrorMessage(std::nullopt);
    EXPECT_EQ(view.errorMessage(), QString{});
}

TEST_F(CoachingOverlayViewTest, endSessionAsksTheServerToFinish) {
    fixture.goLive();
    view.endSession();
    settle();
    ASSERT_FALSE(fixture.ws->sent.empty());
    EXPECT_TRUE(std::holds_alternative<ClientMsg::EndSession>(fixture.ws->sent.back().value));
}

TEST_F(CoachingOverlayViewTest, everyPropertyThatItReadsIsShownAnew) {
    using View = CoachingOverlayView;
    const auto tells = [this](void (View::*signal)(), const std::function<void()>& change) {
        QSignalSpy told{&view, signal};
        change();
        return told.count() > 0;
    };
    EXPECT_TRUE(tells(&View::messageChanged, [this] { session.setStatusText(u"Listening..."_s); }));
    EXPECT_TRUE(tells(&View::messageChanged, [this] { session.setCoachingMessage(u"Ask"_s); }));
    EXPECT_TRUE(tells(&View::tipKindChanged, [this] { session.setCoachingType(CoachingType::listen); }));
    EXPECT_TRUE(tells(&View::tipKindChanged, [this] { session.setCoachingUrgency(CoachingUrgency::high); }));
    EXPECT_TRUE(tells(&View::productHintChanged, [this] { session.setProductHint(u"Plan"_s); }));
    EXPECT_TRUE(tells(&View::modeChanged, [this] { session.setCoachingMode(AudienceType::coldCall); }));
    EXPECT_TRUE(tells(&View::stageChanged, [this] { session.setCallStage(CallStage::demo); }));
    EXPECT_TRUE(tells(&View::phaseChanged, [this] { session.setCallPhase(u"intro"_s); }));
    EXPECT_TRUE(tells(&View::scoreChanged, [this] { session.setMeddicScore({.champion = true}); }));
    EXPECT_TRUE(tells(&View::buyerChanged, [this] { session.setBuyerDisc({.discType = DiscType::steady}); }));
    EXPECT_TRUE(tells(&View::moodChanged, [this] { session.setSentiment(CustomerSentiment::eager); }));
    EXPECT_TRUE(tells(&View::companyChanged, [this] { session.setCurrentCompany(u"Nordwind"_s); }));
    EXPECT_TRUE(tells(&View::companyChanged, [this] { session.setCrmBrief(u"240 devices"_s); }));
    EXPECT_TRUE(tells(&View::briefTextChanged, [this] { session.setCrmBrief(u"250 devices"_s); }));
    EXPECT_TRUE(tells(&View::companyChanged, [this] { session.setCachedHandoff(HandoffResponse{}); }));
    EXPECT_TRUE(tells(&View::speakingChanged, [this] { session.setIsTtsPlaying(true); }));
    EXPECT_TRUE(tells(&View::errorMessageChanged, [this] { session.setErrorMessage(u"Broken"_s); }));
    EXPECT_TRUE(tells(&View::fsChanged, [this] { session.setFontScale(1.0); }));

    // And the rows of the checklist tell of themselves.
    QSignalSpy rows{view.checklist(), &QAbstractItemModel::dataChanged};
    session.setMeddicEvidence({u"quote"_s});
    EXPECT_EQ(rows.count(), 1);
    session.setMeddicJustConfirmed(2);
    EXPECT_EQ(rows.count(), 2);
}

TEST_F(CoachingOverlayViewTest, theTextScaleIsTheSessions) {
    QSignalSpy changes{&view, &CoachingOverlayView::fsChanged};
    session.setFontScale(2.0);
    EXPECT_EQ(view.fs(), 2.0);
    EXPECT_EQ(changes.count(), 1);
}

}  // namespace

}  // namespace corvellan::test

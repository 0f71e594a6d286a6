#include <gtest/gtest.h>

#include <QList>

#include "Models/Types.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// Every table stands in the order of its enumeration, and its words lead back to their rows.
template <typename Rows, typename FromRaw>
void expectConsistent(const Rows& rows, std::size_t cases, FromRaw fromRaw) {
    ASSERT_EQ(rows.size(), cases);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(rows[i].value), i);
        EXPECT_EQ(fromRaw(rows[i].raw), rows[i].value);
        EXPECT_EQ(rawValue(rows[i].value), rows[i].raw);
    }
    EXPECT_EQ(fromRaw(""), std::nullopt);
    EXPECT_EQ(fromRaw("no such word"), std::nullopt);
}

}  // namespace

TEST(TypesTest, callStagesHaveTheirWordAbbreviationAndLevel) {
    expectConsistent(callStageRows, 9, callStage);
    const auto expect = [](CallStage stage, std::string_view raw, const QString& letters, int rank) {
        EXPECT_EQ(rawValue(stage), raw);
        EXPECT_EQ(abbreviation(stage), letters);
        EXPECT_EQ(level(stage), rank) << raw;
    };
    expect(CallStage::opening, "opening", u"OPN"_s, 0);
    expect(CallStage::discovery, "discovery", u"DIS"_s, 1);
    expect(CallStage::qualification, "qualification", u"QUA"_s, 2);
    expect(CallStage::demo, "demo", u"DEM"_s, 3);
    expect(CallStage::negotiation, "negotiation", u"NEG"_s, 4);
    expect(CallStage::objectionHandling, "objection_handling", u"OBJ"_s, 5);
    expect(CallStage::closing, "closing", u"CLS"_s, 6);
    expect(CallStage::support, "support", u"SUP"_s, 0);
    expect(CallStage::renewal, "renewal", u"REN"_s, 0);
}

TEST(TypesTest, coachingTypesHaveTheirWordBadgeAndColor) {
    expectConsistent(coachingTypeRows, 7, coachingType);
    const auto expect = [](CoachingType type, std::string_view raw, const QString& badge, ColorRole role) {
        EXPECT_EQ(rawValue(type), raw);
        EXPECT_EQ(label(type), badge);
        EXPECT_EQ(color(type), role) << raw;
    };
    expect(CoachingType::whisper, "whisper", u"WHISPER"_s, ColorRole::gold);
    expect(CoachingType::questionPrompt, "question_prompt", u"QUESTION"_s, ColorRole::cyan);
    expect(CoachingType::objectionHandler, "objection_handler", u"OBJECTION"_s, ColorRole::red);
    expect(CoachingType::dataPoint, "data_point", u"DATA"_s, ColorRole::green);
    expect(CoachingType::stageTransition, "stage_transition", u"STAGE"_s, ColorRole::purple);
    expect(CoachingType::silence, "silence", u"SILENCE"_s, ColorRole::gray);
    expect(CoachingType::listen, "listen", u"LISTEN"_s, ColorRole::gray);
}

TEST(TypesTest, urgenciesConfidencesAndSidesHaveTheirWordsInOrder) {
    expectConsistent(coachingUrgencyRows, 3, coachingUrgency);
    EXPECT_EQ(coachingUrgency("high"), CoachingUrgency::high);
    EXPECT_EQ(coachingUrgency("medium"), CoachingUrgency::medium);
    EXPECT_EQ(coachingUrgency("low"), CoachingUrgency::low);
    EXPECT_LT(CoachingUrgency::high, CoachingUrgency::low);

    expectConsistent(discConfidenceRows, 3, discConfidence);
    EXPECT_EQ(discConfidence("low"), DiscConfidence::low);
    EXPECT_EQ(discConfidence("medium"), DiscConfidence::medium);
    EXPECT_EQ(discConfidence("high"), DiscConfidence::high);
    EXPECT_LT(DiscConfidence::low, DiscConfidence::high);

    expectConsistent(audioSourceTagRows, 2, audioSourceTag);
    EXPECT_EQ(audioSourceTag("mic"), AudioSourceTag::mic);
    EXPECT_EQ(audioSourceTag("system"), AudioSourceTag::system);
}

TEST(TypesTest, customerSentimentsHaveTheirWordFaceAndColor) {
    expectConsistent(customerSentimentRows, 8, customerSentiment);
    const auto expect = [](CustomerSentiment sentiment, std::string_view raw, char32_t face, Tint tint) {
        EXPECT_EQ(rawValue(sentiment), raw);
        EXPECT_EQ(emoji(sentiment).toUcs4(), QList<uint>{face}) << raw;
        EXPECT_EQ(color(sentiment), tint) << raw;
    };
    expect(CustomerSentiment::positive, "positive", 0x1F60A, {ColorRole::green});
    expect(CustomerSentiment::neutral, "neutral", 0x1F610, {ColorRole::white, 0.6});
    expect(CustomerSentiment::skeptical, "skeptical", 0x1F928, {ColorRole::yellow});
    expect(CustomerSentiment::frustrated, "frustrated", 0x1F624, {ColorRole::red});
    expect(CustomerSentiment::confused, "confused", 0x1F615, {ColorRole::yellow});
    expect(CustomerSentiment::interested, "interested", 0x1F929, {ColorRole::green});
    expect(CustomerSentiment::resistant, "resistant", 0x1F645, {ColorRole::red});
    expect(CustomerSentiment::eager, "eager", 0x1F525, {ColorRole::green});
}

TEST(TypesTest, discTypesHaveOneLabelForTheOverlayAndOneForThePicker) {
    expectConsistent(discTypeRows, 5, discType);
    const auto expect = [](DiscType type, std::string_view raw, const QString& overlay, const QString& picker,
                           Tint tint, ColorRole role) {
        EXPECT_EQ(rawValue(type), raw);
        EXPECT_EQ(overlayLabel(type), overlay);
        EXPECT_EQ(label(type), picker);
        EXPECT_EQ(color(type), tint) << raw;
        EXPECT_EQ(overlayColor(type), role) << raw;
    };
    expect(DiscType::dominant, "dominant", u"Dominant"_s, u"Dominant"_s, {ColorRole::red, 0.7},
           ColorRole::discDominant);
    expect(DiscType::influential, "influential", u"Influential"_s, u"Influential"_s, {ColorRole::yellow, 0.7},
           ColorRole::discInfluential);
    expect(DiscType::steady, "steady", u"Steady"_s, u"Steady"_s, {ColorRole::green, 0.7}, ColorRole::discSteady);
    expect(DiscType::conscientious, "conscientious", u"Conscientious"_s, u"Conscientious"_s, {ColorRole::blue, 0.7},
           ColorRole::discConscientious);
    expect(DiscType::unknown, "unknown", u"Unknown"_s, u"Random"_s, {ColorRole::gray, 0.5}, ColorRole::gray);
}

TEST(TypesTest, audienceTypesHaveTheirWordLabelIconAndColor) {
    expectConsistent(audienceTypeRows, 4, audienceType);
    const auto expect = [](AudienceType audience, std::string_view raw, const QString& text, const QString& symbol,
                           ColorRole role) {
        EXPECT_EQ(rawValue(audience), raw);
        EXPECT_EQ(label(audience), text);
        EXPECT_EQ(icon(audience), symbol);
        EXPECT_EQ(accentColor(audience), role) << raw;
    };
    expect(AudienceType::directSale, "direct_sale", u"Sales"_s, u"person.2"_s, ColorRole::blue);
    expect(AudienceType::channelPartner, "channel_partner", u"Channel"_s, u"building.2"_s, ColorRole::purple);
    expect(AudienceType::coldCall, "cold_call", u"Cold Call"_s, u"phone.arrow.up.right"_s, ColorRole::orange);
    expect(AudienceType::discovery, "discovery", u"Discovery"_s, u"magnifyingglass"_s, ColorRole::green);
}

TEST(TypesTest, callGoalsHaveTheirWordLabelIconAndColor) {
    expectConsistent(callGoalRows, 7, callGoal);
    const auto expect = [](CallGoal goal, std::string_view raw, const QString& text, const QString& symbol,
                           ColorRole role) {
        EXPECT_EQ(rawValue(goal), raw);
        EXPECT_EQ(label(goal), text);
        EXPECT_EQ(icon(goal), symbol);
        EXPECT_EQ(color(goal), role) << raw;
    };
    expect(CallGoal::discovery, "discovery", u"Discovery"_s, u"magnifyingglass"_s, ColorRole::blue);
    expect(CallGoal::demoFollowup, "demo_followup", u"Demo"_s, u"play.rectangle"_s, ColorRole::purple);
    expect(CallGoal::budgetTimeline, "budget_timeline", u"Budget"_s, u"dollarsign.circle"_s, ColorRole::green);
    expect(CallGoal::closeNegotiate, "close_negotiate", u"Close"_s, u"checkmark.seal"_s, ColorRole::orange);
    expect(CallGoal::supportEscalation, "support_escalation", u"Support"_s, u"wrench.and.screwdriver"_s,
           ColorRole::red);
    expect(CallGoal::renewal, "renewal", u"Renewal"_s, u"arrow.triangle.2.circlepath"_s, ColorRole::cyan);
    expect(CallGoal::upsell, "upsell", u"Upsell"_s, u"arrow.up.right"_s, ColorRole::mint);
}

TEST(TypesTest, callOutcomesHaveANameAndAnIconEach) {
    expectConsistent(callOutcomeRows, 4, callOutcome);
    EXPECT_EQ(callOutcome("demo_booked"), CallOutcome::demoBooked);
    EXPECT_EQ(callOutcome("follow_up"), CallOutcome::followUp);
    EXPECT_EQ(callOutcome("no_interest"), CallOutcome::noInterest);
    EXPECT_EQ(callOutcome("voicemail"), CallOutcome::voicemail);
    for (const auto& row : callOutcomeRows) {
        EXPECT_FALSE(displayName(row.value).isEmpty());
        EXPECT_FALSE(icon(row.value).isEmpty());
    }
}

TEST(TypesTest, theScoreCountsTheCriteriaThatHold) {
    EXPECT_EQ(MeddicScore{}.score(), 0);
    EXPECT_EQ((MeddicScore{true, true, true, true, true, true}.score()), 6);
    const MeddicScore some{.economicBuyer = true, .champion = true};
    EXPECT_EQ(some.score(), 2);
    EXPECT_EQ(some.values(), (std::array{false, true, false, false, false, true}));
}

TEST(TypesTest, criteriaAreNamedInTheOrderOfTheirValues) {
    EXPECT_EQ(meddicDisplayNames, (std::array<std::string_view, 6>{"Metrics", "Economic Buyer", "Decision Criteria",
                                                                   "Decision Process", "Identify Pain", "Champion"}));
}

TEST(TypesTest, aBuyerIsUnknownUntilTold) {
    EXPECT_EQ(BuyerDisc{}.discType, DiscType::unknown);
    EXPECT_EQ(BuyerDisc{}.confidence, DiscConfidence::low);
    EXPECT_TRUE(BuyerDisc{}.signals_.isEmpty());
}

}  // namespace corvellan

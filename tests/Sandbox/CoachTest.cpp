#include "Sandbox/Coach.h"

#include <gtest/gtest.h>

#include <set>

#include "Sandbox/CallScript.h"
#include "Sandbox/Phrases.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using sandbox::CallScript;
using sandbox::Coach;
using sandbox::findPhrase;
using sandbox::Negation;
namespace rules = sandbox::rules;

class CoachTest : public testing::Test {
protected:
    CoachingPayload customer(const QString& text) {
        auto tip = coach.hear(AudioSourceTag::system, text);
        EXPECT_TRUE(tip) << text.toStdString();
        return tip.value_or(CoachingPayload{});
    }
    std::optional<CoachingPayload> salesperson(const QString& text) { return coach.hear(AudioSourceTag::mic, text); }

    Coach coach{StartSessionPayload{}};
};

}  // namespace

// MARK: - Phrases

TEST(PhrasesTest, cutsSentences) {
    const auto said = sandbox::sentences(u"It's 3.5 hours.  Isn't it?\nYes! And more"_s);
    ASSERT_EQ(said.size(), 4U);
    EXPECT_EQ(said[0].text, u"It's 3.5 hours."_s);
    EXPECT_EQ(said[0].words, (QStringList{u"its"_s, u"3"_s, u"5"_s, u"hours"_s}));
    EXPECT_FALSE(said[0].isQuestion);
    EXPECT_EQ(said[1].text, u"Isn't it?"_s);
    EXPECT_TRUE(said[1].isQuestion);
    EXPECT_EQ(said[3].text, u"And more"_s);
    EXPECT_TRUE(sandbox::sentences(u" ... ?! \n"_s).empty());
}

struct PhraseCase {
    const char16_t* text;
    const char* phrases;
    bool isFound;
};

class PhraseCases : public testing::TestWithParam<PhraseCase> {};

TEST_P(PhraseCases, hold) {
    EXPECT_EQ(
        findPhrase(sandbox::sentences(QStringView{GetParam().text}.toString()), GetParam().phrases, Negation::spoils)
            .has_value(),
        GetParam().isFound);
}

INSTANTIATE_TEST_SUITE_P(Phrases, PhraseCases,
                         testing::Values(PhraseCase{u"Maria signs off the budget.", "x|signs off", true},
                                         PhraseCase{u"He designs offers.", "signs off", false},
                                         PhraseCase{u"SIGNS, OFF", "signs off", true},
                                         PhraseCase{u"He signs. Off he goes.", "signs off", false},
                                         PhraseCase{u"We integrated it.", "integrat*", true},
                                         PhraseCase{u"A reintegration.", "integrat*", false},
                                         PhraseCase{u"It takes 20 hours.", "# hours", true},
                                         PhraseCase{u"It takes twenty hours.", "# hours", false},
                                         PhraseCase{u"It saves 15%.", "percent", true},
                                         PhraseCase{u"It is not a real problem.", "real problem", false},
                                         PhraseCase{u"We don't struggle.", "struggl*", false},
                                         PhraseCase{u"Not today, but it is a real problem.", "real problem", true},
                                         PhraseCase{u"I want a real problem solved.", "real problem", true},
                                         PhraseCase{u"No struggle here. We struggle there.", "struggl*", true},
                                         PhraseCase{u"I can’t afford it.", "cant afford", true},
                                         PhraseCase{u"Anything", "", false}));

// MARK: - Tables

TEST(CoachRulesTest, everyTipHasAtMostTenWords) {
    EXPECT_EQ(rules::wordCount("  one two  three "), 3);
    const auto check = [](const rules::Tip& tip) {
        EXPECT_FALSE(tip.text.empty());
        EXPECT_LE(tableText(tip.text).split(u' ', Qt::SkipEmptyParts).size(), 10) << tip.text;
    };
    for (const auto& rule : rules::criterionRules()) {
        check(rule.won);
        check(rule.question);
    }
    for (const auto& text : rules::stageTexts())
        check(text.entered);
    for (const auto& rule : rules::objectionRules())
        check(rule.answer);
    for (const auto& rule : rules::moodRules())
        if (rule.tip)
            check(*rule.tip);
    for (const auto& rule : rules::habitRules())
        check(rule.tip);
    for (const auto& tip :
         {rules::objectionHandled(), rules::afterQuestion(), rules::afterMonologue(), rules::nothingOpen()})
        check(tip);
}

TEST(CoachRulesTest, everyPhraseIsWrittenAsItIsSearchedFor) {
    const auto check = [](std::string_view phrases) {
        for (const auto& phrase : tableText(phrases).split(u'|')) {
            EXPECT_FALSE(phrase.trimmed().isEmpty()) << phrases;
            // A phrase that is not found in itself is never found.
            QString itself = phrase;
            itself.replace(u'#', u'7').remove(u'*');
            EXPECT_TRUE(findPhrase(sandbox::sentences(itself), phrase.toStdString())) << phrase.toStdString();
        }
    };
    for (const auto& rule : rules::criterionRules())
        check(rule.phrases);
    for (const auto& rule : rules::stageRules())
        check(rule.phrases);
    for (const auto& rule : rules::objectionRules())
        check(rule.phrases);
    for (const auto& rule : rules::discRules())
        check(rule.phrases);
    for (const auto& rule : rules::moodRules())
        check(rule.phrases);
    for (const auto& rule : rules::productRules())
        check(rule.phrases);
    for (const auto& rule : rules::habitRules())
        check(rule.phrases);
}

TEST(CoachRulesTest, stageTextsStandInTheOrderOfTheStages) {
    for (std::size_t i = 0; i < rules::stageTexts().size(); ++i)
        EXPECT_EQ(static_cast<std::size_t>(rules::stageTexts()[i].stage), i);
}

// MARK: - Criteria

struct CriterionCase {
    int index;
    const char16_t* sentence;
};

class CriterionCases : public testing::TestWithParam<CriterionCase> {};

TEST_P(CriterionCases, areWonByWhatTheCustomerSays) {
    Coach coach{StartSessionPayload{}};
    const QString sentence = QStringView{GetParam().sentence}.toString();
    const auto tip = coach.hear(AudioSourceTag::system, u"Well. "_s + sentence + u" So it is."_s);
    ASSERT_TRUE(tip);
    std::array<bool, meddicCriteria> expected{};
    expected.at(GetParam().index) = true;
    EXPECT_EQ(tip->state.meddic.values(), expected);
    EXPECT_EQ(tip->state.meddicScore, 1);
    EXPECT_EQ(tip->state.meddicEvidence->at(GetParam().index), sentence);
    EXPECT_EQ(tip->message, tableText(rules::criterionRules()[GetParam().index].won.text));
}

INSTANTIATE_TEST_SUITE_P(Criteria, CriterionCases,
                         testing::Values(CriterionCase{0, u"We spend twenty hours a week on it."},
                                         CriterionCase{0, u"Returns went up by 12 %."},
                                         CriterionCase{1, u"Our director signs off such things."},
                                         CriterionCase{2, u"It must run in our own data centre."},
                                         CriterionCase{3, u"Legal review comes next."},
                                         CriterionCase{4, u"Planning is a real problem for us."},
                                         CriterionCase{5, u"I will bring it to the board."}));

TEST_F(CoachTest, winsNothingByAQuestion) {
    EXPECT_EQ(customer(u"Must we go through procurement with you?"_s).state.meddicScore, 0);
}

TEST_F(CoachTest, winsNothingByWhatTheSalespersonSays) {
    std::ignore = salesperson(u"Your director signs off the budget, and it is a real problem for you."_s);
    EXPECT_EQ(coach.state().meddic.score(), 0);
}

TEST_F(CoachTest, winsNothingByADenial) {
    EXPECT_EQ(customer(u"That is not a real problem here."_s).state.meddicScore, 0);
}

TEST_F(CoachTest, neverTakesACriterionBackAndKeepsTheFirstQuote) {
    std::ignore = customer(u"Planning is a real problem for us."_s);
    std::ignore = customer(u"We waste time on it."_s);
    const auto state = customer(u"It is not a real problem any more."_s).state;
    EXPECT_TRUE(state.meddic.identifyPain);
    EXPECT_EQ(state.meddicEvidence->at(4), u"Planning is a real problem for us."_s);
}

TEST_F(CoachTest, tipsTheFirstOfTwoCriteriaAndWinsBoth) {
    const auto tip = customer(u"Planning is a real problem for us. My boss signs off the budget."_s);
    EXPECT_EQ(tip.state.meddicScore, 2);
    EXPECT_EQ(tip.message, u"Economic buyer named. Ask to meet this person."_s);
}

TEST_F(CoachTest, quotesALongSentenceInPart) {
    const auto tip = customer(u"It is a real problem for us "_s + u"and so on "_s.repeated(50));
    EXPECT_EQ(tip.state.meddicEvidence->at(4)->size(), 120);
}

// MARK: - Stage

TEST_F(CoachTest, movesUpTheLadderOnly) {
    EXPECT_EQ(coach.state().callStage, CallStage::opening);
    EXPECT_EQ(coach.state().callPhase, u"Building rapport"_s);
    const auto tip = salesperson(u"How do you plan your tours?"_s);
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->coachingType, CoachingType::stageTransition);
    EXPECT_EQ(tip->state.callStage, CallStage::discovery);
    EXPECT_EQ(tip->state.callPhase, u"Exploring needs"_s);
    std::ignore = salesperson(u"Let me show you."_s);
    EXPECT_EQ(coach.state().callStage, CallStage::demo);
    std::ignore = salesperson(u"Tell me about your budget. Who decides?"_s);
    EXPECT_EQ(coach.state().callStage, CallStage::demo);
}

TEST_F(CoachTest, handlesAnObjectionAndComesBackFromIt) {
    std::ignore = salesperson(u"Let me show you."_s);
    const auto objection = customer(u"That is too expensive."_s);
    EXPECT_EQ(objection.coachingType, CoachingType::objectionHandler);
    EXPECT_EQ(objection.urgency, CoachingUrgency::high);
    EXPECT_EQ(objection.state.callStage, CallStage::objectionHandling);
    EXPECT_EQ(objection.state.callPhase, u"Answering doubts"_s);
    // What the salesperson answers does not end it.
    std::ignore = salesperson(u"I hear you."_s);
    EXPECT_EQ(coach.state().callStage, CallStage::objectionHandling);
    const auto after = customer(u"I see."_s);
    EXPECT_EQ(after.message, u"Doubt answered. Confirm it, then move on."_s);
    EXPECT_EQ(after.state.callStage, CallStage::demo);
}

struct ObjectionCase {
    const char16_t* text;
    const char16_t* tip;
};

class ObjectionCases : public testing::TestWithParam<ObjectionCase> {};

TEST_P(ObjectionCases, getTheirAnswer) {
    Coach coach{StartSessionPayload{}};
    const auto tip = coach.hear(AudioSourceTag::system, QStringView{GetParam().text}.toString());
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->message, QStringView{GetParam().tip}.toString());
    EXPECT_EQ(tip->coachingType, CoachingType::objectionHandler);
}

INSTANTIATE_TEST_SUITE_P(
    Objections, ObjectionCases,
    testing::Values(ObjectionCase{u"We have no budget.", u"Don't defend the price. Ask what waiting costs."},
                    ObjectionCase{u"It's not the right time.", u"Ask what changes if they wait."},
                    ObjectionCase{u"We already have a tool.", u"Ask what they would improve there."},
                    ObjectionCase{u"That is not my decision.", u"Offer to join the talk with the decider."},
                    ObjectionCase{u"I'm not convinced.", u"Name a customer like them, with figures."}));

TEST_F(CoachTest, turnsToSupportEarlyInACallOnly) {
    EXPECT_EQ(customer(u"We have an open ticket."_s).state.callStage, CallStage::support);
    std::ignore = salesperson(u"How do you work today?"_s);
    EXPECT_EQ(coach.state().callStage, CallStage::support);
    std::ignore = salesperson(u"It comes to ten euros a month."_s);
    EXPECT_EQ(coach.state().callStage, CallStage::negotiation);
    EXPECT_EQ(customer(u"But there was an outage."_s).state.callStage, CallStage::negotiation);
}

TEST_F(CoachTest, turnsToRenewal) {
    EXPECT_EQ(customer(u"Our contract ends in May."_s).state.callStage, CallStage::renewal);
}

TEST(CoachGoalTest, startsWhereTheGoalsSay) {
    using Goals = std::vector<CallGoal>;
    const auto stageWith = [](Goals goals) {
        return Coach{StartSessionPayload{.goals = std::move(goals)}}.state().callStage;
    };
    EXPECT_EQ(stageWith({CallGoal::upsell, CallGoal::renewal}), CallStage::renewal);
    EXPECT_EQ(stageWith({CallGoal::supportEscalation}), CallStage::support);
    EXPECT_EQ(stageWith({CallGoal::discovery}), CallStage::opening);
}

// MARK: - DISC and mood

TEST_F(CoachTest, readsATypeFromTwoSignsAndGrowsSurer) {
    EXPECT_EQ(customer(u"Keep it brief."_s).state.disc, BuyerDisc{});
    auto disc = customer(u"What is the bottom line?"_s).state.disc;
    EXPECT_EQ(disc.discType, DiscType::dominant);
    EXPECT_EQ(disc.confidence, DiscConfidence::low);
    EXPECT_EQ(disc.signals_, u"keep it brief, bottom line"_s);
    disc = customer(u"Quickly, please."_s).state.disc;
    EXPECT_EQ(disc.confidence, DiscConfidence::medium);
    std::ignore = customer(u"I want results."_s);
    EXPECT_EQ(customer(u"And fast."_s).state.disc.confidence, DiscConfidence::high);
}

TEST_F(CoachTest, keepsATypeUntilAnotherHasMoreSigns) {
    std::ignore = customer(u"Keep it brief. And quickly."_s);
    std::ignore = customer(u"Show me the documentation. I want it in detail."_s);
    EXPECT_EQ(coach.state().disc.discType, DiscType::dominant);
    std::ignore = customer(u"I need accurate data."_s);
    EXPECT_EQ(coach.state().disc.discType, DiscType::conscientious);
}

struct MoodCase {
    const char16_t* text;
    CustomerSentiment mood;
};

class MoodCases : public testing::TestWithParam<MoodCase> {};

TEST_P(MoodCases, areRead) {
    Coach coach{StartSessionPayload{}};
    const auto tip = coach.hear(AudioSourceTag::system, QStringView{GetParam().text}.toString());
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->state.sentiment, GetParam().mood);
}

INSTANTIATE_TEST_SUITE_P(Moods, MoodCases,
                         testing::Values(MoodCase{u"That is great.", CustomerSentiment::positive},
                                         MoodCase{u"We are in Hamburg.", CustomerSentiment::neutral},
                                         MoodCase{u"I'm not sure.", CustomerSentiment::skeptical},
                                         MoodCase{u"I am fed up.", CustomerSentiment::frustrated},
                                         MoodCase{u"What do you mean?", CustomerSentiment::confused},
                                         MoodCase{u"Tell me more.", CustomerSentiment::interested},
                                         MoodCase{u"Forget it.", CustomerSentiment::resistant},
                                         MoodCase{u"Let's do it.", CustomerSentiment::eager},
                                         MoodCase{u"That is not good.", CustomerSentiment::neutral}));

TEST_F(CoachTest, letsAMoodFadeAfterThreeUtterancesWithoutASign) {
    std::ignore = customer(u"That is great."_s);
    std::ignore = customer(u"We are in Hamburg."_s);
    EXPECT_EQ(customer(u"On the river."_s).state.sentiment, CustomerSentiment::positive);
    EXPECT_EQ(customer(u"With a harbour."_s).state.sentiment, CustomerSentiment::neutral);
}

// MARK: - Tips

TEST_F(CoachTest, asksForWhatIsOpenOneAfterAnother) {
    EXPECT_EQ(customer(u"We are in Hamburg."_s).message, u"Ask what annoys them most today."_s);
    EXPECT_EQ(customer(u"On the river."_s).message, u"Ask what the problem costs them each week."_s);
    std::ignore = customer(u"My boss signs off the budget."_s);
    const auto tip = customer(u"With a harbour."_s);
    EXPECT_EQ(tip.message, u"Ask what the right tool must do."_s);
    EXPECT_EQ(tip.coachingType, CoachingType::questionPrompt);
}

TEST_F(CoachTest, hasNothingToAskWhenAllIsWon) {
    std::ignore = customer(
        u"Ten percent. My boss signs off. It must be fast. We decide by May. A real problem. I will push it."_s);
    EXPECT_EQ(coach.state().meddicScore, 6);
    EXPECT_EQ(customer(u"We are in Hamburg."_s).message, u"All six criteria won. Agree next steps."_s);
}

TEST_F(CoachTest, keepsQuietAfterAPriceAndListensAfterAQuestion) {
    auto tip = salesperson(u"It comes to ten euros."_s);
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->coachingType, CoachingType::silence);
    tip = salesperson(u"Is that so?"_s);
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->coachingType, CoachingType::listen);
}

TEST_F(CoachTest, saysNothingToASalespersonWhoDoesNothingSpecial) {
    EXPECT_FALSE(salesperson(u"The weather is fine."_s));
}

TEST_F(CoachTest, noticesAMonologue) {
    EXPECT_FALSE(salesperson(u"word "_s.repeated(45)));
    const auto tip = salesperson(u"word "_s.repeated(46));
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->message, u"You talk a lot. Ask something."_s);
}

TEST_F(CoachTest, hintsAtAProductOnlyWithTheUtteranceThatSpeaksOfIt) {
    EXPECT_EQ(customer(u"It lives in spreadsheets."_s).productHint, u"Import: spreadsheets become plans in minutes"_s);
    EXPECT_FALSE(customer(u"We are in Hamburg."_s).productHint);
}

TEST_F(CoachTest, takesAnUtteranceWithoutWordsForNone) {
    EXPECT_FALSE(coach.hear(AudioSourceTag::system, u"\n"_s));
    EXPECT_FALSE(coach.hear(AudioSourceTag::system, u" ... "_s));
    EXPECT_EQ(coach.turns(), 0);
}

TEST_F(CoachTest, tipsAfterAnUtteranceOfUnknownWords) {
    EXPECT_EQ(customer(u"(3.2 s of speech)"_s).coachingType, CoachingType::questionPrompt);
}

TEST_F(CoachTest, sumsTheCallUp) {
    std::ignore = salesperson(u"How do you work today? And who decides?"_s);
    std::ignore = customer(u"It is a real problem for us."_s);
    std::ignore = customer(u"But it is too expensive."_s);
    EXPECT_EQ(coach.coachingPoints(),
              (QStringList{u"Confirmed 1 of 6: Identify Pain."_s,
                           u"Still open: Metrics, Economic Buyer, Decision Criteria, Decision Process, Champion."_s,
                           u"Objections raised: price. The last one is unanswered."_s,
                           u"You spoke 40 % of the words. A good balance."_s, u"You asked 1 question."_s,
                           u"No next step was agreed. Fix one within a day."_s}));
}

TEST_F(CoachTest, sumsAnEmptyCallUp) {
    EXPECT_EQ(coach.coachingPoints().first(), u"None of the six criteria was confirmed."_s);
    EXPECT_TRUE(coach.coachingPoints().contains(u"You asked no question."_s));
}

TEST(CompanyBriefTest, knowsSomeCompaniesAndSaysSoOfOthers) {
    EXPECT_TRUE(sandbox::companyBrief(u"  Northwind Ltd"_s).startsWith(u"Northwind: retailer"_s));
    EXPECT_TRUE(sandbox::companyBrief(u"Somebody"_s).startsWith(u"No earlier contact."_s));
}

TEST(DiscoveryCallTest, bringsEveryKindOfTipAndWinsEverything) {
    const auto script = CallScript::load(u"discovery-call"_s);
    ASSERT_TRUE(script);
    Coach coach{StartSessionPayload{}};
    std::set<CoachingType> types;
    std::set<CallStage> stages;
    MeddicScore before;
    for (const auto& line : script->lines) {
        const auto tip = coach.hear(line.side, line.text);
        if (!tip)
            continue;
        types.insert(tip->coachingType);
        stages.insert(tip->state.callStage);
        for (int i = 0; i < meddicCriteria; ++i)
            EXPECT_GE(tip->state.meddic.values().at(i), before.values().at(i));
        before = tip->state.meddic;
    }
    EXPECT_EQ(types.size(), coachingTypeRows.size());
    for (const auto stage : {CallStage::discovery, CallStage::qualification, CallStage::demo, CallStage::negotiation,
                             CallStage::objectionHandling, CallStage::closing})
        EXPECT_TRUE(stages.contains(stage)) << rawValue(stage);
    const auto state = coach.state();
    EXPECT_EQ(state.meddicScore, 6);
    EXPECT_EQ(state.callStage, CallStage::closing);
    EXPECT_EQ(state.disc.discType, DiscType::dominant);
    EXPECT_EQ(state.disc.confidence, DiscConfidence::medium);
    EXPECT_EQ(state.sentiment, CustomerSentiment::eager);
    EXPECT_EQ(coach.turns(), 22);
}

TEST_F(CoachTest, tellsASalespersonWithoutWordsThatHeWasHeard) {
    const auto tip = coach.hear(AudioSourceTag::mic, u"(3.2 s of speech)"_s);
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->message, u"Heard you for 3.2 seconds."_s);
    EXPECT_EQ(tip->coachingType, CoachingType::listen);
    EXPECT_EQ(tip->state.meddic, MeddicScore{});
}

}  // namespace corvellan::test

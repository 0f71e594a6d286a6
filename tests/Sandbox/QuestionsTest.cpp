#include "Sandbox/Questions.h"

#include <gtest/gtest.h>

#include "Sandbox/Phrases.h"
#include "Sandbox/QuestionGame.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using sandbox::QuestionGame;
using sandbox::QuestionKind;
using sandbox::Topic;

namespace {

QuestionKind kindOf(const QString& text) {
    return sandbox::questionKind(sandbox::sentences(text).at(0));
}

std::optional<Topic> topicOf(const QString& text) {
    return sandbox::topicOf(sandbox::sentences(text).at(0));
}

}  // namespace

TEST(QuestionsTest, questionsThatMakePeopleTalkAreOpen) {
    for (const QString& text :
         {u"What annoys you most today?"_s, u"So Tom, how do you plan your tours?"_s,
          u"Could you tell me how a day looks here?"_s, u"Walk me through your week"_s, u"Who signs off?"_s,
          u"And what does it cost you each week"_s, u"Which of them matters most?"_s})
        EXPECT_EQ(kindOf(text), QuestionKind::open) << qPrintable(text);
}

TEST(QuestionsTest, questionsForAYesOrANoAreClosed) {
    for (const QString& text : {u"Do you plan by hand?"_s, u"Is it slow?"_s, u"Are you happy with it"_s,
                                u"Shall we meet on Thursday?"_s, u"So do you have a budget"_s, u"Right?"_s})
        EXPECT_EQ(kindOf(text), QuestionKind::closed) << qPrintable(text);
}

TEST(QuestionsTest, statementsAreNoQuestions) {
    for (const QString& text :
         {u"I know how you feel."_s, u"Our product does that."_s, u"Thank you."_s, u"We saw what that costs."_s})
        EXPECT_EQ(kindOf(text), QuestionKind::none) << qPrintable(text);
}

TEST(QuestionsTest, aQuestionIsAboutTheMostSpecialTopicInIt) {
    EXPECT_EQ(topicOf(u"Who holds the budget?"_s), Topic::economicBuyer);
    EXPECT_EQ(topicOf(u"What budget do you have?"_s), Topic::budget);
    EXPECT_EQ(topicOf(u"How do you come to a decision?"_s), Topic::decisionProcess);
    EXPECT_EQ(topicOf(u"What must it do, what is most important?"_s), Topic::decisionCriteria);
    EXPECT_EQ(topicOf(u"How much does that cost you?"_s), Topic::metrics);
    EXPECT_EQ(topicOf(u"Who would push for it internally?"_s), Topic::champion);
    EXPECT_EQ(topicOf(u"How do you handle orders today?"_s), Topic::pain);
    EXPECT_EQ(topicOf(u"How are you?"_s), Topic::rapport);
    EXPECT_EQ(topicOf(u"Did you see the match?"_s), std::nullopt);
}

TEST(QuestionGameTest, openMeddicQuestionsScoreAndClosedOnesCost) {
    QuestionGame game;
    EXPECT_EQ(game.hear(u"What annoys you most today?"_s), u"Open question on pain: +10. Score 10."_s);
    EXPECT_EQ(game.hear(u"How do you handle that?"_s), u"Open question on pain: +3. Score 13."_s);
    EXPECT_EQ(game.hear(u"Does Karin sign off?"_s), u"Closed question on budget owner: -5. Score 8."_s);
    EXPECT_EQ(game.score(), 8);
    EXPECT_EQ(game.phase(), u"Score 8"_s);
    EXPECT_EQ(game.keyPoints().at(0), u"Question game: score 8, with 2 open and 1 closed MEDDIC questions."_s);
    EXPECT_TRUE(game.keyPoints().at(1).startsWith(u"Not asked openly: Metrics, Economic Buyer,"_s));
}

TEST(QuestionGameTest, otherQuestionsAndStatementsLeaveTheScore) {
    QuestionGame game;
    EXPECT_EQ(game.hear(u"How are you?"_s), std::nullopt);
    EXPECT_EQ(game.hear(u"What is the weather like?"_s), std::nullopt);
    EXPECT_EQ(game.hear(u"Our product saves hours."_s), std::nullopt);
    EXPECT_EQ(game.hear({}), std::nullopt);
    EXPECT_EQ(game.score(), 0);
}

TEST(QuestionGameTest, theScoreMayFallBelowZeroAndATipStaysShort) {
    QuestionGame game;
    for (int i = 0; i < 30; ++i) {
        const auto tip = game.hear(u"Does he sign off?"_s);
        ASSERT_TRUE(tip);
        EXPECT_LE(tip->split(u' ').size(), 10) << qPrintable(*tip);
    }
    EXPECT_EQ(game.score(), -150);
}

TEST(QuestionGameTest, everyQuestionOfAnUtteranceCounts) {
    QuestionGame game;
    EXPECT_EQ(game.hear(u"What annoys you most? And who signs off? Do you struggle?"_s),
              u"Closed question on pain: -5. Score 15."_s);
}

}  // namespace corvellan::test

#include "Sandbox/Buyer.h"

#include <gtest/gtest.h>

#include <set>

namespace corvellan::test {

using namespace Qt::StringLiterals;
using sandbox::Buyer;
using sandbox::BuyerBook;
using sandbox::BuyerReply;
using sandbox::BuyerScenario;

namespace {

constexpr std::size_t metrics = 0;
constexpr std::size_t economicBuyer = 1;
constexpr std::size_t pain = 4;

class BuyerTest : public testing::Test {
protected:
    Buyer buyer(std::optional<DiscType> type = DiscType::dominant, std::uint32_t seed = 1) const {
        return Buyer{book, scenario(), type, seed};
    }
    [[nodiscard]] const BuyerScenario& scenario() const { return *book.find(u"haulier_spreadsheets"_s); }
    [[nodiscard]] static BuyerReply ask(Buyer& buyer, const QString& text) {
        auto reply = buyer.hear(text);
        EXPECT_TRUE(reply) << qPrintable(text);
        return reply.value_or(BuyerReply{});
    }
    /// Nothing in it is one of the facts.
    [[nodiscard]] bool tellsNothing(const BuyerReply& reply) const {
        bool tells = reply.given.has_value() || reply.text.contains(scenario().budget.says);
        for (const auto& fact : scenario().pains)
            tells = tells || reply.text.contains(fact.says);
        for (const auto& fact : scenario().answers)
            tells = tells || (!fact.says.isEmpty() && reply.text.contains(fact.says));
        return !tells;
    }
    [[nodiscard]] bool isOneOf(const BuyerReply& reply, const QStringList& texts) const {
        return std::ranges::any_of(texts, [&](const QString& text) { return reply.text.startsWith(text); });
    }
    /// Learns two troubles, so that an offer is welcome.
    static void findTroubles(Buyer& buyer) {
        static_cast<void>(ask(buyer, u"How do you plan your tours today?"_s));
        static_cast<void>(ask(buyer, u"What about mistakes and complaints?"_s));
    }

    BuyerBook book = BuyerBook::shipped();
};

}  // namespace

TEST_F(BuyerTest, theOpeningNamesThePersonAndTheMatter) {
    auto one = buyer();
    const QString opening = one.opening();
    EXPECT_TRUE(opening.contains(u"Tom Berg"_s) || opening.contains(u"Halden Freight"_s)) << qPrintable(opening);
    EXPECT_FALSE(opening.contains(u'{')) << qPrintable(opening);
    EXPECT_TRUE(opening.endsWith(scenario().opening)) << qPrintable(opening);
}

TEST_F(BuyerTest, anOpenQuestionRevealsTheTroubleThatItIsAbout) {
    auto one = buyer();
    const auto reply = ask(one, u"How do you deal with mistakes and complaints?"_s);
    EXPECT_TRUE(reply.text.contains(scenario().pains[1].says)) << qPrintable(reply.text);
    ASSERT_TRUE(reply.given);
    EXPECT_EQ(reply.given->criterion, pain);
    EXPECT_EQ(reply.given->evidence, scenario().pains[1].says);
}

TEST_F(BuyerTest, openQuestionsRevealOneTroubleAfterAnother) {
    auto one = buyer();
    for (const auto& fact : scenario().pains)
        EXPECT_TRUE(ask(one, u"What bothers you?"_s).text.contains(fact.says));
    const auto reply = ask(one, u"What bothers you?"_s);
    EXPECT_TRUE(isOneOf(reply, book.personality(DiscType::dominant).nothingLeft)) << qPrintable(reply.text);
}

TEST_F(BuyerTest, aClosedQuestionGetsAYesOrANoAndNothingElse) {
    auto one = buyer();
    const auto yes = ask(one, u"Do you plan with spreadsheets?"_s);
    EXPECT_TRUE(isOneOf(yes, book.personality(DiscType::dominant).yes)) << qPrintable(yes.text);
    EXPECT_TRUE(tellsNothing(yes));
    const auto no = ask(one, u"Is the weather a problem?"_s);
    EXPECT_TRUE(isOneOf(no, book.personality(DiscType::dominant).no)) << qPrintable(no.text);
    EXPECT_TRUE(tellsNothing(no));
}

TEST_F(BuyerTest, theBudgetIsToldToWhoAsksForItOpenly) {
    auto one = buyer();
    for (const QString& text : {u"How do you plan today?"_s, u"Tell me about your drivers."_s, u"Who signs off?"_s,
                                u"Do you have a budget?"_s, u"Thank you, that is interesting."_s})
        EXPECT_FALSE(ask(one, text).text.contains(scenario().budget.says)) << qPrintable(text);
    EXPECT_TRUE(ask(one, u"What budget have you set aside?"_s).text.contains(scenario().budget.says));
    EXPECT_TRUE(one.keyPoints().contains(u"You asked for the budget and learned it."_s));
}

TEST_F(BuyerTest, questionsOnTheCriteriaAreAnsweredAndRepeatedOnRequest) {
    auto one = buyer();
    const auto first = ask(one, u"Who signs off a purchase?"_s);
    ASSERT_TRUE(first.given);
    EXPECT_EQ(first.given->criterion, economicBuyer);
    const auto again = ask(one, u"Who signs off a purchase?"_s);
    EXPECT_TRUE(isOneOf(again, book.personality(DiscType::dominant).again)) << qPrintable(again.text);
    EXPECT_TRUE(again.text.contains(scenario().answers[economicBuyer].says));
    EXPECT_EQ(ask(one, u"How many hours does that cost you?"_s).given->criterion, metrics);
}

TEST_F(BuyerTest, anOfferThatComesTooEarlyMeetsAnObjection) {
    auto one = buyer();
    const auto reply = ask(one, u"Our platform will save you a lot of money."_s);
    EXPECT_TRUE(isOneOf(reply, scenario().pitchObjections)) << qPrintable(reply.text);
    EXPECT_TRUE(one.keyPoints().contains(u"You offered something too early, once: first find two troubles."_s));
}

TEST_F(BuyerTest, anOfferAfterTwoTroublesIsWelcome) {
    auto one = buyer();
    findTroubles(one);
    const auto reply = ask(one, u"Our platform ends the retyping."_s);
    EXPECT_TRUE(isOneOf(reply, book.personality(DiscType::dominant).interested)) << qPrintable(reply.text);
}

TEST_F(BuyerTest, aPriceMeetsAnObjectionOnce) {
    auto one = buyer();
    findTroubles(one);
    EXPECT_TRUE(isOneOf(ask(one, u"It costs 900 euros a month."_s), scenario().priceObjections));
    EXPECT_FALSE(isOneOf(ask(one, u"It costs 800 euros a month."_s), scenario().priceObjections));
}

TEST_F(BuyerTest, aNextStepIsAgreedOnlyWithWhoKnowsTheTroubles) {
    auto one = buyer();
    EXPECT_TRUE(isOneOf(ask(one, u"Shall we meet on Thursday?"_s), scenario().closingObjections));
    findTroubles(one);
    const auto reply = ask(one, u"Shall we meet on Thursday?"_s);
    EXPECT_TRUE(isOneOf(reply, book.personality(DiscType::dominant).agrees)) << qPrintable(reply.text);
    EXPECT_TRUE(one.keyPoints().contains(u"The buyer agreed to a next step."_s));
}

TEST_F(BuyerTest, aMonologueIsCutOff) {
    auto one = buyer();
    QString speech;
    for (int i = 0; i < 60; ++i)
        speech += u"word "_s;
    EXPECT_TRUE(isOneOf(ask(one, speech), book.personality(DiscType::dominant).tooLong));
}

TEST_F(BuyerTest, silenceGetsNoAnswer) {
    auto one = buyer();
    EXPECT_FALSE(one.hear({}));
    EXPECT_FALSE(one.hear(u" ... "_s));
}

TEST_F(BuyerTest, withoutARecogniserEachUtteranceCountsAsAnOpenQuestion) {
    auto one = buyer();
    EXPECT_TRUE(ask(one, u"(3.2 s of speech)"_s).text.contains(scenario().pains[0].says));
    std::set<std::size_t> won;
    bool isBudgetTold = false;
    for (int i = 0; i < 10; ++i) {
        const auto reply = ask(one, u"(3.2 s of speech)"_s);
        if (reply.given)
            won.insert(reply.given->criterion);
        isBudgetTold = isBudgetTold || reply.text.contains(scenario().budget.says);
    }
    EXPECT_EQ(won.size(), 6U);
    EXPECT_TRUE(isBudgetTold);
}

// MARK: - Personalities

TEST_F(BuyerTest, theSamePersonalityAndSeedGiveTheSameConversation) {
    const QStringList said{u"How do you plan today?"_s, u"Do you struggle?"_s, u"Our product is the best."_s,
                           u"Who signs off?"_s, u"I see."_s};
    for (const std::uint32_t seed : {0U, 7U, 4'000'000'000U}) {
        auto one = buyer(std::nullopt, seed);
        auto other = buyer(DiscType::unknown, seed);
        EXPECT_EQ(one.type(), other.type());
        EXPECT_EQ(one.opening(), other.opening());
        for (const auto& text : said)
            EXPECT_EQ(ask(one, text).text, ask(other, text).text);
    }
}

TEST_F(BuyerTest, randomPicksEachPersonalityNowAndThen) {
    std::set<DiscType> picked;
    for (std::uint32_t seed = 0; seed < 64; ++seed)
        picked.insert(buyer(DiscType::unknown, seed).type());
    EXPECT_EQ(picked, (std::set{DiscType::dominant, DiscType::influential, DiscType::steady, DiscType::conscientious}));
    auto one = buyer(DiscType::unknown, 3);
    EXPECT_TRUE(one.keyPoints().at(0).endsWith(u"the choice was left to chance."_s));
}

TEST_F(BuyerTest, personalitiesDifferInLengthDetailAndQuestions) {
    struct Manner {
        qsizetype letters = 0;
        int questions = 0;
        int details = 0;
    };
    std::map<DiscType, Manner> manners;
    for (const auto type : {DiscType::dominant, DiscType::influential, DiscType::steady, DiscType::conscientious}) {
        auto& manner = manners[type];
        for (std::uint32_t seed = 0; seed < 10; ++seed) {
            auto one = buyer(type, seed);
            for (const QString& text : {u"How do you plan today?"_s, u"What about mistakes?"_s, u"Who signs off?"_s,
                                        u"How many hours does it cost you?"_s}) {
                const auto reply = ask(one, text);
                manner.letters += reply.text.size();
                manner.questions += static_cast<int>(reply.text.count(u'?'));
                manner.details += reply.text.contains(scenario().answers[metrics].detail) ? 1 : 0;
            }
        }
    }
    EXPECT_GT(manners[DiscType::influential].letters, 2 * manners[DiscType::dominant].letters);
    EXPECT_GT(manners[DiscType::steady].letters, manners[DiscType::dominant].letters);
    EXPECT_EQ(manners[DiscType::conscientious].details, 10);
    EXPECT_EQ(manners[DiscType::dominant].details, 0);
    EXPECT_GT(manners[DiscType::conscientious].questions, manners[DiscType::steady].questions);
    EXPECT_LT(buyer(DiscType::dominant).thinkTime(), buyer(DiscType::steady).thinkTime());
    EXPECT_LT(buyer(DiscType::dominant).wordTime(), buyer(DiscType::steady).wordTime());
}

TEST_F(BuyerTest, nobodySaysTheSameTwiceInARowWhoHasAChoice) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        auto one = buyer(DiscType::steady, seed);
        EXPECT_NE(ask(one, u"I see."_s).text, ask(one, u"I see."_s).text);
    }
}

}  // namespace corvellan::test

#include "Views/Money.h"

#include <gtest/gtest.h>

#include "Views/RecordScore.h"

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

TEST(MoneyTest, amountsAreShortenedByThousandsAndMillions) {
    struct Row {
        double value;
        QString text;
    };
    for (const Row& row : {Row{0, u"$0"_s}, Row{999, u"$999"_s}, Row{1'500, u"$2K"_s}, Row{48'000, u"$48K"_s},
                           Row{2'500'000, u"$2.5M"_s}, Row{12'345'678'901, u"$12345.7M"_s}})
        EXPECT_EQ(formatUSD(row.value), row.text);
}

TEST(MoneyTest, exactlyAThousandAndExactlyAMillionAreShortened) {
    EXPECT_EQ(formatUSD(1'000), u"$1K"_s);
    EXPECT_EQ(formatUSD(1'000'000), u"$1.0M"_s);
}

TEST(MoneyTest, theUnitIsChosenBeforeRounding) {
    EXPECT_EQ(formatUSD(999.6), u"$1000"_s);
    EXPECT_EQ(formatUSD(999'999), u"$1000K"_s);
}

TEST(MoneyTest, exactTiesGoToTheEvenDigit) {
    EXPECT_EQ(formatUSD(2'500), u"$2K"_s);
    EXPECT_EQ(formatUSD(3'500), u"$4K"_s);
    EXPECT_EQ(formatUSD(0.5), u"$0"_s);
}

TEST(MoneyTest, negativeAmountsAreNeverShortened) {
    EXPECT_EQ(formatUSD(-5), u"$-5"_s);
    EXPECT_EQ(formatUSD(-2'500'000), u"$-2500000"_s);
}

TEST(RecordScoreTest, aFinishedSessionIsJudgedHarder) {
    const Tint poor{ColorRole::red, 0.7};
    const Tint fair{ColorRole::yellow};
    const Tint good{ColorRole::green};
    const Tint tints[] = {poor, poor, poor, fair, fair, good, good};
    for (int score = 0; score <= 6; ++score)
        EXPECT_EQ(recordScoreTint(score), tints[score]) << score;
}

}  // namespace

}  // namespace corvellan

#include <gtest/gtest.h>

#include "Views/CoachingOverlayView.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using View = CoachingOverlayView;

TEST(CoachingOverlayRulesTest, prettyPhaseUpperCasesFirstCharactersAndDropsEmptyPieces) {
    const std::vector<std::pair<QString, QString>> cases{
        {u"needs_analysis"_s, u"Needs Analysis"_s},
        {u"__a__b"_s, u"A B"_s},
        {u"mixedCASE"_s, u"MixedCASE"_s},
        {u""_s, u""_s},
        {u"___"_s, u""_s},
        {u"éclair_ß"_s, u"Éclair SS"_s},
        {u"a b_c"_s, u"A b C"_s},
    };
    for (const auto& [phase, pretty] : cases)
        EXPECT_EQ(View::prettyPhase(phase), pretty) << qPrintable(phase);
}

TEST(CoachingOverlayRulesTest, cleanBriefTakesTagsAwayAndKeepsTheirText) {
    EXPECT_EQ(View::cleanBrief(u"<b>Hi</b>\n\n\n\n\nthere  "_s), u"Hi\n\nthere"_s);
    EXPECT_EQ(View::cleanBrief(u"<a href=\"x\"\nclass=y>link</a>"_s), u"link"_s);
    EXPECT_EQ(View::cleanBrief(u"a <> b"_s), u"a <> b"_s);
    EXPECT_EQ(View::cleanBrief(u"1 < 2"_s), u"1 < 2"_s);
    EXPECT_EQ(View::cleanBrief(u"1 < 2 and 3 > 2"_s), u"1  2"_s);
    EXPECT_EQ(View::cleanBrief(u"<<b>>x"_s), u">x"_s);
}

TEST(CoachingOverlayRulesTest, cleanBriefKeepsEntities) {
    EXPECT_EQ(View::cleanBrief(u"Smith &amp; Sons&nbsp;"_s), u"Smith &amp; Sons&nbsp;"_s);
}

TEST(CoachingOverlayRulesTest, cleanBriefEndsEveryRunOfBlankLinesAsOne) {
    for (const int lineFeeds : {3, 4, 5, 6, 7, 100})
        EXPECT_EQ(View::cleanBrief(u"a"_s + QString(lineFeeds, u'\n') + u"b"_s), u"a\n\nb"_s) << lineFeeds;
    EXPECT_EQ(View::cleanBrief(u"a\n\nb"_s), u"a\n\nb"_s);
    // Lines of blanks are no run.
    EXPECT_EQ(View::cleanBrief(u"a\n \n \nb"_s), u"a\n \n \nb"_s);
}

TEST(CoachingOverlayRulesTest, cleanBriefJoinsRunsThatATagHeldApart) {
    EXPECT_EQ(View::cleanBrief(u"a\n<br>\n<br>\nb"_s), u"a\n\nb"_s);
}

TEST(CoachingOverlayRulesTest, cleanBriefTrimsAfterTheTagsAreGone) {
    EXPECT_EQ(View::cleanBrief(u" <p>\n\u00a0 x \u2003</p>\n"_s), u"x"_s);
    EXPECT_EQ(View::cleanBrief(u"<p></p>"_s), u""_s);
}

TEST(CoachingOverlayRulesTest, cleanBriefSurvivesAMegabyteWithoutAClosingBracket) {
    const QString open = u"<"_s + QString(1'000'000, u'x');
    EXPECT_EQ(View::cleanBrief(open), open);
}

TEST(CoachingOverlayRulesTest, cleanBriefSurvivesAMegabyteOfOpeningBrackets) {
    // Searched from each of them to the end, this would take hours.
    const QString open = QString(1'000'000, u'<');
    EXPECT_EQ(View::cleanBrief(open), open);
    EXPECT_EQ(View::cleanBrief(u"<b>Hi</b> "_s + open), u"Hi "_s + open);
    EXPECT_EQ(View::cleanBrief(open + u">x"_s), u"x"_s);
}

TEST(CoachingOverlayRulesTest, stageAbbrevHasThreeLettersForEachStage) {
    const std::vector<std::pair<CallStage, QString>> cases{
        {CallStage::opening, u"OPN"_s}, {CallStage::discovery, u"DIS"_s},   {CallStage::qualification, u"QUA"_s},
        {CallStage::demo, u"DEM"_s},    {CallStage::negotiation, u"NEG"_s}, {CallStage::objectionHandling, u"OBJ"_s},
        {CallStage::closing, u"CLS"_s}, {CallStage::support, u"SUP"_s},     {CallStage::renewal, u"REN"_s},
    };
    for (const auto& [stage, abbreviation] : cases)
        EXPECT_EQ(View::stageAbbrev(stage), abbreviation);
}

TEST(CoachingOverlayRulesTest, modeBadgeColorTellsTheFourModesApart) {
    EXPECT_EQ(View::modeBadgeColor(AudienceType::directSale), Tint{ColorRole::blue});
    EXPECT_EQ(View::modeBadgeColor(AudienceType::channelPartner), Tint{ColorRole::purple});
    EXPECT_EQ(View::modeBadgeColor(AudienceType::coldCall), Tint{ColorRole::orange});
    EXPECT_EQ(View::modeBadgeColor(AudienceType::discovery), Tint{ColorRole::green});
}

TEST(CoachingOverlayRulesTest, meddicScoreColorIsGreenAboveThreeAndRedBelowTwo) {
    const ColorRole colors[]{ColorRole::red,   ColorRole::red,   ColorRole::yellow, ColorRole::yellow,
                             ColorRole::green, ColorRole::green, ColorRole::green};
    for (int score = 0; score <= meddicCriteria; ++score)
        EXPECT_EQ(View::meddicScoreColor(score), Tint{colors[score]}) << score;
}

TEST(CoachingOverlayRulesTest, scoreBarIsLitFromTheLeftInTheColorOfTheScore) {
    for (int filled = 0; filled <= meddicCriteria; ++filled) {
        const auto bars = View::scoreBar(filled, meddicCriteria);
        ASSERT_EQ(bars.size(), 6U);
        for (int i = 0; i < meddicCriteria; ++i)
            EXPECT_EQ(bars[static_cast<std::size_t>(i)],
                      i < filled ? View::meddicScoreColor(filled) : (Tint{ColorRole::white, 0.1}))
                << filled << " of 6, bar " << i;
    }
    EXPECT_TRUE(View::scoreBar(3, 0).empty());
}

TEST(CoachingOverlayRulesTest, discLabelsAndColorsAreTheOverlaysOwn) {
    struct Row {
        DiscType type;
        QString label;
        ColorRole color;
    };
    for (const Row& row : {Row{DiscType::dominant, u"Dominant"_s, ColorRole::discDominant},
                           Row{DiscType::influential, u"Influential"_s, ColorRole::discInfluential},
                           Row{DiscType::steady, u"Steady"_s, ColorRole::discSteady},
                           Row{DiscType::conscientious, u"Conscientious"_s, ColorRole::discConscientious},
                           Row{DiscType::unknown, u"Unknown"_s, ColorRole::gray}}) {
        EXPECT_EQ(View::discLabel(row.type), row.label);
        EXPECT_EQ(View::discColor(row.type), Tint{row.color});
    }
}

TEST(CoachingOverlayRulesTest, sentimentColorGroupsTheEightMoods) {
    using enum CustomerSentiment;
    for (const auto mood : {positive, interested, eager})
        EXPECT_EQ(View::sentimentColor(mood), Tint{ColorRole::green});
    for (const auto mood : {skeptical, confused})
        EXPECT_EQ(View::sentimentColor(mood), Tint{ColorRole::yellow});
    for (const auto mood : {frustrated, resistant})
        EXPECT_EQ(View::sentimentColor(mood), Tint{ColorRole::red});
    EXPECT_EQ(View::sentimentColor(neutral), (Tint{ColorRole::white, 0.6}));
}

TEST(CoachingOverlayRulesTest, eachKindOfTipHasItsLabelAndColor) {
    struct Row {
        CoachingType type;
        QString label;
        ColorRole color;
    };
    for (const Row& row : {Row{CoachingType::whisper, u"WHISPER"_s, ColorRole::gold},
                           Row{CoachingType::questionPrompt, u"QUESTION"_s, ColorRole::cyan},
                           Row{CoachingType::objectionHandler, u"OBJECTION"_s, ColorRole::red},
                           Row{CoachingType::dataPoint, u"DATA"_s, ColorRole::green},
                           Row{CoachingType::stageTransition, u"STAGE"_s, ColorRole::purple},
                           Row{CoachingType::silence, u"SILENCE"_s, ColorRole::gray},
                           Row{CoachingType::listen, u"LISTEN"_s, ColorRole::gray}}) {
        EXPECT_EQ(View::coachingTypeLabel(row.type), row.label);
        EXPECT_EQ(View::coachingTypeColor(row.type), Tint{row.color});
    }
}

}  // namespace

}  // namespace corvellan

#include "Services/Speech/SentenceCutter.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

/// What a text fed as these tokens is cut into; the rest stands behind a "|".
QStringList cut(const QStringList& tokens) {
    SentenceCutter cutter;
    QStringList sentences;
    for (const QString& token : tokens) {
        cutter.append(token);
        while (const auto sentence = cutter.takeSentence())
            sentences.append(*sentence);
    }
    return sentences << u"|"_s + cutter.text();
}

TEST(SentenceBoundaryTest, isAStopAtTheEndOrBeforeWhiteSpace) {
    EXPECT_EQ(findSentenceBoundary(u""), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(u"Hello"), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(u"Hello."), 5);
    EXPECT_EQ(findSentenceBoundary(u"Hello. You"), 5);
    EXPECT_EQ(findSentenceBoundary(u"Hello!\nYou"), 5);
    EXPECT_EQ(findSentenceBoundary(u"Hello?\u00A0You"), 5);
    EXPECT_EQ(findSentenceBoundary(u"Hello.You"), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(u"Hello.\" You"), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(u"Hello\u3002 You"), std::nullopt) << "these three marks alone";
}

TEST(SentenceBoundaryTest, isNoPointWithinANumberButOneAtTheBuffersEnd) {
    EXPECT_EQ(findSentenceBoundary(u"3.14 is enough"), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(u"It is 3."), 7);
    EXPECT_EQ(cut({u"It is 3."_s, u"14 now. "_s}), (QStringList{u"It is 3."_s, u"14 now."_s, u"| "_s}));
}

TEST(SentenceBoundaryTest, aCommaAtOffset39DoesNotCutAndOneAt40Does) {
    const QString text39(39, u'a');
    const QString text40(40, u'a');
    EXPECT_EQ(findSentenceBoundary(text39 + u", and"_s), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(text40 + u", and"_s), 40);
    EXPECT_EQ(cut({text40 + u",and"_s}), (QStringList{text40 + u","_s, u"|and"_s})) << "whatever follows it";
    EXPECT_EQ(cut({text39 + u", b"_s, u",c"_s}), (QStringList{text39 + u", b,"_s, u"|c"_s}));
}

TEST(SentenceBoundaryTest, charactersAreWhatPeopleCount) {
    // 39 and 40 families of seven code points each.
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s;
    EXPECT_EQ(findSentenceBoundary(family.repeated(39) + u","_s), std::nullopt);
    EXPECT_EQ(findSentenceBoundary(family.repeated(40) + u","_s), 40 * family.size());
    EXPECT_EQ(findSentenceBoundary(u"e\u0301"_s.repeated(39) + u","_s), std::nullopt);
    // A point that carries an accent is another character.
    EXPECT_EQ(findSentenceBoundary(u"a.\u0301 b"), std::nullopt);
    // Both line ends in one are white space too.
    EXPECT_EQ(findSentenceBoundary(u"a.\r\nb"), 1);
}

TEST(SentenceCutterTest, twoExclamationMarksInOneTokenCutAtTheSecond) {
    EXPECT_EQ(cut({u"No!! Yes"_s}), (QStringList{u"No!!"_s, u"| Yes"_s}));
    EXPECT_EQ(cut({u"No!!"_s}), (QStringList{u"No!!"_s, u"|"_s}));
    EXPECT_EQ(cut({u"No!"_s, u"!"_s}), (QStringList{u"No!"_s, u"!"_s, u"|"_s})) << "as two tokens each cuts";
}

TEST(SentenceCutterTest, anAbbreviationBeforeASpaceIsCutThere) {
    EXPECT_EQ(cut({u"Ask Dr. Weber"_s}), (QStringList{u"Ask Dr."_s, u"| Weber"_s}));
}

TEST(SentenceCutterTest, anAbbreviationWithTwoInnerPointsIsOneSentence) {
    EXPECT_EQ(cut({u"e.g."_s}), (QStringList{u"e.g."_s, u"|"_s}));
}

TEST(SentenceCutterTest, aPointAloneIsASentence) {
    EXPECT_EQ(cut({u" . "_s}), (QStringList{u"."_s, u"| "_s}));
}

TEST(SentenceCutterTest, oneTokenCanHoldSeveralSentences) {
    EXPECT_EQ(cut({u"One. Two! Three? Four"_s}), (QStringList{u"One."_s, u"Two!"_s, u"Three?"_s, u"| Four"_s}));
}

TEST(SentenceCutterTest, theRestIsTrimmedAndGoneOnceTaken) {
    SentenceCutter cutter;
    cutter.append(u" \n and so "_s);
    EXPECT_EQ(cutter.takeSentence(), std::nullopt);
    EXPECT_EQ(cutter.takeRest(), u"and so"_s);
    EXPECT_EQ(cutter.takeRest(), std::nullopt);
    cutter.append(u" \t\n"_s);
    EXPECT_EQ(cutter.takeRest(), std::nullopt);
    EXPECT_TRUE(cutter.text().isEmpty());
}

TEST(SentenceCutterTest, aCharacterThatArrivesInHalvesIsOne) {
    // Forty characters before the comma, the last of them a thumb whose colour comes in two halves.
    const QString thumb = u"\U0001F44D\U0001F3FD"_s;
    const QString text = QString(39, u'a') + thumb + u", and"_s;
    for (qsizetype at = 39; at <= 43; ++at)
        EXPECT_EQ(cut({text.first(at), text.sliced(at)}), (QStringList{QString(39, u'a') + thumb + u","_s, u"| and"_s}))
            << at;
    const QString shorter = text.sliced(1);
    for (qsizetype at = 38; at <= 42; ++at)
        EXPECT_EQ(cut({shorter.first(at), shorter.sliced(at)}), QStringList{u"|"_s + shorter}) << at;
}

TEST(SentenceCutterTest, aReplyWithoutAnyStopIsNotWalkedAnewForEachToken) {
    // Walked anew each time, this would take minutes.
    SentenceCutter cutter;
    for (int i = 0; i < 50'000; ++i) {
        cutter.append(u"3.1415926535"_s);
        ASSERT_EQ(cutter.takeSentence(), std::nullopt);
    }
    EXPECT_EQ(cutter.takeRest()->size(), 600'000);
}

}  // namespace
}  // namespace corvellan::test

#include "Base/Text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

TEST(TextTest, countsWhatPeopleCallCharacters) {
    EXPECT_EQ(text::count(u""), 0);
    EXPECT_EQ(text::count(u"abc"), 3);
    EXPECT_EQ(text::count(u"e\u0301a"), 2);
    EXPECT_EQ(text::count(u"\r\n"), 1);
    EXPECT_EQ(text::count(u"👩‍👩‍👧🇩🇪"), 2);
    // Devanagari beside an emoji and a line end.
    EXPECT_EQ(text::count(u"नि👍🏽\r\n"), 3);
}

TEST(TextTest, prefixNeverCutsACharacter) {
    EXPECT_EQ(text::prefix(u"abc", 2), u"ab");
    EXPECT_EQ(text::prefix(u"abc", 5), u"abc");
    EXPECT_EQ(text::prefix(u"👩‍👩‍👧🇩🇪x", 1), u"👩‍👩‍👧");
    EXPECT_EQ(text::prefix(u"e\u0301e\u0301", 1), u"e\u0301");
    EXPECT_EQ(text::prefix(u"abc", 0), u"");
}

TEST(TextTest, upperFirstKeepsTheRest) {
    EXPECT_EQ(text::upperFirst(u"mixedCASE"), u"MixedCASE");
    EXPECT_EQ(text::upperFirst(u"élan"), u"Élan");
    EXPECT_EQ(text::upperFirst(u""), u"");
}

TEST(TextTest, theTwoTrimsDiffer) {
    EXPECT_EQ(text::trimmed(u" \t\n\r\u00a0\u2028x \n"), u"x");
    EXPECT_TRUE(text::isBlank(u" \t"));
    EXPECT_TRUE(text::isBlank(u""));
    EXPECT_FALSE(text::isBlank(u"\n"));
    EXPECT_FALSE(text::isBlank(u"\u00a0"));
}

TEST(TextTest, fixedIsExactAndWithoutLocale) {
    EXPECT_EQ(text::fixed(48000, 6), u"48000.000000");
    EXPECT_EQ(text::fixed(0.125, 2), u"0.12");
    EXPECT_EQ(text::fixed(2.5, 0), u"2");
}

TEST(TextTest, aNumberIsOneFromEndToEnd) {
    EXPECT_EQ(text::number(u"12.5"), 12.5);
    EXPECT_EQ(text::number(u"-3e2"), -300);
    EXPECT_EQ(text::number(u"+.5"), 0.5);
    EXPECT_EQ(text::number(u"5."), 5);
    EXPECT_EQ(text::number(u"0.1"), 0.1);
    for (const auto* text : {u"", u" 1", u"1 ", u"1,5", u"1.5.2", u"inf", u"-Infinity", u"nan", u"0x1p3", u"+-1",
                             u"--1", u"+", u".", u"e5", u"1e999", u"١٢", u"twelve"})
        EXPECT_EQ(text::number(text), std::nullopt) << QString::fromUtf16(text).toStdString();
}

}  // namespace
}  // namespace corvellan::test

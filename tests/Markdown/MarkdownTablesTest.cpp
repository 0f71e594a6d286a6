#include "Markdown/MarkdownTables.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan::markdown {

namespace {

// MARK: - Rows

TEST(SplitTableRowTest, cellsAreTrimmedAndTheOuterBarsGo) {
    struct Case {
        QString line;
        QStringList cells;
    };
    const Case cases[]{
        {u"| a | b |"_s, {u"a"_s, u"b"_s}},
        {u"a | b"_s, {u"a"_s, u"b"_s}},
        {u" \t| a |\tb\t| \t"_s, {u"a"_s, u"b"_s}},
        {u"| a | b"_s, {u"a"_s, u"b"_s}},
        {u"a | b |"_s, {u"a"_s, u"b"_s}},
        // Only one bar goes at each end, and empty cells stay.
        {u"|| a ||"_s, {u""_s, u"a"_s, u""_s}},
        {u"| | |"_s, {u""_s, u""_s}},
        {u"||"_s, {u""_s}},
        {u"|"_s, {u""_s}},
        {u""_s, {u""_s}},
        // Other white space is not trimmed.
        {u"| \u00a0a\r | b |"_s, {u"\u00a0a\r"_s, u"b"_s}},
    };
    for (const auto& [line, cells] : cases)
        EXPECT_EQ(splitTableRow(line), cells) << line.toStdString();
}

TEST(SplitTableRowTest, cellsBeyondTheLimitAreJoinedIntoTheLast) {
    const QString line = u"| 1 | 2 | 3 | 4 |"_s;
    EXPECT_EQ(splitTableRow(line, 5).size(), 4);
    EXPECT_EQ(splitTableRow(line, 4), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    EXPECT_EQ(splitTableRow(line, 3), (QStringList{u"1"_s, u"2"_s, u"3, 4"_s}));
    EXPECT_EQ(splitTableRow(line, 1), (QStringList{u"1, 2, 3, 4"_s}));
    EXPECT_EQ(splitTableRow(u"| 1 || 3 |"_s, 2), (QStringList{u"1"_s, u", 3"_s}));
}

// MARK: - Tables

TEST(RenderTableTest, theFirstRowIsTheHead) {
    EXPECT_EQ(renderTable({u"| a | b |"_s, u"| 1 | 2 |"_s, u"| 3 | 4 |"_s}),
              u"<table><tr><th>a</th><th>b</th></tr><tr><td>1</td><td>2</td></tr>"
              u"<tr><td>3</td><td>4</td></tr></table>"_s);
}

TEST(RenderTableTest, aRowWithTooFewCellsIsNotPadded) {
    EXPECT_EQ(renderTable({u"| a | b |"_s, u"| 1 |"_s}),
              u"<table><tr><th>a</th><th>b</th></tr><tr><td>1</td></tr></table>"_s);
}

TEST(RenderTableTest, everyRowWithThreeHyphensIsLeftOut) {
    EXPECT_EQ(renderTable({u"|---|"_s, u"| a |"_s, u"| x---y |"_s, u"|:--:|"_s}),
              u"<table><tr><th>a</th></tr><tr><td>:--:</td></tr></table>"_s);
}

TEST(RenderTableTest, withoutRowsThereIsNothing) {
    EXPECT_EQ(renderTable({}), QString{});
    EXPECT_EQ(renderTable({u"|---|---|"_s}), QString{});
}

// MARK: - Finding tables

TEST(ConvertTablesTest, tellsRowsFromOtherLines) {
    struct Case {
        QString line;
        bool isRow;
    };
    const Case cases[]{
        {u"| a | b |"_s, true}, {u"|a"_s, true},      {u"|"_s, true},         {u"  \t|a|"_s, true}, {u"a | b"_s, true},
        {u"a|b"_s, false},      {u"a |b"_s, false},   {u"a| b"_s, false},     {u"a |"_s, false},    {u"a |\t"_s, false},
        {u"a\t|\tb"_s, false},  {u"a\r | b"_s, true}, {u"\u00a0|a"_s, false}, {u""_s, false},       {u"text"_s, false},
    };
    for (const auto& [line, isRow] : cases)
        EXPECT_EQ(convertTables(line).startsWith(u"<table>"_s), isRow) << line.toStdString();
}

TEST(ConvertTablesTest, aRunOfRowsBecomesOneLine) {
    EXPECT_EQ(convertTables(u"before\n  | a | b |\n|---|---|\n| 1 | 2 |\t\nafter"_s),
              u"before\n<table><tr><th>a</th><th>b</th></tr><tr><td>1</td><td>2</td></tr></table>\nafter"_s);
}

TEST(ConvertTablesTest, anyOtherLineEndsTheTableAndStaysAsItIs) {
    EXPECT_EQ(convertTables(u"|a|\n\t text \n|b|\n\n|c|"_s),
              u"<table><tr><th>a</th></tr></table>\n\t text \n<table><tr><th>b</th></tr></table>\n\n"
              u"<table><tr><th>c</th></tr></table>"_s);
}

TEST(ConvertTablesTest, aTableAtTheEndIsNotLost) {
    EXPECT_EQ(convertTables(u"x\n|a|"_s), u"x\n<table><tr><th>a</th></tr></table>"_s);
    EXPECT_EQ(convertTables(u"|a|\n"_s), u"<table><tr><th>a</th></tr></table>\n"_s);
}

TEST(ConvertTablesTest, aTableOfNothingButItsSeparatorDisappears) {
    EXPECT_EQ(convertTables(u"x\n|---|---|\ny"_s), u"x\n\ny"_s);
    EXPECT_EQ(convertTables(u"|---|"_s), u""_s);
}

TEST(ConvertTablesTest, textWithoutTablesStays) {
    for (const auto& text : {u""_s, u"\n"_s, u"\n\n\n"_s, u"a\nb\r\n c \n"_s})
        EXPECT_EQ(convertTables(text), text);
}

}  // namespace
}  // namespace corvellan::markdown

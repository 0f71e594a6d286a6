#include "Markdown/MarkdownHtml.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan::markdown {

namespace {

constexpr QStringView opening = u"<body><p>";
constexpr QStringView closing = u"</p></body>\n</html>";

/// What stands inside the document's one opening paragraph.
QString bodyOf(const QString& markdown) {
    const QString html = wrapMarkdown(markdown);
    const auto start = html.indexOf(opening) + opening.size();
    EXPECT_TRUE(html.endsWith(closing));
    return html.sliced(start, html.size() - start - closing.size());
}

struct Case {
    QString markdown;
    QString html;
};

void expectAll(std::initializer_list<Case> cases) {
    for (const auto& [markdown, html] : cases)
        EXPECT_EQ(bodyOf(markdown).toStdString(), html.toStdString()) << markdown.toStdString();
}

// MARK: - The document

TEST(WrapMarkdownTest, theHeadIsTheSameForEveryNote) {
    const QString html = wrapMarkdown(u"note"_s);
    EXPECT_TRUE(html.startsWith(u"<!DOCTYPE html>\n"_s));
    EXPECT_TRUE(html.contains(u"<meta charset=\"utf-8\">"_s));
    EXPECT_EQ(html.count(u"<style>"_s), 1);
    EXPECT_TRUE(html.endsWith(u"<body><p>note</p></body>\n</html>"_s));
    EXPECT_TRUE(wrapMarkdown({}).endsWith(u"<body><p></p></body>\n</html>"_s));
}

TEST(WrapMarkdownTest, theDocumentNamesNothingThatCouldBeLoaded) {
    const QString html = wrapMarkdown(u"<img src=x>![x](http://x.example/y.png) http://x.example"_s);
    for (const auto& word : {u"url("_s, u"@import"_s, u"<img"_s, u"<script"_s, u"<link"_s, u"src=\""_s, u"href=\""_s})
        EXPECT_FALSE(html.contains(word)) << word.toStdString();
}

// MARK: - Escaping

TEST(EscapeHTMLTest, theAmpersandComesFirst) {
    EXPECT_EQ(escapeHTML(u"a & b < c > d"_s), u"a &amp; b &lt; c &gt; d"_s);
    EXPECT_EQ(escapeHTML(u"&lt;&amp;"_s), u"&amp;lt;&amp;amp;"_s);
    EXPECT_EQ(escapeHTML(u"\"'"_s), u"\"'"_s);
    EXPECT_EQ(escapeHTML({}), QString{});
}

TEST(WrapMarkdownTest, aScriptGivesVisibleTextAndNeverATag) {
    expectAll({
        {u"<script>"_s, u"&lt;script&gt;"_s},
        {u"<script>alert(1)</script>"_s, u"&lt;script&gt;alert(1)&lt;/script&gt;"_s},
        {u"**<b>**"_s, u"<strong>&lt;b&gt;</strong>"_s},
        {u"| <td> |"_s, u"<table><tr><th>&lt;td&gt;</th></tr></table>"_s},
    });
}

// MARK: - Headings

TEST(WrapMarkdownTest, headingsOfLevelTwoAndThree) {
    expectAll({
        {u"## A & B"_s, u"<h2>A &amp; B</h2>"_s},
        {u"### A"_s, u"<h3>A</h3>"_s},
        {u"text\n## A\ntext"_s, u"text\n<h2>A</h2>\ntext"_s},
        {u"## **A**"_s, u"<h2><strong>A</strong></h2>"_s},
    });
}

TEST(WrapMarkdownTest, otherHeadingsStayText) {
    expectAll({
        {u"# A"_s, u"# A"_s},
        {u"#### A"_s, u"#### A"_s},
        {u"##A"_s, u"##A"_s},
        {u" ## A"_s, u" ## A"_s},
        {u"## "_s, u"## "_s},
        {u"x ## A"_s, u"x ## A"_s},
    });
}

TEST(WrapMarkdownTest, aLineEndsAtEveryLineTerminator) {
    expectAll({
        {u"## A\r\ntext"_s, u"<h2>A</h2>\r<br>text"_s},
        {u"## A\u2028## B"_s, u"<h2>A</h2>\u2028<h2>B</h2>"_s},
    });
}

// MARK: - Bold

TEST(WrapMarkdownTest, twoBoldSpansAreTwo) {
    expectAll({
        {u"**a** and **b**"_s, u"<strong>a</strong> and <strong>b</strong>"_s},
        {u"**a**b**"_s, u"<strong>a</strong>b**"_s},
        {u"*****"_s, u"<strong>*</strong>"_s},
        {u"****"_s, u"****"_s},
        {u"*a*"_s, u"*a*"_s},
    });
}

TEST(WrapMarkdownTest, aBoldSpanNeverCrossesALine) {
    expectAll({{u"**a\nb**"_s, u"**a<br>b**"_s}});
}

// MARK: - Links

TEST(WrapMarkdownTest, mailAddressesBecomeLinks) {
    expectAll({
        {u"ask jo.o+x@mail.example.com."_s,
         u"ask <a href=\"mailto:jo.o+x@mail.example.com\">jo.o+x@mail.example.com</a>."_s},
        {u"a@b.co, c@d.org"_s, u"<a href=\"mailto:a@b.co\">a@b.co</a>, <a href=\"mailto:c@d.org\">c@d.org</a>"_s},
        {u"a@b"_s, u"a@b"_s},
        {u"a@b.c"_s, u"a@b.c"_s},
        {u"@b.com"_s, u"@b.com"_s},
        {u"**a@b.co**"_s, u"<strong><a href=\"mailto:a@b.co\">a@b.co</a></strong>"_s},
    });
}

TEST(WrapMarkdownTest, aTelephoneLinkKeepsItsBlanks) {
    expectAll({
        {u"Call +49 30 123456 7 now"_s, u"Call <a href=\"tel:+49 30 123456 7\">+49 30 123456 7</a> now"_s},
        {u"+4930123456"_s, u"<a href=\"tel:+4930123456\">+4930123456</a>"_s},
        // The shortest, and one digit less.
        {u"+12345678"_s, u"<a href=\"tel:+12345678\">+12345678</a>"_s},
        {u"+1234567"_s, u"+1234567"_s},
        // The longest; the digits that follow stay text.
        {u"+1234567890123456789"_s, u"<a href=\"tel:+12345678901234567\">+12345678901234567</a>89"_s},
        {u"0049 30 123456"_s, u"0049 30 123456"_s},
    });
}

TEST(WrapMarkdownTest, aShortNumberIsNoTelephone) {
    expectAll({{u"+1 23"_s, u"+1 23"_s}});
}

TEST(WrapMarkdownTest, nothingElseBecomesALink) {
    expectAll({
        {u"http://x.example"_s, u"http://x.example"_s},
        {u"[a](javascript:b)"_s, u"[a](javascript:b)"_s},
        {u"<a href=\"file:///etc/passwd\">"_s, u"&lt;a href=\"file:///etc/passwd\"&gt;"_s},
    });
}

TEST(WrapMarkdownTest, aQuoteCantLeaveALinksAddress) {
    expectAll({{u"\"onclick=\"x@y.com\" z\""_s, u"\"onclick=\"<a href=\"mailto:x@y.com\">x@y.com</a>\" z\""_s}});
}

// MARK: - Tables

TEST(WrapMarkdownTest, aTableWithACellTooManyJoinsItsLast) {
    expectAll({{u"| a | b |\n|---|---|\n| 1 | 2 | 3 |"_s,
                u"<table><tr><th>a</th><th>b</th></tr><tr><td>1</td><td>2, 3</td></tr></table>"_s}});
}

TEST(WrapMarkdownTest, aTableRowNeedsBlanksRoundABarThatDoesNotLead) {
    expectAll({
        {u"a | b"_s, u"<table><tr><th>a</th><th>b</th></tr></table>"_s},
        {u"a|b"_s, u"a|b"_s},
    });
}

TEST(WrapMarkdownTest, aTableOfNothingButItsSeparatorDisappears) {
    expectAll({
        {u"|---|---|"_s, u""_s},
        {u"a\n|---|---|\nb"_s, u"a</p><p>b"_s},
    });
}

TEST(WrapMarkdownTest, cellsHoldBoldTextAndLinks) {
    expectAll({{u"| **a** | b@c.de |"_s,
                u"<table><tr><th><strong>a</strong></th>"
                u"<th><a href=\"mailto:b@c.de\">b@c.de</a></th></tr></table>"_s}});
}

TEST(WrapMarkdownTest, aTableTakesNoBreaks) {
    expectAll({{u"x\n| a |\n| b |\ny"_s, u"x\n<table><tr><th>a</th></tr><tr><td>b</td></tr></table>\ny"_s}});
}

// MARK: - Lists

TEST(WrapMarkdownTest, linesWithAHyphenAreOneList) {
    expectAll({
        {u"- one\n- two"_s, u"<ul><li>one</li>\n<li>two</li></ul>"_s},
        {u"x\n- one\ny"_s, u"x\n<ul><li>one</li>\n</ul>y"_s},
        {u"- one\n\n- two"_s, u"<ul><li>one</li>\n</ul>\n<ul><li>two</li></ul>"_s},
        {u"- **a** b@c.de"_s, u"<ul><li><strong>a</strong> <a href=\"mailto:b@c.de\">b@c.de</a></li></ul>"_s},
    });
}

TEST(WrapMarkdownTest, otherListMarksStayText) {
    expectAll({
        {u"* a\n1. b\n-c\n - d\n- "_s, u"* a<br>1. b<br>-c<br> - d<br>- "_s},
    });
}

// The list takes the first line feed behind its last item, so that of an empty line only one is left, and no
// paragraph begins.
TEST(WrapMarkdownTest, anEmptyLineBehindAListBeginsNoParagraph) {
    expectAll({{u"- one\n- two\n\nrest"_s, u"<ul><li>one</li>\n<li>two</li>\n</ul>\nrest"_s}});
}

TEST(WrapMarkdownTest, theBreaksLeaveAListsOwnLineFeedsAlone) {
    EXPECT_FALSE(bodyOf(u"- one\n- two\n\nrest"_s).contains(u"<br>"_s));
    EXPECT_EQ(bodyOf(u"- one\n- two\n\nrest"_s).count(u"<ul>"_s), 1);
}

// MARK: - Paragraphs and breaks

TEST(WrapMarkdownTest, aLineFeedIsABreakInsideTheParagraph) {
    expectAll({
        {u"x\ny"_s, u"x<br>y"_s},
        {u"x\n"_s, u"x<br>"_s},
        {u"\nx"_s, u"<br>x"_s},
    });
}

TEST(WrapMarkdownTest, anEmptyLineBeginsAParagraph) {
    expectAll({
        {u"x\n\ny"_s, u"x</p><p>y"_s},
        {u"x\n\n\ny"_s, u"x</p><p>\ny"_s},
        {u"x\n\n\n\ny"_s, u"x</p><p></p><p>y"_s},
    });
}

TEST(WrapMarkdownTest, aLineFeedBesideATagIsNoBreak) {
    expectAll({
        {u"## A\ntext"_s, u"<h2>A</h2>\ntext"_s},
        {u"text\n## A"_s, u"text\n<h2>A</h2>"_s},
        // Any tag counts, inline ones too; escaped brackets do not.
        {u"**a**\nb"_s, u"<strong>a</strong>\nb"_s},
        {u"a &\nb"_s, u"a &amp;<br>b"_s},
        {u"a >\n< b"_s, u"a &gt;<br>&lt; b"_s},
    });
}

// MARK: - Characters

TEST(WrapMarkdownTest, charactersBeyondTheBasicPlaneSurvive) {
    expectAll({
        {u"## Grüße 👩‍👩‍👧 – 名前"_s, u"<h2>Grüße 👩‍👩‍👧 – 名前</h2>"_s},
        {u"- 🇩🇪"_s, u"<ul><li>🇩🇪</li></ul>"_s},
    });
    const QString lone = u"a"_s + QChar{0xd800} + QChar{u'\0'} + u"b"_s;
    EXPECT_EQ(bodyOf(lone), lone);
}

TEST(WrapMarkdownTest, signsOfTheReplacementAreTextInANote) {
    expectAll({{u"**$1 \\1 $0**"_s, u"<strong>$1 \\1 $0</strong>"_s}});
}

// MARK: - Hostile notes

TEST(WrapMarkdownTest, aRuleThatTakesTooLongLeavesTheTextAndTheOthersApply) {
    // Of each letter the mail rule takes all that follow, and then gives them back one by one.
    const QString letters(40'000, u'a');
    const QString html = bodyOf(u"## A\n**b** c@d.com\n- e\n"_s + letters);
    EXPECT_TRUE(html.startsWith(u"<h2>A</h2>\n<strong>b</strong> c@d.com\n<ul><li>e</li>\n</ul>"_s))
        << html.first(100).toStdString();
    EXPECT_TRUE(html.endsWith(letters));
}

TEST(WrapMarkdownTest, aLongNoteWithLinksIsWithinEveryBound) {
    const QString line = u"Call +49 30 123456 or write to jo@mail.example.com about **all** of it, soon.\n"_s;
    const QString html = bodyOf(line.repeated(2000));
    EXPECT_EQ(html.count(u"<a href=\"mailto:"_s), 2000);
    EXPECT_EQ(html.count(u"<a href=\"tel:"_s), 2000);
    EXPECT_EQ(html.count(u"<strong>"_s), 2000);
    EXPECT_EQ(html.count(u"<br>"_s), 2000);
}

TEST(WrapMarkdownTest, aLongListIsOneList) {
    const QString html = bodyOf(u"- item\n"_s.repeated(5000));
    EXPECT_EQ(html.count(u"<li>"_s), 5000);
    EXPECT_EQ(html.count(u"<ul>"_s), 1);
}

TEST(WrapMarkdownTest, notesMadeToBeSlowStillEnd) {
    for (const auto& piece : {u"a@"_s, u"a@b."_s, u"**"_s, u"* *"_s, u"+1 "_s, u"- \n"_s, u"|"_s, u"| a\n"_s, u"\n"_s,
                              u"<li>"_s, u"- - "_s, u"a."_s})
        EXPECT_FALSE(bodyOf(piece.repeated(20'000)).isEmpty()) << piece.toStdString();
}

}  // namespace
}  // namespace corvellan::markdown

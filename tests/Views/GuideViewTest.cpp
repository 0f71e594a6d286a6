#include "Views/GuideView.h"

#include <gtest/gtest.h>

#include <QVariantMap>

#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

QVariantMap section(int index) {
    return GuideView::sections().value(index).toMap();
}

/// "mark colour name: text" of each row.
QStringList rowsOf(int index) {
    QStringList rows;
    for (const QVariant& value : section(index).value(u"rows"_s).toList()) {
        const QVariantMap row = value.toMap();
        rows.push_back(row.value(u"letter"_s).toString() + row.value(u"symbol"_s).toString() + u' ' +
                       row.value(u"colorName"_s).toString() + u' ' + row.value(u"name"_s).toString() + u": "_s +
                       row.value(u"text"_s).toString());
    }
    return rows;
}

/// "symbol colour: text".
QString noteOf(int index) {
    const QVariantMap note = section(index).value(u"note"_s).toMap();
    if (note.isEmpty())
        return {};
    return note.value(u"symbol"_s).toString() + u' ' + note.value(u"colorName"_s).toString() + u": "_s +
           note.value(u"text"_s).toString();
}

TEST(GuideViewTest, isHeadedByTheProduct) {
    EXPECT_EQ(GuideView::title(), u"Corvellan Bram"_s);
    EXPECT_EQ(GuideView::subtitle(), u"Your AI Sales Coach"_s);
}

TEST(GuideViewTest, theSevenSectionsStandInTheirOrder) {
    QStringList titles;
    for (const QVariant& value : GuideView::sections())
        titles.push_back(value.toMap().value(u"title"_s).toString());
    EXPECT_EQ(titles, (QStringList{u"How It Works"_s, u"MEDDIC — Deal Qualification"_s, u"DISC — Buyer Personality"_s,
                                   u"Call Stages"_s, u"What Bram Tells You"_s, u"Training Mode"_s, u"Stealth Mode"_s}));
}

TEST(GuideViewTest, eachSectionSaysWhatItIsAbout) {
    const QStringList texts{
        u"Bram listens to your sales call in real-time and whispers short coaching tips — like having an experienced sales manager in your ear. It tracks your conversation, identifies where you are in the sales process, and suggests what to do next."_s,
        u"MEDDIC helps you qualify deals systematically. Bram tracks each criterion during the call and shows your progress as a score (0–6)."_s,
        u"Bram detects the buyer's communication style and adjusts coaching advice accordingly. It takes 2+ signals to detect a type."_s,
        u"Bram tracks where you are in the conversation and coaches accordingly. You can't skip stages — build trust before pitching."_s,
        u"Coaching messages are short (max 10 words) so you can read them in 5 seconds without losing focus on the conversation."_s,
        u"Practice without a real customer. Bram simulates a buyer with a specific personality (DISC type) in a chosen scenario. You talk through your mic, the AI customer responds with voice."_s,
        u"During a call, toggle stealth to make the coaching window invisible to screen sharing (Zoom, Meet, Teams). Your customer won't see Bram — only you can."_s,
    };
    for (int index = 0; index < texts.size(); ++index)
        EXPECT_EQ(section(index).value(u"text"_s).toString(), texts[index]);
}

TEST(GuideViewTest, fourStepsAreNumbered) {
    EXPECT_EQ(
        rowsOf(0),
        (QStringList{
            u"1 cyan Start a call: Search for the company, hit Call. Bram connects to your mic and system audio."_s,
            u"2 cyan Bram listens: Speech is transcribed in real-time. Bram analyzes what you and the customer say."_s,
            u"3 cyan Get coaching: Short tips appear on screen — what question to ask, how to handle an objection, when to move forward."_s,
            u"4 cyan Review after: Session summary shows your MEDDIC score, key coaching points, and full transcript."_s}));
    EXPECT_EQ(noteOf(0), QString{});
}

TEST(GuideViewTest, theSixCriteriaHaveTheirLettersAndColours) {
    EXPECT_EQ(
        rowsOf(1),
        (QStringList{
            u"M green Metrics: Has the customer quantified the impact? Cost savings, time saved, incidents reduced."_s,
            u"E green Economic Buyer: Do you know who owns the budget? Get a name."_s,
            u"D green Decision Criteria: What are they evaluating on? Features, price, support, compliance?"_s,
            u"D yellow Decision Process: What are the approval steps? Timeline? Who else is involved?"_s,
            u"I orange Identify Pain: Have they stated an explicit pain point — not just interest?"_s,
            u"C cyan Champion: Is there a named internal advocate pushing for your solution?"_s}));
    EXPECT_EQ(
        noteOf(1),
        u"info.circle cyan: MEDDIC only goes up — once a criterion is confirmed, it stays confirmed. Aim for 3/6 before offering a demo."_s);
}

TEST(GuideViewTest, theFourTypesOfBuyersHaveTheirLettersAndColours) {
    EXPECT_EQ(
        rowsOf(2),
        (QStringList{
            u"D red Dominant: Short replies, interrupts, wants bottom line. Be direct, lead with data and ROI."_s,
            u"I yellow Influential: Tells stories, enthusiastic, vision-focused. Match energy, paint the picture."_s,
            u"S green Steady: Risk-averse, asks about support. Slow down, provide references and reassurance."_s,
            u"C blue Conscientious: Asks for specs, data sheets, documentation. Quantify everything, be precise."_s}));
}

TEST(GuideViewTest, theSixStagesPointOn) {
    const QString mark = u"chevron.right.circle.fill cyan "_s;
    EXPECT_EQ(
        rowsOf(3),
        (QStringList{
            mark + u"Opening: Build rapport, match energy. Keep it under 60 seconds. No demos, no pitching."_s,
            mark + u"Discovery: Ask SPIN questions (Situation, Problem). Listen 70% of the time. Find the pain."_s,
            mark + u"Qualification: Check MEDDIC criteria. \"Who owns the budget?\" \"What's the timeline?\""_s,
            mark + u"Demo: Only after 3/6 MEDDIC. Tie every feature to their stated pain. No feature dumps."_s,
            mark + u"Negotiation: Anchor high. Never discount without an ROI justification first."_s,
            mark + u"Closing: Summarize agreements. Set next steps with specific dates."_s}));
}

TEST(GuideViewTest, theSixKindsOfTipsHaveTheirSymbols) {
    QStringList plain;
    for (QString row : rowsOf(4))
        plain.push_back(row.section(u' ', 0, 0) + u' ' + row.section(u' ', 2));
    EXPECT_EQ(plain,
              (QStringList{
                  u"lightbulb Whisper: Tactical tip — \"Ask about budget holder\""_s,
                  u"questionmark.bubble Question: Suggests a question — \"What's your biggest challenge with...?\""_s,
                  u"shield Objection: Handles pushback — \"Acknowledge, then reframe ROI\""_s,
                  u"chart.bar Data Point: Shares a fact — \"Zelto cuts support tickets 80%\""_s,
                  u"arrow.right Stage Move: Time to advance — \"Pain confirmed, pivot to demo\""_s,
                  u"ear Listen: Stop talking — the customer is sharing something important"_s}));
}

TEST(GuideViewTest, trainingHasATipAndStealthHasNone) {
    EXPECT_TRUE(rowsOf(5).isEmpty());
    EXPECT_EQ(
        noteOf(5),
        u"lightbulb.fill orange: Tip: Try different DISC types for the same scenario. A Dominant buyer needs a completely different approach than a Steady one."_s);
    EXPECT_TRUE(rowsOf(6).isEmpty());
    EXPECT_EQ(noteOf(6), QString{});
}

TEST(GuideViewTest, everySymbolAndColourIsKnown) {
    const Theme theme;
    for (const QVariant& value : GuideView::sections()) {
        const QVariantMap section = value.toMap();
        EXPECT_TRUE(isKnownSymbol(section.value(u"symbol"_s).toString()));
        QVariantList marked = section.value(u"rows"_s).toList();
        if (const QVariantMap note = section.value(u"note"_s).toMap(); !note.isEmpty())
            marked.push_back(note);
        for (const QVariant& mark : marked) {
            const QString symbol = mark.toMap().value(u"symbol"_s).toString();
            EXPECT_TRUE(symbol.isEmpty() || isKnownSymbol(symbol)) << qPrintable(symbol);
            EXPECT_TRUE(theme.named().contains(mark.toMap().value(u"colorName"_s).toString()));
        }
    }
}

}  // namespace

}  // namespace corvellan::test

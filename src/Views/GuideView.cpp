#include "GuideView.h"

#include <array>
#include <span>

#include "IntroductionRow.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

struct GuideSection {
    std::string_view title;
    std::string_view symbol;
    std::string_view text;
    std::span<const IntroductionRow> rows;
    IntroductionNote note;
};

constexpr auto steps = std::to_array<IntroductionRow>({
    {"1", "", "cyan", "Start a call", "Search for the company, hit Call. Bram connects to your mic and system audio."},
    {"2", "", "cyan", "Bram listens",
     "Speech is transcribed in real-time. Bram analyzes what you and the customer say."},
    {"3", "", "cyan", "Get coaching",
     "Short tips appear on screen — what question to ask, how to handle an objection, when to move forward."},
    {"4", "", "cyan", "Review after",
     "Session summary shows your MEDDIC score, key coaching points, and full transcript."},
});

constexpr auto criteria = std::to_array<IntroductionRow>({
    {"M", "", "green", "Metrics",
     "Has the customer quantified the impact? Cost savings, time saved, incidents reduced."},
    {"E", "", "green", "Economic Buyer", "Do you know who owns the budget? Get a name."},
    {"D", "", "green", "Decision Criteria", "What are they evaluating on? Features, price, support, compliance?"},
    {"D", "", "yellow", "Decision Process", "What are the approval steps? Timeline? Who else is involved?"},
    {"I", "", "orange", "Identify Pain", "Have they stated an explicit pain point — not just interest?"},
    {"C", "", "cyan", "Champion", "Is there a named internal advocate pushing for your solution?"},
});

constexpr auto buyers = std::to_array<IntroductionRow>({
    {"D", "", "red", "Dominant", "Short replies, interrupts, wants bottom line. Be direct, lead with data and ROI."},
    {"I", "", "yellow", "Influential", "Tells stories, enthusiastic, vision-focused. Match energy, paint the picture."},
    {"S", "", "green", "Steady", "Risk-averse, asks about support. Slow down, provide references and reassurance."},
    {"C", "", "blue", "Conscientious", "Asks for specs, data sheets, documentation. Quantify everything, be precise."},
});

constexpr std::string_view stageSymbol = "chevron.right.circle.fill";

constexpr auto stages = std::to_array<IntroductionRow>({
    {"", stageSymbol, "cyan", "Opening",
     "Build rapport, match energy. Keep it under 60 seconds. No demos, no pitching."},
    {"", stageSymbol, "cyan", "Discovery",
     "Ask SPIN questions (Situation, Problem). Listen 70% of the time. Find the pain."},
    {"", stageSymbol, "cyan", "Qualification",
     "Check MEDDIC criteria. \"Who owns the budget?\" \"What's the timeline?\""},
    {"", stageSymbol, "cyan", "Demo",
     "Only after 3/6 MEDDIC. Tie every feature to their stated pain. No feature dumps."},
    {"", stageSymbol, "cyan", "Negotiation", "Anchor high. Never discount without an ROI justification first."},
    {"", stageSymbol, "cyan", "Closing", "Summarize agreements. Set next steps with specific dates."},
});

// In the colours that the tips have in a call.
constexpr auto tips = std::to_array<IntroductionRow>({
    {"", "lightbulb", "gold", "Whisper", "Tactical tip — \"Ask about budget holder\""},
    {"", "questionmark.bubble", "cyan", "Question", "Suggests a question — \"What's your biggest challenge with...?\""},
    {"", "shield", "red", "Objection", "Handles pushback — \"Acknowledge, then reframe ROI\""},
    {"", "chart.bar", "green", "Data Point", "Shares a fact — \"Zelto cuts support tickets 80%\""},
    {"", "arrow.right", "purple", "Stage Move", "Time to advance — \"Pain confirmed, pivot to demo\""},
    {"", "ear", "gray", "Listen", "Stop talking — the customer is sharing something important"},
});

const std::array sectionTable{
    GuideSection{.title = "How It Works",
                 .symbol = "waveform",
                 .text = "Bram listens to your sales call in real-time and whispers short coaching tips — like having "
                         "an experienced sales manager in your ear. It tracks your conversation, identifies where you "
                         "are in the sales process, and suggests what to do next.",
                 .rows = steps,
                 .note = {}},
    GuideSection{.title = "MEDDIC — Deal Qualification",
                 .symbol = "checkmark.seal",
                 .text = "MEDDIC helps you qualify deals systematically. Bram tracks each criterion during the call "
                         "and shows your progress as a score (0–6).",
                 .rows = criteria,
                 .note = {.symbol = "info.circle",
                          .colorName = "cyan",
                          .opacity = 0.08,
                          .text = "MEDDIC only goes up — once a criterion is confirmed, it stays confirmed. Aim for "
                                  "3/6 before offering a demo."}},
    GuideSection{.title = "DISC — Buyer Personality",
                 .symbol = "person.2",
                 .text = "Bram detects the buyer's communication style and adjusts coaching advice accordingly. It "
                         "takes 2+ signals to detect a type.",
                 .rows = buyers,
                 .note = {}},
    GuideSection{.title = "Call Stages",
                 .symbol = "phone",
                 .text = "Bram tracks where you are in the conversation and coaches accordingly. You can't skip stages "
                         "— build trust before pitching.",
                 .rows = stages,
                 .note = {}},
    GuideSection{.title = "What Bram Tells You",
                 .symbol = "text.bubble.fill",
                 .text = "Coaching messages are short (max 10 words) so you can read them in 5 seconds without losing "
                         "focus on the conversation.",
                 .rows = tips,
                 .note = {}},
    GuideSection{.title = "Training Mode",
                 .symbol = "figure.boxing",
                 .text = "Practice without a real customer. Bram simulates a buyer with a specific personality (DISC "
                         "type) in a chosen scenario. You talk through your mic, the AI customer responds with voice.",
                 .rows = {},
                 .note = {.symbol = "lightbulb.fill",
                          .colorName = "orange",
                          .opacity = 0.1,
                          .text = "Tip: Try different DISC types for the same scenario. A Dominant buyer needs a "
                                  "completely different approach than a Steady one."}},
    GuideSection{.title = "Stealth Mode",
                 .symbol = "eye.slash",
                 .text = "During a call, toggle stealth to make the coaching window invisible to screen sharing (Zoom, "
                         "Meet, Teams). Your customer won't see Bram — only you can.",
                 .rows = {},
                 .note = {}},
};

QVariantMap asMap(const GuideSection& section) {
    QVariantList rows;
    for (const IntroductionRow& row : section.rows)
        rows.push_back(corvellan::asMap(row));
    return {{u"title"_s, tableText(section.title)},
            {u"symbol"_s, tableText(section.symbol)},
            {u"text"_s, tableText(section.text)},
            {u"rows"_s, rows},
            {u"note"_s, corvellan::asMap(section.note)}};
}

}  // namespace

QString GuideView::title() {
    return u"Corvellan Bram"_s;
}

QString GuideView::subtitle() {
    return u"Your AI Sales Coach"_s;
}

QVariantList GuideView::sections() {
    QVariantList sections;
    for (const GuideSection& section : sectionTable)
        sections.push_back(asMap(section));
    return sections;
}

}  // namespace corvellan

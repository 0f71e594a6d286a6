#include "CoachRules.h"

#include <algorithm>
#include <array>

namespace corvellan::sandbox::rules {

namespace {

using enum CoachingType;
using enum CoachingUrgency;

constexpr std::array criteria{
    CriterionRule{
        // Metrics
        .phrases =
            "percent|hours a week|hours a day|hours per week|hours every week|hours a month|days a month|# hours|"
            "euros a month|euros a year|dollars a month|dollars a year|pounds a year|thousand a year|a million|"
            "twice as long|half the time|error rate|turnover of",
        .won = {dataPoint, low, "A number. Write it down and repeat it."},
        .question = {questionPrompt, medium, "Ask what the problem costs them each week."},
    },
    CriterionRule{
        // Economic buyer
        .phrases = "signs off|sign off|holds the budget|owns the budget|my budget|approves the budget|has the budget|"
                   "final say|final decision is|decision maker|cfo decides|ceo decides|board approves|i decide",
        .won = {dataPoint, medium, "Economic buyer named. Ask to meet this person."},
        .question = {questionPrompt, medium, "Ask who signs off the budget."},
    },
    CriterionRule{
        // Decision criteria
        .phrases =
            "it must|it has to|must have|we need it to|it needs to|requirement*|most important is|most important to us|"
            "deal breaker|we are looking for|criteria",
        .won = {dataPoint, low, "Criterion heard. Tie your demo to it."},
        .question = {questionPrompt, medium, "Ask what the right tool must do."},
    },
    CriterionRule{
        // Decision process
        .phrases =
            "legal review|security review|procurement|then the board|first a trial|pilot first|we decide by|decide by|"
            "approval process|by the end of the quarter|next steps are|sign by|committee",
        .won = {dataPoint, medium, "You know the process. Agree on dates."},
        .question = {questionPrompt, medium, "Ask how they will come to a decision."},
    },
    CriterionRule{
        // Identify pain
        .phrases =
            "real problem|big problem|problem for us|biggest problem|struggl*|waste* time|wasting|painful|pain point|"
            "takes too long|too slow|by hand|error prone|keeps breaking|we lose|losing customers|drives us "
            "mad|nightmare",
        .won = {dataPoint, medium, "Pain found. Ask what it costs them."},
        .question = {questionPrompt, medium, "Ask what annoys them most today."},
    },
    CriterionRule{
        // Champion
        .phrases = "i will bring it|ill bring it|i will push|ill push|i will recommend|ill recommend|i am convinced|"
                   "i will present it|ill present it|i will talk to|ill talk to|i want this|count on me|i would push",
        .won = {dataPoint, medium, "You have a champion. Arm them with numbers."},
        .question = {questionPrompt, medium, "Ask who will push this internally."},
    },
};
static_assert(criteria.size() == meddicCriteria);

constexpr std::array stages{
    StageRule{CallStage::discovery, Speaker::salesperson,
              "how do you|how are you handling|tell me about|walk me through|what are you using|what brings you"},
    StageRule{CallStage::discovery, Speaker::customer,
              "at the moment we|today we|right now we|we currently|our problem"},
    StageRule{CallStage::qualification, Speaker::salesperson,
              "who decides|who signs|what budget|your timeline|by when"},
    StageRule{CallStage::qualification, Speaker::customer, "budget|signs off|decision maker|our timeline"},
    StageRule{CallStage::demo, Speaker::salesperson, "let me show|i will show you|share my screen|as you can see"},
    StageRule{CallStage::demo, Speaker::customer, "can you show|show me|see it live|a demo"},
    StageRule{CallStage::negotiation, Speaker::salesperson,
              "it comes to|the price is|costs you|a discount|per seat|euros a month|dollars a month|our terms"},
    StageRule{CallStage::negotiation, Speaker::customer,
              "what does it cost|how much is|a discount|your price|payment terms"},
    StageRule{CallStage::closing, Speaker::salesperson,
              "send the contract|send the agreement|trial agreement|send the offer|start on monday|get you started"},
    StageRule{CallStage::closing, Speaker::customer,
              "lets do it|let us do it|where do i sign|send me the contract|count us in"},
    StageRule{CallStage::support, Speaker::customer,
              "ticket|outage|is down|not working|stopped working|support case|a bug"},
    StageRule{CallStage::renewal, Speaker::customer,
              "renew*|contract ends|contract runs out|contract expires|extend our"},
};

constexpr std::array stageTable{
    StageText{CallStage::opening, "Building rapport", {whisper, low, "Warm up, then ask about their day."}},
    StageText{CallStage::discovery, "Exploring needs", {stageTransition, low, "Discovery now. Ask, then listen."}},
    StageText{CallStage::qualification,
              "Checking the fit",
              {stageTransition, medium, "Qualify now: budget, timing, who decides."}},
    StageText{CallStage::demo, "Showing value", {stageTransition, medium, "Demo now. Show only what they asked for."}},
    StageText{CallStage::negotiation, "Talking terms", {stageTransition, medium, "Terms now. Trade, never just give."}},
    StageText{CallStage::objectionHandling,
              "Answering doubts",
              {stageTransition, high, "Doubts now. Listen before you answer."}},
    StageText{CallStage::closing, "Agreeing next steps", {stageTransition, high, "Close now. Fix a date and owner."}},
    StageText{CallStage::support, "Solving a problem", {stageTransition, high, "Support first. Selling comes later."}},
    StageText{CallStage::renewal,
              "Securing the renewal",
              {stageTransition, medium, "Renewal. Recall what they gained so far."}},
};
static_assert(stageTable.size() == callStageRows.size());

constexpr std::array objections{
    ObjectionRule{"price",
                  "too expensive|too much money|costs too much|cannot afford|cant afford|over budget|no budget|cheaper",
                  {objectionHandler, high, "Don't defend the price. Ask what waiting costs."}},
    ObjectionRule{"timing",
                  "not the right time|no time for|next year maybe|too busy|call me later|not right now|not a priority",
                  {objectionHandler, high, "Ask what changes if they wait."}},
    ObjectionRule{"competitor",
                  "already use|already have a|happy with our|competitor|other vendor|another provider",
                  {objectionHandler, high, "Ask what they would improve there."}},
    ObjectionRule{"authority",
                  "not my decision|have to ask my|i cannot decide|i cant decide",
                  {objectionHandler, medium, "Offer to join the talk with the decider."}},
    ObjectionRule{"trust",
                  "dont believe|not convinced|too good to be true|sounds risky|too risky|worried about",
                  {objectionHandler, high, "Name a customer like them, with figures."}},
};

constexpr std::array discSigns{
    DiscRule{DiscType::dominant, "keep it brief|bottom line|quickly|get to the point|results|right away|fast|cut to"},
    DiscRule{DiscType::influential, "love|exciting|amazing|awesome|my team|people will|fun|great story"},
    DiscRule{DiscType::steady, "no rush|step by step|make sure everyone|comfortable|safe|take our time|support from"},
    DiscRule{DiscType::conscientious,
             "exactly how|in detail|documentation|data|accurate|compliance|specification*|precise*"},
};

constexpr std::array moods{
    MoodRule{CustomerSentiment::frustrated,
             "fed up|frustrat*|annoy*|ridiculous|waste of my time|drives us mad|nightmare",
             Tip{whisper, high, "They are upset. Acknowledge it first."}},
    MoodRule{CustomerSentiment::resistant, "not interested|stop calling|no way|forget it|leave it",
             Tip{whisper, high, "Step back. Ask for permission to go on."}},
    MoodRule{CustomerSentiment::skeptical,
             "too expensive|not convinced|not sure|doubt*|really work|too good|sounds risky|prove",
             Tip{whisper, medium, "They doubt. Offer proof, not promises."}},
    MoodRule{CustomerSentiment::confused, "dont understand|confus*|what do you mean|lost me|not following",
             Tip{whisper, medium, "Slow down. Say it with an example."}},
    MoodRule{CustomerSentiment::eager,
             "lets do it|let us do it|where do i sign|as soon as possible|cant wait|when can we start",
             Tip{whisper, high, "They are ready. Stop selling, agree on dates."}},
    MoodRule{CustomerSentiment::interested,
             "interesting|tell me more|can you show|show me|how does that work|curious|looks great",
             Tip{whisper, low, "Interest is up. Ask what caught it."}},
    MoodRule{CustomerSentiment::positive, "great|perfect|good|i like|thank*|nice|excellent|fair point|makes sense",
             std::nullopt},
};

constexpr std::array products{
    ProductRule{"spreadsheet*|excel", "Import: spreadsheets become plans in minutes"},
    ProductRule{"connect*|integrat*|interface|warehouse system|erp|crm", "Connectors: links to the systems they have"},
    ProductRule{"report*|dashboard*|overview", "Insights: live reports for the whole team"},
    ProductRule{"secur*|gdpr|compliance|audit*", "Trust pack: audit log, data kept in the region"},
    ProductRule{"mobile|phone|driver*|on the road", "Companion: the mobile app for the road"},
    ProductRule{"trial|pilot", "Trial: thirty days with a named helper"},
};

constexpr std::array habits{
    HabitRule{"it comes to|the price is|euros a month|dollars a month|per seat",
              {silence, high, "Stay silent. Let the price settle."}},
    HabitRule{"discount|cheaper for you|come down", {whisper, high, "Never discount unasked. Trade it for something."}},
    HabitRule{"to be honest|honestly|trust me", {whisper, low, "Drop \"honestly\". Let facts speak."}},
    HabitRule{"our product can|our platform can|we also have|another feature",
              {whisper, medium, "Fewer features. Come back to their problem."}},
    HabitRule{"i understand|i hear you|that makes sense", {listen, medium, "Good. Now pause and let them talk."}},
};

constexpr Tip objectionOver{whisper, medium, "Doubt answered. Confirm it, then move on."};
constexpr Tip questionAsked{listen, low, "Good question. Let them finish."};
constexpr Tip monologue{whisper, high, "You talk a lot. Ask something."};
constexpr Tip allWon{whisper, low, "All six criteria won. Agree next steps."};

constexpr std::array companies{
    CompanyNote{
        "halden freight",
        "Halden Freight: 140 trucks, 60 dispatchers and drivers on spreadsheets. Last contact in spring; asked for "
        "a connector to their warehouse system. Open deal, no decision maker recorded."},
    CompanyNote{
        "northwind",
        "Northwind: retailer with 35 shops. Customer for two years, contract ends this autumn. Two open support "
        "cases."},
};
constexpr std::string_view unknownCompany = "No earlier contact. Find out how they work today and who decides.";

constexpr bool isShort(const Tip& tip) {
    return !tip.text.empty() && wordCount(tip.text) <= mostWordsInATip;
}
static_assert(std::ranges::all_of(criteria, [](const auto& row) { return isShort(row.won) && isShort(row.question); }));
static_assert(std::ranges::all_of(stageTable, [](const auto& row) { return isShort(row.entered); }));
static_assert(std::ranges::all_of(objections, [](const auto& row) { return isShort(row.answer); }));
static_assert(std::ranges::all_of(moods, [](const auto& row) { return !row.tip || isShort(*row.tip); }));
static_assert(std::ranges::all_of(habits, [](const auto& row) { return isShort(row.tip); }));
static_assert(isShort(objectionOver) && isShort(questionAsked) && isShort(monologue) && isShort(allWon));

}  // namespace

std::span<const CriterionRule> criterionRules() {
    return criteria;
}

std::span<const StageRule> stageRules() {
    return stages;
}

std::span<const StageText> stageTexts() {
    return stageTable;
}

std::span<const ObjectionRule> objectionRules() {
    return objections;
}

Tip objectionHandled() {
    return objectionOver;
}

std::span<const DiscRule> discRules() {
    return discSigns;
}

DiscConfidence discConfidenceOf(int signalCount) {
    constexpr int forMedium = 3;
    constexpr int forHigh = 5;
    if (signalCount >= forHigh)
        return DiscConfidence::high;
    return signalCount >= forMedium ? DiscConfidence::medium : DiscConfidence::low;
}

std::span<const MoodRule> moodRules() {
    return moods;
}

std::span<const ProductRule> productRules() {
    return products;
}

std::span<const HabitRule> habitRules() {
    return habits;
}

Tip afterQuestion() {
    return questionAsked;
}

Tip afterMonologue() {
    return monologue;
}

Tip nothingOpen() {
    return allWon;
}

std::span<const CompanyNote> companyNotes() {
    return companies;
}

std::string_view unknownCompanyBrief() {
    return unknownCompany;
}

}  // namespace corvellan::sandbox::rules

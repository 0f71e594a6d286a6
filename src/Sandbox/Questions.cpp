#include "Questions.h"

#include <algorithm>
#include <array>
#include <QStringList>

#include "Phrases.h"

namespace corvellan::sandbox {

namespace {

/// So far into a sentence its opening reaches: "So Tom, just to understand, how ...".
constexpr qsizetype openingWords = 7;

constexpr std::string_view openOpenings =
    "what|whats|how|hows|why|which|who|whos|where|when|whose|tell me|tell us|describe|explain|walk me|walk us|"
    "talk me|help me understand|share with me|give me an example";
constexpr std::string_view closedOpenings =
    "do you|does|did you|is it|is there|is that|is this|is your|are you|are there|are your|was it|were you|"
    "have you|has|had you|can you|can we|can i|could you|could we|would you|would it|will you|shall we|should we|"
    "may i|dont you|isnt|arent|wouldnt";

struct TopicRow {
    Topic topic;
    std::string_view phrases;
};

/// The first row that fits counts, so the special stands above the general.
constexpr std::array topics{
    TopicRow{Topic::rapport, "how are you|how is your day|how was your|hows it going|how do you do|nice to meet"},
    TopicRow{Topic::economicBuyer,
             "sign off|signs off|signs|sign the|approve*|decision maker|final say|who decides|who makes the decision|"
             "holds the budget|owns the budget|pays for"},
    TopicRow{Topic::champion,
             "who would push|push for|support you|on your side|champion|recommend|internally|"
             "who else wants|behind this|benefit most|who gains"},
    TopicRow{Topic::decisionProcess,
             "decision process|you decide|come to a decision|make a decision|procurement|legal|timeline|by when|"
             "buying process|evaluat*|steps|approval process|happens next on your side"},
    TopicRow{Topic::decisionCriteria,
             "criteria|must it|must have|requirement*|looking for|look for|most important|"
             "matter* most|matters to you|need it to|need from|ideal|right tool|right solution|expect*"},
    TopicRow{Topic::budget, "budget*|afford|spend|invest*|price range|set aside|money"},
    TopicRow{Topic::metrics,
             "how much|how many|how often|how long|cost you|costs you|cost your|hours|percent|"
             "numbers|measure*|figures|quantif*|impact"},
    TopicRow{Topic::pain,
             "problem*|challeng*|struggl*|pain*|annoy*|frustrat*|difficult*|slow*|worr*|wrong|today|"
             "at the moment|currently|right now|handle*|manage*|how do you|tell me about|walk me through|"
             "improve|better|bother*|keeps you|trouble*|happen*"},
};

constexpr std::string_view pitchPhrases =
    "our product|our platform|our solution|our software|our tool|our system|our app|we offer|we help companies|"
    "we can help|let me show|i will show you|will save you|saves you|the best|number one|market leader|features|"
    "we built|our customers|special offer|we are the leading";
constexpr std::string_view pricePhrases =
    "it costs|the price is|it comes to|euros|dollars|pounds|per seat|per month|"
    "a discount|our price";
constexpr std::string_view nextStepPhrases =
    "next step|meet again|meet on|a meeting|schedule|send you an invite|put it in the calendar|monday|tuesday|"
    "wednesday|thursday|friday|next week|a trial|a pilot|send you the contract|send the contract|send you an offer|"
    "get started|demo on";

Sentence openingOf(const Sentence& sentence) {
    Sentence opening = sentence;
    opening.words = sentence.words.first(std::min(openingWords, sentence.words.size()));
    return opening;
}

}  // namespace

QuestionKind questionKind(const Sentence& sentence) {
    const Sentence opening = openingOf(sentence);
    // Without its mark a sentence is a question by its very first words alone: "I know how you feel" is none.
    const auto begins = [&](std::string_view phrases) {
        Sentence start = sentence;
        static const QStringList fillers{QStringLiteral("so"),   QStringLiteral("and"),  QStringLiteral("but"),
                                         QStringLiteral("well"), QStringLiteral("okay"), QStringLiteral("ok"),
                                         QStringLiteral("now"),  QStringLiteral("then"), QStringLiteral("right")};
        while (!start.words.isEmpty() && fillers.contains(start.words.first()))
            start.words.removeFirst();
        constexpr qsizetype longestOpening = 3;
        for (qsizetype length = 1; length <= std::min(longestOpening, start.words.size()); ++length) {
            Sentence head = start;
            head.words = start.words.first(length);
            const auto found = findPhrase(head, phrases);
            if (found && found->split(u' ').size() == length)
                return true;
        }
        return false;
    };
    if (sentence.isQuestion)
        return findPhrase(opening, openOpenings) ? QuestionKind::open : QuestionKind::closed;
    if (begins(openOpenings))
        return QuestionKind::open;
    return begins(closedOpenings) ? (findPhrase(opening, openOpenings) ? QuestionKind::open : QuestionKind::closed)
                                  : QuestionKind::none;
}

std::optional<Topic> topicOf(const Sentence& sentence) {
    const auto found = std::ranges::find_if(
        topics, [&](const TopicRow& row) { return findPhrase(sentence, row.phrases).has_value(); });
    return found == topics.end() ? std::nullopt : std::optional{found->topic};
}

std::string_view shortName(Topic topic) {
    static constexpr std::array<std::string_view, 6> names{"numbers", "budget owner", "criteria",
                                                           "process", "pain",         "champion"};
    return isMeddic(topic) ? names.at(static_cast<std::size_t>(topic)) : std::string_view{};
}

bool isPitch(const Sentence& sentence) {
    return findPhrase(sentence, pitchPhrases).has_value();
}

bool namesPrice(const Sentence& sentence) {
    return findPhrase(sentence, pricePhrases).has_value();
}

bool asksForNextStep(const Sentence& sentence) {
    return findPhrase(sentence, nextStepPhrases).has_value();
}

}  // namespace corvellan::sandbox

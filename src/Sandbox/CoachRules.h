#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "Models/Types.h"

/// What the coach knows: plain tables, and nothing else. To teach it something, add a row in
/// CoachRules.cpp. Phrases are written as `findPhrase` (Phrases.h) reads them; a tip has at most ten
/// words, which the compiler checks.
namespace corvellan::sandbox::rules {

enum class Speaker { salesperson, customer };

struct Tip {
    CoachingType type = CoachingType::whisper;
    CoachingUrgency urgency = CoachingUrgency::medium;
    std::string_view text;
};

/// Won once and for all by what the customer says; a question wins nothing. In the order of
/// `MeddicScore::values`.
struct CriterionRule {
    std::string_view phrases;
    Tip won;       ///< When the customer gives it away.
    Tip question;  ///< How to get at it while it is open.
};
[[nodiscard]] std::span<const CriterionRule> criterionRules();

/// A word that moves the call on. Stages of the sales ladder only go up.
struct StageRule {
    CallStage to;
    Speaker speaker;
    std::string_view phrases;
};
[[nodiscard]] std::span<const StageRule> stageRules();

/// What a stage is about, for the overlay's phase line, and the tip when a call enters it. In the order
/// of `CallStage`.
struct StageText {
    CallStage stage;
    std::string_view phase;
    Tip entered;
};
[[nodiscard]] std::span<const StageText> stageTexts();

/// What a customer holds against it. The call is in objection handling until he says something else.
struct ObjectionRule {
    std::string_view name;
    std::string_view phrases;
    Tip answer;
};
[[nodiscard]] std::span<const ObjectionRule> objectionRules();
/// When the customer has said something else.
[[nodiscard]] Tip objectionHandled();

/// One signal each; two make a type.
struct DiscRule {
    DiscType type;
    std::string_view phrases;
};
[[nodiscard]] std::span<const DiscRule> discRules();
/// The confidence of a type with this many signals, from two on.
[[nodiscard]] DiscConfidence discConfidenceOf(int signalCount);

/// The first row that fits is the customer's mood.
struct MoodRule {
    CustomerSentiment mood;
    std::string_view phrases;
    std::optional<Tip> tip;  ///< Shown when nothing weightier was said.
};
[[nodiscard]] std::span<const MoodRule> moodRules();
/// So many utterances without a sign of a mood make it neutral again.
inline constexpr int utterancesUntilNeutral = 3;

/// Something of the offer that fits what the customer speaks of.
struct ProductRule {
    std::string_view phrases;
    std::string_view hint;
};
[[nodiscard]] std::span<const ProductRule> productRules();

/// What a salesperson says and had better follow up well. The first row that fits counts.
struct HabitRule {
    std::string_view phrases;
    Tip tip;
};
[[nodiscard]] std::span<const HabitRule> habitRules();
/// After a question of the salesperson.
[[nodiscard]] Tip afterQuestion();
/// After more words than `monologueWords` in one go.
[[nodiscard]] Tip afterMonologue();
inline constexpr int monologueWords = 45;
/// When all six criteria are won and nothing else is to be said.
[[nodiscard]] Tip nothingOpen();

/// What the CRM knows.
struct CompanyNote {
    std::string_view company;  ///< In lower case, as the name begins.
    std::string_view brief;
};
[[nodiscard]] std::span<const CompanyNote> companyNotes();
/// For a company that the CRM does not know.
[[nodiscard]] std::string_view unknownCompanyBrief();

/// Words of a tip, counted by the blanks between them.
[[nodiscard]] constexpr int wordCount(std::string_view text) {
    int words = 0;
    bool isInside = false;
    for (const char character : text) {
        if (character != ' ' && !isInside)
            ++words;
        isInside = character != ' ';
    }
    return words;
}
inline constexpr int mostWordsInATip = 10;

}  // namespace corvellan::sandbox::rules

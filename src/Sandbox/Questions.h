#pragma once

#include <optional>
#include <string_view>

namespace corvellan::sandbox {

struct Sentence;

/// An open question makes people talk; a closed one is answered with yes or no.
enum class QuestionKind { none, open, closed };

/// As a listener takes it: recognisers often leave the question mark out.
[[nodiscard]] QuestionKind questionKind(const Sentence& sentence);

/// What a question is about. The first six are the MEDDIC criteria in their order.
enum class Topic {
    metrics,
    economicBuyer,
    decisionCriteria,
    decisionProcess,
    pain,
    champion,
    budget,
    rapport,
};

/// Nothing for a question on something else.
[[nodiscard]] std::optional<Topic> topicOf(const Sentence& sentence);
[[nodiscard]] constexpr bool isMeddic(Topic topic) {
    return topic <= Topic::champion;
}
/// Of a MEDDIC topic, in one or two words.
[[nodiscard]] std::string_view shortName(Topic topic);

/// The salesperson speaks of what is for sale.
[[nodiscard]] bool isPitch(const Sentence& sentence);
/// The salesperson names a price.
[[nodiscard]] bool namesPrice(const Sentence& sentence);
/// The salesperson asks for the next step.
[[nodiscard]] bool asksForNextStep(const Sentence& sentence);

}  // namespace corvellan::sandbox

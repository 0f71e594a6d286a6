#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <QString>
#include <QStringList>
#include <random>
#include <vector>

#include "BuyerBook.h"
#include "Coach.h"
#include "Questions.h"

namespace corvellan::sandbox {

struct Sentence;

/// What the buyer answers, and what it gives away with that.
struct BuyerReply {
    QString text;
    std::optional<GivenAway> given;
};

/// A simulated customer in one training session. Open questions make it talk, closed ones get a yes or a no, the
/// budget is told to those who ask for it, and who offers something before knowing a trouble hears an objection.
/// The same seed and the same words give the same answers. One thread.
class Buyer {
public:
    /// \param asked absent or `unknown` leaves the personality to the seed. The book outlives the buyer.
    Buyer(const BuyerBook& book, const BuyerScenario& scenario, std::optional<DiscType> asked, std::uint32_t seed);

    [[nodiscard]] DiscType type() const { return m_personality.type; }
    [[nodiscard]] std::chrono::milliseconds thinkTime() const { return m_personality.think; }
    [[nodiscard]] std::chrono::milliseconds wordTime() const { return m_personality.word; }

    /// What it says when the call begins.
    [[nodiscard]] QString opening();
    /// Takes a finished utterance of the salesperson. One without words counts as an open question on whatever
    /// has not been told yet; nothing at all gets no answer.
    [[nodiscard]] std::optional<BuyerReply> hear(const QString& text);

    /// What the salesperson should take away, for the summary.
    [[nodiscard]] QStringList keyPoints() const;

private:
    using Sentences = std::vector<Sentence>;

    [[nodiscard]] BuyerReply answer(const Sentences& said);
    [[nodiscard]] BuyerReply answerOpen(const Sentence& question, std::optional<Topic> topic);
    [[nodiscard]] BuyerReply answerClosed(const Sentence& question, std::optional<Topic> topic);
    [[nodiscard]] BuyerReply answerStatement(const Sentences& said);
    [[nodiscard]] BuyerReply answerNextStep();
    [[nodiscard]] BuyerReply answerWithoutWords();
    [[nodiscard]] BuyerReply tellPain(std::size_t pain);
    [[nodiscard]] BuyerReply tellCriterion(std::size_t criterion);
    [[nodiscard]] BuyerReply tellBudget();
    [[nodiscard]] BuyerReply tellNextPain(const Sentence* question);
    [[nodiscard]] std::optional<QString> object(const QStringList& objections);
    [[nodiscard]] QString tell(const BuyerFact& fact);
    /// Adds a question of the buyer's own where it is time for one.
    [[nodiscard]] QString rounded(QString text);
    [[nodiscard]] const QString& pick(const QStringList& texts);
    [[nodiscard]] QString filled(QString text) const;
    [[nodiscard]] std::size_t painsTold() const;
    [[nodiscard]] bool knowsEnough() const;

    const BuyerScenario& m_scenario;
    std::mt19937 m_dice;
    const BuyerPersonality& m_personality;
    bool m_wasAsked;  ///< For this personality, by the user.
    std::map<const QStringList*, qsizetype> m_lastPicked;
    std::vector<bool> m_painsTold;
    std::array<bool, meddicCriteria> m_told{};
    bool m_isBudgetTold = false;
    QStringList m_raised;  ///< Objections, each once.
    int m_replies = 0;
    int m_openQuestions = 0;
    int m_closedQuestions = 0;
    int m_earlyPitches = 0;
    bool m_hasNextStep = false;
};

}  // namespace corvellan::sandbox

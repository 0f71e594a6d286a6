#pragma once

#include <array>
#include <map>
#include <optional>
#include <QString>
#include <QStringList>
#include <set>

#include "CoachRules.h"
#include "Models/Protocol.h"

namespace corvellan::sandbox {

struct Sentence;

/// What a customer is known to have given away, whatever the words: a simulated one tells it.
struct GivenAway {
    std::size_t criterion = 0;  ///< In the order of `MeddicScore::values`.
    QString evidence;
};

/// The judgement of the coaching server over one call: the rules of CoachRules.h applied to one
/// finished utterance after another. Deterministic, without I/O; one thread.
class Coach {
public:
    explicit Coach(const StartSessionPayload& start);

    /// Takes a finished utterance and answers with a tip. Every utterance of the customer gets one, one
    /// of the salesperson only when a rule speaks of it, and one without words none.
    ///
    /// \param given wins its criterion beside those that the words win; of the customer only.
    [[nodiscard]] std::optional<CoachingPayload> hear(AudioSourceTag side, const QString& text,
                                                      const std::optional<GivenAway>& given = {});

    [[nodiscard]] CallStateSnapshot state() const;

    /// What the salesperson should take away from this call. Never empty.
    [[nodiscard]] QStringList coachingPoints() const;

    /// Utterances with words in them, of both sides.
    [[nodiscard]] int turns() const { return m_turns; }

private:
    using Sentences = std::vector<Sentence>;

    [[nodiscard]] rules::Tip hearCustomer(const Sentences& said, const std::optional<GivenAway>& given);
    [[nodiscard]] std::optional<rules::Tip> hearSalesperson(const Sentences& said);
    [[nodiscard]] std::optional<std::size_t> winCriteria(const Sentences& said, const std::optional<GivenAway>& given);
    [[nodiscard]] bool moveStage(const Sentences& said, rules::Speaker speaker);
    [[nodiscard]] const rules::ObjectionRule* noteObjection(const Sentences& said);
    [[nodiscard]] std::optional<rules::Tip> readMood(const Sentences& said);
    void readDisc(const Sentences& said);
    void readProduct(const Sentences& said);
    [[nodiscard]] rules::Tip nextQuestion();
    [[nodiscard]] CallStage shownStage() const;
    [[nodiscard]] BuyerDisc disc() const;

    std::array<std::optional<QString>, meddicCriteria> m_evidence;
    CallStage m_stage = CallStage::opening;
    bool m_hasObjection = false;
    QStringList m_objections;  // By name, each once, in order.

    std::map<DiscType, QStringList> m_discSigns;
    DiscType m_discType = DiscType::unknown;

    CustomerSentiment m_mood = CustomerSentiment::neutral;
    int m_utterancesWithoutMood = 0;

    std::optional<QString> m_productHint;
    std::size_t m_nextQuestion = 0;

    int m_turns = 0;
    int m_questions = 0;
    qsizetype m_salespersonWords = 0;
    qsizetype m_customerWords = 0;
};

/// What the CRM knows of a company, sent after the start of a call that names one.
[[nodiscard]] QString companyBrief(const QString& company);

}  // namespace corvellan::sandbox

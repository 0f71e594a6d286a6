#include "Coach.h"

#include <algorithm>

#include "Base/Text.h"
#include "Phrases.h"
#include "UtteranceTexts.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestEvidence = 120;
constexpr std::size_t signsForAType = 2;

bool isSideTrack(CallStage stage) {
    return stage == CallStage::support || stage == CallStage::renewal;
}

}  // namespace

Coach::Coach(const StartSessionPayload& start) {
    const auto& goals = start.goals;
    const auto wants = [&](CallGoal goal) { return goals && std::ranges::find(*goals, goal) != goals->end(); };
    if (wants(CallGoal::supportEscalation))
        m_stage = CallStage::support;
    else if (wants(CallGoal::renewal))
        m_stage = CallStage::renewal;
}

std::optional<CoachingPayload> Coach::hear(AudioSourceTag side, const QString& text,
                                           const std::optional<GivenAway>& given) {
    const auto seconds = side == AudioSourceTag::mic ? secondsWithoutWords(text) : std::nullopt;
    if (seconds) {
        // There is nothing to judge, but whoever tries the program out sees that it hears him.
        ++m_turns;
        return CoachingPayload{.message = u"Heard you for %1 seconds."_s.arg(*seconds),
                               .coachingType = CoachingType::listen,
                               .state = state()};
    }
    const auto said = sentences(text);
    if (said.empty())
        return std::nullopt;
    ++m_turns;
    m_productHint.reset();
    const auto tip = side == AudioSourceTag::mic ? hearSalesperson(said) : hearCustomer(said, given);
    if (!tip)
        return std::nullopt;
    return CoachingPayload{.message = tableText(tip->text),
                           .coachingType = tip->type,
                           .urgency = tip->urgency,
                           .productHint = m_productHint,
                           .state = state()};
}

rules::Tip Coach::hearCustomer(const Sentences& said, const std::optional<GivenAway>& given) {
    for (const auto& sentence : said)
        m_customerWords += sentence.words.size();
    const bool hadObjection = m_hasObjection;
    const auto won = winCriteria(said, given);
    const bool hasMoved = moveStage(said, rules::Speaker::customer);
    const auto* objection = noteObjection(said);
    const auto moodTip = readMood(said);
    readDisc(said);
    readProduct(said);

    // The weightiest first.
    if (objection)
        return objection->answer;
    if (won)
        return rules::criterionRules()[*won].won;
    if (hadObjection)
        return rules::objectionHandled();
    if (hasMoved)
        return rules::stageTexts()[static_cast<std::size_t>(m_stage)].entered;
    if (moodTip)
        return *moodTip;
    return nextQuestion();
}

std::optional<rules::Tip> Coach::hearSalesperson(const Sentences& said) {
    qsizetype words = 0;
    bool hasAsked = false;
    for (const auto& sentence : said) {
        words += sentence.words.size();
        hasAsked = hasAsked || sentence.isQuestion;
    }
    m_salespersonWords += words;
    m_questions += hasAsked ? 1 : 0;
    const bool hasMoved = moveStage(said, rules::Speaker::salesperson);

    for (const auto& habit : rules::habitRules())
        if (findPhrase(said, habit.phrases))
            return habit.tip;
    if (hasMoved)
        return rules::stageTexts()[static_cast<std::size_t>(m_stage)].entered;
    if (words > rules::monologueWords)
        return rules::afterMonologue();
    if (hasAsked)
        return rules::afterQuestion();
    return std::nullopt;
}

std::optional<std::size_t> Coach::winCriteria(const Sentences& said, const std::optional<GivenAway>& given) {
    std::optional<std::size_t> first;
    if (given && !m_evidence.at(given->criterion)) {
        m_evidence.at(given->criterion) = text::prefix(given->evidence, longestEvidence);
        first = given->criterion;
    }
    for (std::size_t i = 0; i < m_evidence.size(); ++i) {
        if (m_evidence.at(i))
            continue;
        for (const auto& sentence : said) {
            if (sentence.isQuestion || !findPhrase(sentence, rules::criterionRules()[i].phrases, Negation::spoils))
                continue;
            m_evidence.at(i) = text::prefix(sentence.text, longestEvidence);
            if (!first)
                first = i;
            break;
        }
    }
    return first;
}

bool Coach::moveStage(const Sentences& said, rules::Speaker speaker) {
    const CallStage before = m_stage;
    for (const auto& rule : rules::stageRules()) {
        if (rule.speaker != speaker || !findPhrase(said, rule.phrases))
            continue;
        if (isSideTrack(rule.to)) {
            // Words of trouble in the middle of a sale don't turn it into a support call.
            if (level(m_stage) <= level(CallStage::discovery) && !isSideTrack(m_stage))
                m_stage = rule.to;
        } else if (isSideTrack(m_stage)) {
            if (level(rule.to) >= level(CallStage::negotiation))
                m_stage = rule.to;
        } else if (level(rule.to) > level(m_stage)) {
            m_stage = rule.to;
        }
    }
    return m_stage != before;
}

const rules::ObjectionRule* Coach::noteObjection(const Sentences& said) {
    m_hasObjection = false;
    for (const auto& rule : rules::objectionRules()) {
        if (!findPhrase(said, rule.phrases, Negation::spoils))
            continue;
        m_hasObjection = true;
        const QString name = tableText(rule.name);
        if (!m_objections.contains(name))
            m_objections.append(name);
        return &rule;
    }
    return nullptr;
}

std::optional<rules::Tip> Coach::readMood(const Sentences& said) {
    for (const auto& rule : rules::moodRules()) {
        if (!findPhrase(said, rule.phrases, Negation::spoils))
            continue;
        m_mood = rule.mood;
        m_utterancesWithoutMood = 0;
        return rule.tip;
    }
    if (++m_utterancesWithoutMood >= rules::utterancesUntilNeutral)
        m_mood = CustomerSentiment::neutral;
    return std::nullopt;
}

void Coach::readDisc(const Sentences& said) {
    for (const auto& rule : rules::discRules())
        for (const auto& sentence : said)
            if (const auto sign = findPhrase(sentence, rule.phrases))
                m_discSigns[rule.type].append(*sign);
    // The first type with the most signs; a type that only draws level does not take over.
    std::size_t most = m_discType == DiscType::unknown ? signsForAType - 1 : m_discSigns[m_discType].size();
    for (const auto& [type, signs] : m_discSigns) {
        if (static_cast<std::size_t>(signs.size()) > most) {
            most = signs.size();
            m_discType = type;
        }
    }
}

void Coach::readProduct(const Sentences& said) {
    for (const auto& rule : rules::productRules()) {
        if (findPhrase(said, rule.phrases)) {
            m_productHint = tableText(rule.hint);
            return;
        }
    }
}

rules::Tip Coach::nextQuestion() {
    // Pain comes first in a conversation, whatever the order of the letters.
    static constexpr std::array<std::size_t, meddicCriteria> order{4, 0, 1, 2, 3, 5};
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::size_t criterion = order.at((m_nextQuestion + i) % order.size());
        if (m_evidence.at(criterion))
            continue;
        m_nextQuestion = (m_nextQuestion + i + 1) % order.size();
        return rules::criterionRules()[criterion].question;
    }
    return rules::nothingOpen();
}

CallStage Coach::shownStage() const {
    return m_hasObjection ? CallStage::objectionHandling : m_stage;
}

BuyerDisc Coach::disc() const {
    BuyerDisc reading{.discType = m_discType};
    if (m_discType == DiscType::unknown)
        return reading;
    const auto& signs = m_discSigns.at(m_discType);
    reading.confidence = rules::discConfidenceOf(static_cast<int>(signs.size()));
    QStringList different = signs;
    different.removeDuplicates();
    reading.signals_ = different.join(u", "_s);
    return reading;
}

CallStateSnapshot Coach::state() const {
    const MeddicScore meddic{.metrics = m_evidence[0].has_value(),
                             .economicBuyer = m_evidence[1].has_value(),
                             .decisionCriteria = m_evidence[2].has_value(),
                             .decisionProcess = m_evidence[3].has_value(),
                             .identifyPain = m_evidence[4].has_value(),
                             .champion = m_evidence[5].has_value()};
    return CallStateSnapshot{
        .callStage = shownStage(),
        .meddicScore = static_cast<std::uint8_t>(meddic.score()),
        .meddic = meddic,
        .disc = disc(),
        .sentiment = m_mood,
        .meddicEvidence = std::vector<std::optional<QString>>(m_evidence.begin(), m_evidence.end()),
        .callPhase = tableText(rules::stageTexts()[static_cast<std::size_t>(shownStage())].phase),
    };
}

QStringList Coach::coachingPoints() const {
    QStringList won;
    QStringList open;
    for (std::size_t i = 0; i < m_evidence.size(); ++i)
        (m_evidence.at(i) ? won : open).append(tableText(meddicDisplayNames.at(i)));

    QStringList points;
    points.append(won.isEmpty() ? u"None of the six criteria was confirmed."_s
                                : u"Confirmed %1 of 6: %2."_s.arg(won.size()).arg(won.join(u", "_s)));
    if (!open.isEmpty())
        points.append(u"Still open: %1."_s.arg(open.join(u", "_s)));
    if (!m_objections.isEmpty())
        points.append(m_hasObjection
                          ? u"Objections raised: %1. The last one is unanswered."_s.arg(m_objections.join(u", "_s))
                          : u"Objections raised and answered: %1."_s.arg(m_objections.join(u", "_s)));
    if (const auto all = m_salespersonWords + m_customerWords; all > 0) {
        constexpr qsizetype fairShare = 60;
        const qsizetype share = 100 * m_salespersonWords / all;
        points.append(share > fairShare ? u"You spoke %1 % of the words. Let the customer talk more."_s.arg(share)
                                        : u"You spoke %1 % of the words. A good balance."_s.arg(share));
    }
    if (m_questions == 0)
        points.append(u"You asked no question."_s);
    else
        points.append(m_questions == 1 ? u"You asked 1 question."_s : u"You asked %1 questions."_s.arg(m_questions));
    if (m_stage != CallStage::closing)
        points.append(u"No next step was agreed. Fix one within a day."_s);
    return points;
}

QString companyBrief(const QString& company) {
    const QString name = text::trimmed(company).toLower();
    for (const auto& note : rules::companyNotes())
        if (name.startsWith(tableText(note.company)))
            return tableText(note.brief);
    return tableText(rules::unknownCompanyBrief());
}

}  // namespace corvellan::sandbox

#include "Buyer.h"

#include <algorithm>

#include "CoachRules.h"
#include "Phrases.h"
#include "UtteranceTexts.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t painCriterion = 4;
/// So many troubles a salesperson should know before offering anything.
constexpr std::size_t painsBeforePitch = 2;

/// The personalities that a seed picks from.
constexpr std::array pickable{DiscType::dominant, DiscType::influential, DiscType::steady, DiscType::conscientious};

DiscType chosenType(std::optional<DiscType> asked, std::mt19937& dice) {
    const auto thrown = dice() % pickable.size();
    return asked && *asked != DiscType::unknown ? *asked : pickable.at(thrown);
}

}  // namespace

Buyer::Buyer(const BuyerBook& book, const BuyerScenario& scenario, std::optional<DiscType> asked, std::uint32_t seed)
    : m_scenario(scenario),
      m_dice(seed),
      m_personality(book.personality(chosenType(asked, m_dice))),
      m_wasAsked(asked && *asked != DiscType::unknown),
      m_painsTold(scenario.pains.size(), false) {}

QString Buyer::opening() {
    return filled(pick(m_personality.hello)) + u' ' + m_scenario.opening;
}

std::optional<BuyerReply> Buyer::hear(const QString& text) {
    if (secondsWithoutWords(text)) {
        auto reply = answerWithoutWords();
        reply.text = rounded(std::move(reply.text));
        return reply;
    }
    const auto said = sentences(text);
    if (said.empty())
        return std::nullopt;
    auto reply = answer(said);
    reply.text = rounded(std::move(reply.text));
    return reply;
}

BuyerReply Buyer::answer(const Sentences& said) {
    // Who asks several things at once is answered to the last.
    const Sentence* question = nullptr;
    QuestionKind kind = QuestionKind::none;
    for (const auto& sentence : said) {
        const auto found = questionKind(sentence);
        m_openQuestions += found == QuestionKind::open ? 1 : 0;
        m_closedQuestions += found == QuestionKind::closed ? 1 : 0;
        if (found != QuestionKind::none) {
            question = &sentence;
            kind = found;
        }
    }
    if (!question)
        return answerStatement(said);
    const auto topic = topicOf(*question);
    const bool isAboutThem = topic && *topic != Topic::rapport;
    if (asksForNextStep(*question) && (!isAboutThem || kind == QuestionKind::closed))
        return answerNextStep();
    if (!isAboutThem && std::ranges::any_of(said, isPitch))
        return answerStatement(said);
    return kind == QuestionKind::open ? answerOpen(*question, topic) : answerClosed(*question, topic);
}

BuyerReply Buyer::answerOpen(const Sentence& question, std::optional<Topic> topic) {
    if (topic == Topic::rapport)
        return {.text = pick(m_personality.hears), .given = {}};
    if (topic == Topic::budget)
        return tellBudget();
    if (topic && *topic != Topic::pain)
        return tellCriterion(static_cast<std::size_t>(*topic));
    return tellNextPain(&question);
}

BuyerReply Buyer::answerClosed(const Sentence& question, std::optional<Topic> topic) {
    const bool fits = std::ranges::any_of(m_scenario.pains, [&](const BuyerFact& pain) {
        return findPhrase(question, pain.about.toStdString()).has_value();
    });
    const bool isYes = fits || (topic && *topic != Topic::pain && *topic != Topic::rapport);
    return {.text = pick(isYes ? m_personality.yes : m_personality.no), .given = {}};
}

BuyerReply Buyer::answerStatement(const Sentences& said) {
    if (std::ranges::any_of(said, asksForNextStep))
        return answerNextStep();
    if (std::ranges::any_of(said, namesPrice))
        if (auto objection = object(m_scenario.priceObjections))
            return {.text = *std::move(objection), .given = {}};
    if (std::ranges::any_of(said, isPitch)) {
        if (!knowsEnough()) {
            ++m_earlyPitches;
            auto objection = object(m_scenario.pitchObjections);
            return {.text = objection ? *std::move(objection) : pick(m_personality.hears), .given = {}};
        }
        return {.text = pick(m_personality.interested), .given = {}};
    }
    qsizetype words = 0;
    for (const auto& sentence : said)
        words += sentence.words.size();
    return {.text = pick(words > rules::monologueWords ? m_personality.tooLong : m_personality.hears), .given = {}};
}

BuyerReply Buyer::answerNextStep() {
    if (!knowsEnough())
        if (auto objection = object(m_scenario.closingObjections))
            return {.text = *std::move(objection), .given = {}};
    if (!knowsEnough())
        return {.text = pick(m_personality.no), .given = {}};
    m_hasNextStep = true;
    return {.text = pick(m_personality.agrees), .given = {}};
}

BuyerReply Buyer::answerWithoutWords() {
    for (std::size_t pain = 0; pain < m_painsTold.size(); ++pain)
        if (!m_painsTold[pain])
            return tellPain(pain);
    for (std::size_t criterion = 0; criterion < m_told.size(); ++criterion)
        if (criterion != painCriterion && !m_told.at(criterion))
            return tellCriterion(criterion);
    return m_isBudgetTold ? BuyerReply{.text = pick(m_personality.nothingLeft), .given = {}} : tellBudget();
}

BuyerReply Buyer::tellNextPain(const Sentence* question) {
    std::optional<std::size_t> next;
    for (std::size_t pain = 0; pain < m_painsTold.size(); ++pain) {
        if (m_painsTold[pain])
            continue;
        if (question && findPhrase(*question, m_scenario.pains[pain].about.toStdString()))
            return tellPain(pain);
        if (!next)
            next = pain;
    }
    return next ? tellPain(*next) : BuyerReply{.text = pick(m_personality.nothingLeft), .given = {}};
}

BuyerReply Buyer::tellPain(std::size_t pain) {
    m_painsTold[pain] = true;
    m_told.at(painCriterion) = true;
    return {.text = tell(m_scenario.pains[pain]),
            .given = GivenAway{.criterion = painCriterion, .evidence = m_scenario.pains[pain].says}};
}

BuyerReply Buyer::tellCriterion(std::size_t criterion) {
    const BuyerFact& fact = m_scenario.answers.at(criterion);
    BuyerReply reply{.text = m_told.at(criterion) ? pick(m_personality.again) + u' ' + fact.says : tell(fact),
                     .given = GivenAway{.criterion = criterion, .evidence = fact.says}};
    m_told.at(criterion) = true;
    return reply;
}

BuyerReply Buyer::tellBudget() {
    if (m_isBudgetTold)
        return {.text = pick(m_personality.again) + u' ' + m_scenario.budget.says, .given = {}};
    m_isBudgetTold = true;
    return {.text = tell(m_scenario.budget), .given = {}};
}

std::optional<QString> Buyer::object(const QStringList& objections) {
    for (const auto& objection : objections) {
        if (m_raised.contains(objection))
            continue;
        m_raised.append(objection);
        return objection;
    }
    return std::nullopt;
}

QString Buyer::tell(const BuyerFact& fact) {
    QStringList parts{pick(m_personality.before), fact.says};
    if (m_personality.givesDetail)
        parts.append(fact.detail);
    parts.append(pick(m_personality.after));
    parts.removeAll(QString{});
    return parts.join(u' ');
}

QString Buyer::rounded(QString text) {
    ++m_replies;
    if (m_replies % m_personality.asksEvery == 0)
        text += u' ' + pick(m_personality.asks);
    return text;
}

const QString& Buyer::pick(const QStringList& texts) {
    auto at = static_cast<qsizetype>(m_dice() % static_cast<std::uint32_t>(texts.size()));
    // Nobody says the same twice in a row who has a choice.
    const auto last = m_lastPicked.find(&texts);
    if (last != m_lastPicked.end() && last->second == at)
        at = (at + 1) % texts.size();
    m_lastPicked[&texts] = at;
    return texts[at];
}

QString Buyer::filled(QString text) const {
    return text.replace(u"{person}"_s, m_scenario.person)
        .replace(u"{role}"_s, m_scenario.role)
        .replace(u"{company}"_s, m_scenario.company);
}

std::size_t Buyer::painsTold() const {
    return static_cast<std::size_t>(std::ranges::count(m_painsTold, true));
}

bool Buyer::knowsEnough() const {
    return painsTold() >= std::min(painsBeforePitch, m_painsTold.size());
}

QStringList Buyer::keyPoints() const {
    const auto times = [](int count) { return count == 1 ? u"once"_s : u"%1 times"_s.arg(count); };
    QStringList points;
    points.append((m_wasAsked ? u"You practised with the %1 buyer that you chose."_s
                              : u"The buyer was %1; the choice was left to chance."_s)
                      .arg(tableText(rawValue(type()))));
    points.append(u"Troubles found: %1 of %2. Open questions %3, closed questions %4."_s.arg(painsTold())
                      .arg(m_painsTold.size())
                      .arg(m_openQuestions)
                      .arg(m_closedQuestions));
    points.append(m_isBudgetTold ? u"You asked for the budget and learned it."_s
                                 : u"You never asked for the budget openly."_s);
    if (m_earlyPitches > 0)
        points.append(u"You offered something too early, %1: first find two troubles."_s.arg(times(m_earlyPitches)));
    if (m_hasNextStep)
        points.append(u"The buyer agreed to a next step."_s);
    return points;
}

}  // namespace corvellan::sandbox

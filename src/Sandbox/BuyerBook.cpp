#include "BuyerBook.h"

#include <algorithm>

#include "DataFile.h"
#include "Models/Briefing.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Bad = std::unexpected<QString>;

constexpr int longestPauseMs = 10'000;
constexpr std::size_t painCriterion = 4;
/// Under "answers", in the order of the criteria.
constexpr std::array answerKeys{u"metrics", u"economicBuyer", u"decisionCriteria", u"decisionProcess",
                                u"",        u"champion"};
static_assert(answerKeys.size() == meddicCriteria);

BuyerFact readFact(EntryReader& parent, const QString& key) {
    EntryReader fact{parent.object(key), parent.place() + u": "_s + key};
    BuyerFact read{.about = {}, .says = fact.text(u"says"_s), .detail = fact.text(u"detail"_s)};
    parent.adopt(fact);
    return read;
}

}  // namespace

BuyerBook BuyerBook::shipped() {
    return shippedBook<BuyerBook>(u"buyers.json"_s);
}

std::expected<BuyerBook, QString> BuyerBook::load(const QString& path) {
    return loadBook<BuyerBook>(path);
}

std::expected<BuyerBook, QString> BuyerBook::parse(const QByteArray& json) {
    auto top = parseDataFile(json);
    if (!top)
        return Bad{top.error()};
    EntryReader& root = *top;
    const auto personalities = root.array(u"personalities"_s);
    const auto scenarios = root.array(u"scenarios"_s);
    if (scenarios.isEmpty())
        root.fail(u"scenarios"_s, u"at least one"_s);
    if (root.problem())
        return Bad{*root.problem()};
    BuyerBook book;
    if (const auto read = book.readPersonalities(personalities); !read)
        return Bad{read.error()};
    if (const auto read = book.readScenarios(scenarios); !read)
        return Bad{read.error()};
    return book;
}

std::expected<void, QString> BuyerBook::readPersonalities(const QJsonArray& personalities) {
    for (qsizetype i = 0; i < personalities.size(); ++i) {
        EntryReader entry{personalities[i], u"personalities[%1]"_s.arg(i)};
        const auto type = discType(entry.text(u"type"_s).toStdString());
        if (!type || type == DiscType::unknown)
            entry.fail(u"type"_s, u"dominant, influential, steady or conscientious"_s);
        BuyerPersonality personality{
            .type = type.value_or(DiscType::unknown),
            .think = std::chrono::milliseconds{entry.number(u"thinkMs"_s, 0, longestPauseMs)},
            .word = std::chrono::milliseconds{entry.number(u"wordMs"_s, 0, longestPauseMs)},
            .givesDetail = entry.flag(u"givesDetail"_s),
            .asksEvery = entry.number(u"asksEvery"_s, 1, 100),
            .hello = entry.someTexts(u"hello"_s),
            .before = entry.someTexts(u"before"_s),
            .after = entry.someTexts(u"after"_s),
            .yes = entry.someTexts(u"yes"_s),
            .no = entry.someTexts(u"no"_s),
            .hears = entry.someTexts(u"hears"_s),
            .tooLong = entry.someTexts(u"tooLong"_s),
            .again = entry.someTexts(u"again"_s),
            .nothingLeft = entry.someTexts(u"nothingLeft"_s),
            .interested = entry.someTexts(u"interested"_s),
            .agrees = entry.someTexts(u"agrees"_s),
            .asks = entry.someTexts(u"asks"_s),
        };
        if (entry.problem())
            return Bad{*entry.problem()};
        if (!m_personalities.emplace(*type, std::move(personality)).second)
            return Bad{entry.place() + u": type: there is one of this type already"_s};
    }
    for (const auto& row : discTypeRows)
        if (row.value != DiscType::unknown && !m_personalities.contains(row.value))
            return Bad{u"personalities: %1 is missing"_s.arg(tableText(row.raw))};
    return {};
}

std::expected<void, QString> BuyerBook::readScenarios(const QJsonArray& scenarios) {
    for (const auto& value : scenarios) {
        EntryReader entry{value, u"scenarios[%1]"_s.arg(m_scenarios.size())};
        BuyerScenario scenario{.key = entry.text(u"key"_s),
                               .name = entry.text(u"name"_s),
                               .company = entry.text(u"company"_s),
                               .industry = entry.text(u"industry"_s),
                               .person = entry.text(u"person"_s),
                               .role = entry.text(u"role"_s),
                               .opening = entry.text(u"opening"_s),
                               .pains = {},
                               .budget = readFact(entry, u"budget"_s),
                               .answers = {},
                               .pitchObjections = {},
                               .priceObjections = {},
                               .closingObjections = {}};
        const auto pains = entry.array(u"pains"_s);
        if (pains.isEmpty())
            entry.fail(u"pains"_s, u"at least one"_s);
        for (const auto& painValue : pains) {
            EntryReader pain{painValue, u"%1: pains[%2]"_s.arg(entry.place()).arg(scenario.pains.size())};
            scenario.pains.push_back(
                {.about = pain.text(u"about"_s), .says = pain.text(u"says"_s), .detail = pain.text(u"detail"_s)});
            entry.adopt(pain);
        }
        EntryReader answers{entry.object(u"answers"_s), entry.place() + u": answers"_s};
        for (std::size_t i = 0; i < answerKeys.size(); ++i)
            if (i != painCriterion)
                scenario.answers.at(i) = readFact(answers, QString::fromUtf16(answerKeys.at(i)));
        entry.adopt(answers);
        EntryReader objections{entry.object(u"objections"_s), entry.place() + u": objections"_s};
        scenario.pitchObjections = objections.someTexts(u"pitch"_s);
        scenario.priceObjections = objections.someTexts(u"price"_s);
        scenario.closingObjections = objections.someTexts(u"closing"_s);
        entry.adopt(objections);
        if (entry.problem())
            return Bad{*entry.problem()};
        if (find(scenario.key))
            return Bad{entry.place() + u": key: there is one of this key already"_s};
        m_scenarios.push_back(std::move(scenario));
    }
    return {};
}

const BuyerScenario* BuyerBook::find(const QString& key) const {
    const auto found = std::ranges::find(m_scenarios, key, &BuyerScenario::key);
    return found == m_scenarios.end() ? nullptr : &*found;
}

QJsonObject BuyerBook::scenarioList() const {
    QJsonArray scenarios;
    for (const auto& scenario : m_scenarios)
        scenarios.append(QJsonObject{{u"key"_s, scenario.key},
                                     {u"name"_s, scenario.name},
                                     {u"company"_s, scenario.company},
                                     {u"industry"_s, scenario.industry}});
    QJsonArray discTypes;
    for (const auto& row : discTypeRows)
        discTypes.append(tableText(row.raw));
    return {{u"scenarios"_s, scenarios}, {u"disc_types"_s, discTypes}};
}

}  // namespace corvellan::sandbox

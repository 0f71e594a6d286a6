#pragma once

#include <array>
#include <chrono>
#include <expected>
#include <map>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <vector>

#include "Models/Types.h"

namespace corvellan::sandbox {

/// Something that a buyer knows and may tell.
struct BuyerFact {
    QString about;   ///< A pain only: what a question on it speaks of, as `findPhrase` reads it.
    QString says;    ///< What everybody is told who asks well.
    QString detail;  ///< What only a buyer who loves facts adds.
};

/// One case to practise.
struct BuyerScenario {
    QString key;
    QString name;
    QString company;
    QString industry;
    QString person;
    QString role;
    QString opening;  ///< Behind the personality's greeting.
    std::vector<BuyerFact> pains;
    BuyerFact budget;
    /// The six criteria in their order. That of the pain is empty: the pains are its answers.
    std::array<BuyerFact, meddicCriteria> answers;
    QStringList pitchObjections;
    QStringList priceObjections;
    QStringList closingObjections;
};

/// How a buyer of one DISC type talks. Of several texts one is picked each time.
struct BuyerPersonality {
    DiscType type = DiscType::steady;
    std::chrono::milliseconds think{0};  ///< From the end of a question to the first word.
    std::chrono::milliseconds word{0};   ///< From word to word.
    bool givesDetail = false;
    int asksEvery = 1;  ///< Every so many replies end in a question of the buyer's own.
    QStringList hello;
    QStringList before;
    QStringList after;
    QStringList yes;
    QStringList no;
    QStringList hears;
    QStringList tooLong;
    QStringList again;
    QStringList nothingLeft;
    QStringList interested;
    QStringList agrees;
    QStringList asks;
};

/// The buyers that training can be held with, read from one file. One thread.
class BuyerBook {
public:
    /// The one that comes along.
    [[nodiscard]] static BuyerBook shipped();
    /// There is a personality for each of the four types, and at least one scenario. The error is a sentence that
    /// names the place.
    [[nodiscard]] static std::expected<BuyerBook, QString> parse(const QByteArray& json);
    [[nodiscard]] static std::expected<BuyerBook, QString> load(const QString& path);

    [[nodiscard]] const std::vector<BuyerScenario>& scenarios() const { return m_scenarios; }
    /// Null when there is none of this key.
    [[nodiscard]] const BuyerScenario* find(const QString& key) const;
    /// \param type none but `unknown`.
    [[nodiscard]] const BuyerPersonality& personality(DiscType type) const { return m_personalities.at(type); }

    /// A `ScenariosResponse`.
    [[nodiscard]] QJsonObject scenarioList() const;

private:
    [[nodiscard]] std::expected<void, QString> readPersonalities(const QJsonArray& personalities);
    [[nodiscard]] std::expected<void, QString> readScenarios(const QJsonArray& scenarios);

    std::vector<BuyerScenario> m_scenarios;
    std::map<DiscType, BuyerPersonality> m_personalities;
};

}  // namespace corvellan::sandbox

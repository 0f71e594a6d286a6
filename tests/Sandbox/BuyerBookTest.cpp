#include "Sandbox/BuyerBook.h"
#include "Sandbox/DataFile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "Models/Briefing.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using sandbox::BuyerBook;

namespace {

QJsonObject shippedFile() {
    QFile file{u":/sandbox/buyers.json"_s};
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).object();
}

/// Why the book refuses the shipped file with this change.
template <typename Edit>
QString refusal(const QString& list, Edit edit) {
    QJsonObject file = shippedFile();
    QJsonArray entries = file[list].toArray();
    edit(entries);
    file[list] = entries;
    const auto book = BuyerBook::parse(QJsonDocument{file}.toJson());
    return book ? u"taken"_s : book.error();
}

/// As above, for one entry.
template <typename Edit>
QString refusalOf(const QString& list, qsizetype at, Edit edit) {
    return refusal(list, [&](QJsonArray& entries) {
        QJsonObject entry = entries[at].toObject();
        edit(entry);
        entries[at] = entry;
    });
}

}  // namespace

TEST(BuyerBookTest, theShippedFileHasFourPersonalitiesAndSomeScenarios) {
    const auto book = BuyerBook::shipped();
    EXPECT_GE(book.scenarios().size(), 3U);
    for (const auto& scenario : book.scenarios())
        EXPECT_GE(scenario.pains.size(), 2U) << qPrintable(scenario.key);
    for (const auto& row : discTypeRows)
        if (row.value != DiscType::unknown)
            EXPECT_EQ(book.personality(row.value).type, row.value);
    EXPECT_TRUE(book.find(u"cold_call"_s));
    EXPECT_FALSE(book.find(u"nowhere"_s));
}

TEST(BuyerBookTest, theListIsOneThatClientsRead) {
    const auto book = BuyerBook::shipped();
    const auto list = ScenariosResponse::decode(QJsonDocument{book.scenarioList()}.toJson());
    ASSERT_TRUE(list) << list.error().errorDescription().toStdString();
    EXPECT_EQ(list->scenarios.size(), book.scenarios().size());
    EXPECT_EQ(list->scenarios.at(0).company, u"Halden Freight"_s);
    EXPECT_EQ(list->discTypes.size(), 5);
    EXPECT_TRUE(list->discTypes.contains(u"steady"_s));
}

TEST(BuyerBookTest, anotherScenarioIsAnotherEntry) {
    QJsonObject file = shippedFile();
    QJsonArray scenarios = file[u"scenarios"_s].toArray();
    QJsonObject mine = scenarios[0].toObject();
    mine[u"key"_s] = u"mine"_s;
    scenarios.append(mine);
    file[u"scenarios"_s] = scenarios;
    const auto book = BuyerBook::parse(QJsonDocument{file}.toJson());
    ASSERT_TRUE(book) << qPrintable(book.error());
    EXPECT_TRUE(book->find(u"mine"_s));
}

TEST(BuyerBookTest, whatIsWrongIsNamedWithItsPlace) {
    EXPECT_EQ(refusalOf(u"scenarios"_s, 2, [](QJsonObject& entry) { entry.remove(u"opening"_s); }),
              u"scenarios[2]: opening: expected a text"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 0, [](QJsonObject& entry) { entry[u"pains"_s] = QJsonArray{}; }),
              u"scenarios[0]: pains: expected at least one"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 0, [](QJsonObject& entry) { entry[u"pains"_s] = QJsonArray{7}; }),
              u"scenarios[0]: pains[0]: expected an object"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 1, [](QJsonObject& entry) { entry[u"key"_s] = u"haulier_spreadsheets"_s; }),
              u"scenarios[1]: key: there is one of this key already"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 1, [](QJsonObject& entry) { entry[u"budget"_s] = 40'000; }),
              u"scenarios[1]: budget: expected an object"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 3, [](QJsonObject& entry) { entry.remove(u"answers"_s); }),
              u"scenarios[3]: answers: metrics: says: expected a text"_s);
    EXPECT_EQ(refusalOf(u"scenarios"_s, 3, [](QJsonObject& entry) { entry.remove(u"objections"_s); }),
              u"scenarios[3]: objections: pitch: expected at least one text"_s);
    EXPECT_EQ(refusalOf(u"personalities"_s, 0, [](QJsonObject& entry) { entry[u"type"_s] = u"unknown"_s; }),
              u"personalities[0]: type: expected dominant, influential, steady or conscientious"_s);
    EXPECT_EQ(refusalOf(u"personalities"_s, 1, [](QJsonObject& entry) { entry[u"type"_s] = u"dominant"_s; }),
              u"personalities[1]: type: there is one of this type already"_s);
    EXPECT_EQ(refusalOf(u"personalities"_s, 1, [](QJsonObject& entry) { entry[u"asks"_s] = QJsonArray{}; }),
              u"personalities[1]: asks: expected at least one text"_s);
    EXPECT_EQ(refusalOf(u"personalities"_s, 1, [](QJsonObject& entry) { entry[u"wordMs"_s] = -1; }),
              u"personalities[1]: wordMs: expected a whole number from 0 to 10000"_s);
    EXPECT_EQ(refusalOf(u"personalities"_s, 1, [](QJsonObject& entry) { entry[u"givesDetail"_s] = u"yes"_s; }),
              u"personalities[1]: givesDetail: expected true or false"_s);
    EXPECT_EQ(refusal(u"personalities"_s, [](QJsonArray& entries) { entries.removeLast(); }),
              u"personalities: conscientious is missing"_s);
    EXPECT_EQ(refusal(u"scenarios"_s, [](QJsonArray& entries) { entries = {}; }),
              u"the file: scenarios: expected at least one"_s);
}

TEST(BuyerBookTest, whatIsNoJsonIsRefused) {
    for (const QByteArray& bytes : {QByteArray{}, QByteArray{"{"}, QByteArray{"[]"}, QByteArray{"7"}}) {
        const auto book = BuyerBook::parse(bytes);
        ASSERT_FALSE(book);
        EXPECT_FALSE(book.error().isEmpty());
    }
    EXPECT_FALSE(BuyerBook::parse(QByteArray(sandbox::longestDataFile + 1, ' ')));
    EXPECT_TRUE(BuyerBook::load(u"/nowhere/buyers.json"_s).error().startsWith(u"cannot read it"_s));
}

}  // namespace corvellan::test

#include "Views/SessionListModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

SessionIndexEntry entry(const QString& company) {
    SessionIndexEntry made;
    made.id = QUuid::createUuid();
    made.companyName = company;
    return made;
}

class SessionListModelTest : public testing::Test {
protected:
    void assign(const std::vector<SessionIndexEntry>& entries) {
        RecordPlaces places;
        for (std::uint32_t place = 0; place < entries.size(); ++place)
            places.push_back(place);
        std::vector<DateSection> sections;
        if (!entries.empty())
            sections.push_back({.label = u"Today"_s, .count = entries.size()});
        model.assign(std::make_shared<const std::vector<SessionIndexEntry>>(entries), places, sections);
    }
    QVariant value(int row, int role) { return model.data(model.index(row), role); }
    QStringList titles() {
        QStringList all;
        for (int row = 0; row < model.rowCount(); ++row)
            all << value(row, SessionListModel::titleRole).toString();
        return all;
    }

    SessionListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
};

}  // namespace

TEST_F(SessionListModelTest, theScoreIsColoredByTheRuleForFinishedSessions) {
    struct Row {
        std::int8_t score;
        QString text, color;
        double opacity;
    };
    for (const Row& row :
         {Row{0, u"0/6"_s, u"red"_s, 0.7}, Row{2, u"2/6"_s, u"red"_s, 0.7}, Row{3, u"3/6"_s, u"yellow"_s, 1},
          Row{4, u"4/6"_s, u"yellow"_s, 1}, Row{5, u"5/6"_s, u"green"_s, 1}, Row{6, u"6/6"_s, u"green"_s, 1}}) {
        auto shown = entry(u"Nordwind"_s);
        shown.meddicScore = row.score;
        assign({shown});
        EXPECT_EQ(value(0, SessionListModel::scoreRole), row.text);
        EXPECT_EQ(value(0, SessionListModel::scoreColorRole), row.color);
        EXPECT_EQ(value(0, SessionListModel::scoreOpacityRole), row.opacity);
        EXPECT_EQ(value(0, SessionListModel::symbolRole), QString{});
    }
}

TEST_F(SessionListModelTest, aColdCallHasItsIconInPlaceOfTheScore) {
    auto shown = entry(u"Nordwind"_s);
    shown.audience = AudienceType::coldCall;
    assign({shown});
    EXPECT_EQ(value(0, SessionListModel::scoreRole), QString{});
    EXPECT_EQ(value(0, SessionListModel::symbolRole), u"phone.arrow.up.right"_s);
    EXPECT_FALSE(value(0, SessionListModel::spokenRole).toString().contains(u"MEDDIC"_s));
}

TEST_F(SessionListModelTest, theTitleIsTheCompanyElseTheScenarioElseNothing) {
    struct Row {
        std::optional<QString> company, scenario;
        QString title, color;
    };
    for (const Row& row :
         {Row{u"Nordwind"_s, std::nullopt, u"Nordwind"_s, {}}, Row{u"Nordwind"_s, u"price_push"_s, u"Nordwind"_s, {}},
          Row{std::nullopt, u"price_push"_s, u"price_push"_s, u"cyan"_s}, Row{std::nullopt, std::nullopt, {}, {}}}) {
        auto shown = entry({});
        shown.companyName = row.company;
        shown.scenario = row.scenario;
        assign({shown});
        EXPECT_EQ(value(0, SessionListModel::titleRole), row.title);
        EXPECT_EQ(value(0, SessionListModel::titleColorRole), row.color);
    }
}

TEST_F(SessionListModelTest, everyAudienceButTheDirectSaleHasABadge) {
    struct Row {
        AudienceType audience;
        QString badge, color;
    };
    for (const Row& row :
         {Row{AudienceType::directSale, {}, u"blue"_s}, Row{AudienceType::channelPartner, u"Channel"_s, u"purple"_s},
          Row{AudienceType::coldCall, u"Cold Call"_s, u"orange"_s},
          Row{AudienceType::discovery, u"Discovery"_s, u"green"_s}}) {
        auto shown = entry(u"Nordwind"_s);
        shown.audience = row.audience;
        assign({shown});
        EXPECT_EQ(value(0, SessionListModel::badgeRole), row.badge);
        EXPECT_EQ(value(0, SessionListModel::badgeColorRole), row.color);
    }
}

TEST_F(SessionListModelTest, durationAndTurnsStandBelow) {
    auto shown = entry(u"Nordwind"_s);
    shown.durationSecs = 192;
    shown.turns = 12;
    shown.wasTrainMode = true;
    shown.meddicScore = 4;
    assign({shown});
    EXPECT_EQ(value(0, SessionListModel::durationRole), u"3m 12s"_s);
    EXPECT_EQ(value(0, SessionListModel::turnsRole), u"12 turns"_s);
    EXPECT_EQ(value(0, SessionListModel::isTrainingRole), true);
    EXPECT_EQ(value(0, SessionListModel::spokenRole), u"Nordwind, TRAIN, MEDDIC 4/6, 3m 12s, 12 turns, Today"_s);
}

TEST_F(SessionListModelTest, eachRowKnowsItsDay) {
    const std::vector entries{entry(u"a"_s), entry(u"b"_s), entry(u"c"_s)};
    model.assign(std::make_shared<const std::vector<SessionIndexEntry>>(entries), {0, 1, 2},
                 {{u"Today"_s, 0, 1}, {u"Yesterday"_s, 1, 2}});
    EXPECT_EQ(value(0, SessionListModel::sectionRole), u"Today"_s);
    EXPECT_EQ(value(1, SessionListModel::sectionRole), u"Yesterday"_s);
    EXPECT_EQ(value(2, SessionListModel::sectionRole), u"Yesterday"_s);
}

TEST_F(SessionListModelTest, onlyFilteredRecordsAreRows) {
    const std::vector entries{entry(u"a"_s), entry(u"b"_s), entry(u"c"_s)};
    model.assign(std::make_shared<const std::vector<SessionIndexEntry>>(entries), {1}, {{u"Today"_s, 0, 1}});
    EXPECT_EQ(titles(), QStringList{u"b"_s});
    EXPECT_EQ(model.rowOf(entries[1].id), 0);
    EXPECT_EQ(model.rowOf(entries[0].id), -1);
    EXPECT_EQ(model.record(0).id, entries[1].id);
}

TEST_F(SessionListModelTest, aNewRecordIsInsertedAndNothingElseMoves) {
    const std::vector entries{entry(u"b"_s), entry(u"c"_s)};
    assign(entries);
    inserted.clear();
    assign({entry(u"a"_s), entries[0], entries[1]});
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 0);
    EXPECT_EQ(inserted[0][2].toInt(), 0);
    EXPECT_EQ(reset.count() + removed.count(), 0);
    EXPECT_EQ(titles(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST_F(SessionListModelTest, aFilterThatOnlyTakesAwayRemovesRows) {
    const std::vector entries{entry(u"a"_s), entry(u"b"_s), entry(u"c"_s)};
    assign(entries);
    assign({entries[0], entries[2]});
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(titles(), (QStringList{u"a"_s, u"c"_s}));
    assign({});
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(SessionListModelTest, aChangedRecordKeepsItsRow) {
    auto changed = entry(u"a"_s);
    assign({changed});
    QSignalSpy told{&model, &QAbstractItemModel::dataChanged};
    inserted.clear();
    changed.companyName = u"b"_s;
    assign({changed});
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(inserted.count() + removed.count() + reset.count(), 0);
    EXPECT_EQ(titles(), QStringList{u"b"_s});
}

TEST_F(SessionListModelTest, ofListsThatShareTheirEndsTheMiddleIsReplaced) {
    const std::vector entries{entry(u"a"_s), entry(u"b"_s), entry(u"c"_s)};
    assign(entries);
    inserted.clear();
    assign({entries[0], entry(u"x"_s), entries[2]});
    EXPECT_EQ(reset.count(), 0);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0].mid(1), (QVariantList{1, 1}));
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0].mid(1), (QVariantList{1, 1}));
    EXPECT_EQ(titles(), (QStringList{u"a"_s, u"x"_s, u"c"_s}));
}

}  // namespace corvellan::test

#include "Views/FlowLayout.h"

#include <gtest/gtest.h>

#include "Views/RowsModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Points = std::vector<QPointF>;

TEST(FlowLayoutTest, childrenThatDoNotFitOpenANewRow) {
    const FlowPlan plan = planFlow({{40, 20}, {40, 30}, {40, 10}}, 90, 6);
    EXPECT_EQ(plan.positions, (Points{{0, 0}, {46, 0}, {0, 36}}));
    EXPECT_EQ(plan.size, (QSizeF{90, 46}));
}

TEST(FlowLayoutTest, aChildThatJustFitsStays) {
    EXPECT_EQ(planFlow({{40, 20}, {44, 20}}, 90, 6).positions, (Points{{0, 0}, {46, 0}}));
    EXPECT_EQ(planFlow({{40, 20}, {44.5, 20}}, 90, 6).positions, (Points{{0, 0}, {0, 26}}));
}

TEST(FlowLayoutTest, theFirstOfARowStaysThereHoweverWideItIs) {
    const FlowPlan plan = planFlow({{200, 20}, {200, 20}}, 90, 6);
    EXPECT_EQ(plan.positions, (Points{{0, 0}, {0, 26}}));
    EXPECT_EQ(plan.size, (QSizeF{90, 46}));
}

TEST(FlowLayoutTest, withoutAWidthThereIsOneRowWithNoSpaceBehindIt) {
    const FlowPlan plan = planFlow({{40, 20}, {40, 30}}, std::nullopt, 6);
    EXPECT_EQ(plan.positions, (Points{{0, 0}, {46, 0}}));
    EXPECT_EQ(plan.size, (QSizeF{86, 30}));
}

TEST(FlowLayoutTest, nothingTakesNoHeight) {
    EXPECT_EQ(planFlow({}, std::nullopt, 6).size, (QSizeF{0, 0}));
    EXPECT_EQ(planFlow({}, 90, 6).size, (QSizeF{90, 0}));
}

TEST(FlowLayoutTest, aNarrowerWidthMakesMoreRows) {
    FlowLayout layout;
    layout.setSpacing(6);
    QQuickItem children[3];
    for (QQuickItem& child : children) {
        child.setImplicitWidth(40);
        child.setImplicitHeight(20);
        child.setParentItem(&layout);
    }
    layout.setWidth(200);
    EXPECT_EQ(layout.implicitHeight(), 20);
    EXPECT_EQ(layout.implicitWidth(), 132);
    layout.setWidth(90);
    EXPECT_EQ(layout.implicitHeight(), 46);
    EXPECT_EQ(children[2].position(), (QPointF{0, 26}));
}

TEST(RowsModelTest, rowsComeAndGoAtTheEnd) {
    RowsModel model{{"name", "isOn"}};
    int inserted = 0;
    int removed = 0;
    int changed = 0;
    QObject::connect(&model, &RowsModel::rowsInserted, [&] { ++inserted; });
    QObject::connect(&model, &RowsModel::rowsRemoved, [&] { ++removed; });
    QObject::connect(&model, &RowsModel::dataChanged, [&] { ++changed; });
    model.assign({{u"a"_s, true}, {u"b"_s, false}});
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.value(1, "name"), u"b"_s);
    model.assign({{u"a"_s, false}});
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(model.value(0, "isOn"), false);
    model.assign({{u"a"_s, false}, {u"c"_s, true}});
    model.assign({{u"a"_s, false}, {u"c"_s, true}});
    EXPECT_EQ(model.value(1, "name"), u"c"_s);
    EXPECT_EQ(inserted, 2);
    EXPECT_EQ(removed, 1);
    EXPECT_EQ(changed, 1);
}

}  // namespace

}  // namespace corvellan

// The panel and two screens: it comes to the one where the pointer is.

#include <QCursor>
#include <QGuiApplication>

#include "PanelFixture.h"

namespace corvellan::test {

namespace {

class PanelScreensTest : public PanelFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::screens().size(), 2) << "run me with two-screens.json";
        QCursor::setPos({100, 100});
        panel.orderFront();
        ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    }

    const QPoint onTheRight{2000, 300};
};

TEST_F(PanelScreensTest, orderFrontBringsItToThePointersScreenCentredAndAsLargeAsItWas) {
    panel.resize(600, 450);
    QCursor::setPos(onTheRight);

    panel.orderFront();

    EXPECT_EQ(panel.frameGeometry().topLeft(), QPoint(1600 + (1280 - 600) / 2, 100 + (800 - 450) / 2));
    EXPECT_EQ(panel.size(), QSize(600, 450));
}

TEST_F(PanelScreensTest, orderFrontLeavesItAloneOnThePointersScreen) {
    panel.setFramePosition({30, 40});
    panel.orderFront();
    EXPECT_EQ(panel.frameGeometry().topLeft(), QPoint(30, 40));
}

TEST_F(PanelScreensTest, aHiddenWindowComesBackOnThePointersScreen) {
    panel.close();
    QCursor::setPos(onTheRight);

    panel.makeKeyAndOrderFront();

    ASSERT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    EXPECT_EQ(panel.frameGeometry().topLeft(), QPoint(1600 + (1280 - 680) / 2, 100 + (800 - 520) / 2));
}

TEST_F(PanelScreensTest, aFaceChangeStaysOnItsOwnScreen) {
    QCursor::setPos(onTheRight);
    panel.orderFront();
    QCursor::setPos({100, 100});
    panel.setFramePosition({1605, 700});

    panel.enterCallMode();
    EXPECT_EQ(panel.frameGeometry().topLeft(), QPoint(1600, 900 - 350)) << "its left and its lower bound";
}

TEST_F(PanelScreensTest, orderFrontLeavesItAloneWhereNoScreenHasThePointer) {
    panel.setFramePosition({30, 40});
    // Above the right screen, which stands lower than the left one.
    QCursor::setPos({1700, 50});
    panel.orderFront();
    EXPECT_EQ(panel.frameGeometry().topLeft(), QPoint(30, 40));
}

}  // namespace

}  // namespace corvellan::test

#include <QRasterWindow>
#include <QTest>

#include "AlertFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

using AlertsOnScreenTest = AlertFixture;

/// Counts what reaches it.
class CountingWindow : public QRasterWindow {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
};

TEST_F(AlertsOnScreenTest, takesTheKeyboardFromAWindowThatStaysOnTopAndKeepsItsClicksAway) {
    CountingWindow panel;
    panel.setFlags(Qt::Window | Qt::WindowStaysOnTopHint);
    panel.setGeometry(100, 100, 680, 520);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    QTest::mouseClick(&panel, Qt::LeftButton);
    ASSERT_EQ(panel.presses, 1);

    const auto answer = show(permissions);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box()));
    QTest::mouseClick(&panel, Qt::LeftButton);
    EXPECT_EQ(panel.presses, 1);

    QTest::keyClick(box()->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(answered(answer), 0U);
    QTest::mouseClick(&panel, Qt::LeftButton);
    EXPECT_EQ(panel.presses, 2);
}

TEST_F(AlertsOnScreenTest, theKeyboardReachesEveryButton) {
    const auto answer = show(permissions);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box()));
    ASSERT_TRUE(button(u"Open System Settings"_s)->hasFocus());
    QTest::keyClick(box()->windowHandle(), Qt::Key_Tab);
    ASSERT_TRUE(button(u"Later"_s)->hasFocus());
    QTest::keyClick(box()->windowHandle(), Qt::Key_Space);
    EXPECT_EQ(answered(answer), 1U);
}

}  // namespace
}  // namespace corvellan::test

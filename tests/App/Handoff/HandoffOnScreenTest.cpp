// The window with a handoff under a real window manager: what an off-screen window can't show.

#include <cstdlib>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QScreen>

#include "HandoffFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

class HandoffOnScreenTest : public HandoffFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s) << "run me through tests/Support/with-display";
        show(u"## Nordwind\n\n| a | b |\n|---|---|\n| 1 | 2 |"_s);
        ASSERT_TRUE(spinUntil([this] { return window().isActive() && window().frameMargins().top() > 0; }));
    }
    /// What the user sees there.
    [[nodiscard]] static QColor colorAt(QPoint place) {
        return QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }
};

TEST_F(HandoffOnScreenTest, itStandsInTheMiddleInItsSize) {
    EXPECT_EQ(window().size(), QSize(520, 600));
    const QPoint apart = window().frameGeometry().center() - window().screen()->availableGeometry().center();
    EXPECT_LE(std::abs(apart.x()), 30);
    EXPECT_LE(std::abs(apart.y()), 30);
}

TEST_F(HandoffOnScreenTest, itStaysAboveAWindowThatIsRaised) {
    QQuickWindow other;
    other.setColor(Qt::red);
    other.setGeometry(window().geometry().adjusted(-60, -20, 0, 0));
    other.show();
    other.raise();
    other.requestActivate();
    const QPoint beside{window().x() - 30, window().geometry().bottom() - 40};
    const QPoint corner = window().geometry().bottomRight() - QPoint{40, 40};
    ASSERT_TRUE(spinUntil([&] { return other.isActive() && colorAt(beside) == QColor(Qt::red); }));
    EXPECT_NE(colorAt(corner), QColor(Qt::red));
}

TEST_F(HandoffOnScreenTest, aMinimisedWindowComesBackForTheNextNote) {
    window().showMinimized();
    ASSERT_TRUE(spinUntil([this] { return window().windowStates().testFlag(Qt::WindowMinimized); }));
    show(u"second"_s);
    EXPECT_TRUE(spinUntil([this] { return window().isActive() && !window().windowStates(); }));
    EXPECT_EQ(shownText(), u"second"_s);
}

TEST_F(HandoffOnScreenTest, theUsersPlaceAndSizeOutliveTheTitleBarsButton) {
    window().resize(600, 400);
    window().setFramePosition({50, 60});
    ASSERT_TRUE(spinUntil(
        [this] { return window().frameGeometry().topLeft() == QPoint(50, 60) && window().size() == QSize(600, 400); }));
    window().close();
    ASSERT_TRUE(spinUntil([this] { return !window().isExposed(); }));
    show(u"second"_s);
    EXPECT_TRUE(spinUntil([this] { return window().isActive(); }));
    EXPECT_TRUE(spinUntil([this] { return window().frameGeometry().topLeft() == QPoint(50, 60); }))
        << window().frameGeometry().x() << ", " << window().frameGeometry().y();
    EXPECT_EQ(window().size(), QSize(600, 400));
}

}  // namespace

}  // namespace corvellan::test

#include "HandoffFixture.h"

#include <QPointer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

class FloatingHandoffWindowTest : public HandoffFixture {};

TEST_F(FloatingHandoffWindowTest, thereIsNoneAtFirst) {
    EXPECT_FALSE(controller.window());
    controller.close();
    EXPECT_FALSE(controller.window());
}

TEST_F(FloatingHandoffWindowTest, itHasItsTitleSizeAndFlags) {
    show(u"## Note"_s);
    EXPECT_EQ(window().title(), u"AE Handoff"_s);
    EXPECT_EQ(window().size(), QSize(520, 600));
    for (const auto flag : {Qt::WindowTitleHint, Qt::WindowCloseButtonHint, Qt::WindowMinimizeButtonHint,
                            Qt::WindowMaximizeButtonHint, Qt::WindowStaysOnTopHint})
        EXPECT_TRUE(window().flags().testFlag(flag)) << flag;
    EXPECT_GT(window().maximumWidth(), 2000);
    EXPECT_EQ(shownText(), u"Note"_s);
}

TEST_F(FloatingHandoffWindowTest, anotherNoteIsShownInTheSameWindow) {
    show(u"line\n\n"_s.repeated(200));
    find<MarkdownWebView>(u"page"_s)->setContentY(500);
    const QPointer<QQuickView> first = &window();
    window().resize(600, 400);
    show(u"second"_s);
    EXPECT_EQ(&window(), first);
    EXPECT_EQ(window().size(), QSize(600, 400));
    EXPECT_EQ(shownText(), u"second"_s);
    EXPECT_EQ(find<MarkdownWebView>(u"page"_s)->contentY(), 0);
}

TEST_F(FloatingHandoffWindowTest, closingForgetsTheWindow) {
    show(u"first"_s);
    const QPointer<QQuickView> first = &window();
    window().resize(600, 400);
    controller.close();
    EXPECT_FALSE(controller.window());
    EXPECT_FALSE(first && first->isVisible());
    EXPECT_TRUE(spinUntil([&first] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return first.isNull();
    }));
    show(u"second"_s);
    EXPECT_EQ(window().size(), QSize(520, 600));
    EXPECT_EQ(shownText(), u"second"_s);
}

TEST_F(FloatingHandoffWindowTest, theViewsOwnButtonClosesIt) {
    show(u"note"_s);
    auto* const button = find<QQuickItem>(u"close"_s);
    ASSERT_TRUE(button && button->isVisible());
    const QPointF middle = button->mapToScene({button->width() / 2, button->height() / 2});
    QTest::mouseClick(&window(), Qt::LeftButton, {}, middle.toPoint());
    EXPECT_FALSE(controller.window());
}

TEST_F(FloatingHandoffWindowTest, theTitleBarsButtonKeepsItForTheNextNote) {
    show(u"first"_s);
    const QPointer<QQuickView> first = &window();
    window().close();
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(&window(), first);
    show(u"second"_s);
    EXPECT_EQ(&window(), first);
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(shownText(), u"second"_s);
}

TEST_F(FloatingHandoffWindowTest, twoScreensHaveAWindowEach) {
    FloatingHandoffWindow other{browser, {}};
    show(u"first"_s);
    other.show({.handoffNote = u"second"_s});
    ASSERT_TRUE(other.window());
    EXPECT_NE(other.window(), &window());
    EXPECT_EQ(shownText(), u"first"_s);
}

TEST_F(FloatingHandoffWindowTest, theCompanysPageOpensInTheBrowser) {
    controller.show({.handoffNote = u"x"_s, .meta = HandoffMeta{.hubspotCompanyId = u"77"_s}});
    ASSERT_TRUE(spinUntil([this] { return window().isExposed(); }));
    auto* const button = find<QQuickItem>(u"hubSpot"_s);
    ASSERT_TRUE(button && button->isVisible());
    QTest::mouseClick(&window(), Qt::LeftButton, {},
                      button->mapToScene({button->width() / 2, button->height() / 2}).toPoint());
    settle();
    ASSERT_EQ(browser.pages.size(), 1U);
    EXPECT_EQ(browser.pages[0], QUrl{u"https://crm.example/contacts/42/company/77"_s});
}

}  // namespace

}  // namespace corvellan::test

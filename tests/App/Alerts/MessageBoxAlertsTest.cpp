#include "App/Alerts/MessageBoxAlerts.h"

#include <QAccessible>
#include <QTest>

#include "AlertFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

using MessageBoxAlertsTest = AlertFixture;

TEST_F(MessageBoxAlertsTest, showsTheTextsAsTheyStandBesideAWarningSign) {
    const auto answer = show(permissions);
    ASSERT_TRUE(box());
    EXPECT_EQ(box()->windowTitle(), u"Corvellan Bram"_s);
    EXPECT_EQ(box()->text(), permissions.messageText);
    EXPECT_EQ(box()->informativeText(), permissions.informativeText);
    EXPECT_EQ(box()->textFormat(), Qt::PlainText);
    EXPECT_EQ(box()->icon(), QMessageBox::Warning);
    EXPECT_TRUE(box()->isModal());
    EXPECT_EQ(box()->windowModality(), Qt::ApplicationModal);
    EXPECT_FALSE(answer->button);
}

TEST_F(MessageBoxAlertsTest, givesTheIndexOfThePressedButton) {
    for (const auto& [title, index] : {std::pair{u"Open System Settings"_s, 0U}, std::pair{u"Later"_s, 1U}}) {
        const auto answer = show(permissions);
        ASSERT_TRUE(button(title)) << title.toStdString();
        button(title)->click();
        EXPECT_EQ(answered(answer), index);
        EXPECT_FALSE(box());
    }
}

TEST_F(MessageBoxAlertsTest, theOrderIsTheAlertsWhateverTheStyleMakesOfIt) {
    permissions.buttonTitles = {u"One"_s, u"Two"_s, u"Three & more"_s};
    const auto second = show(permissions);
    button(u"Two"_s)->click();
    EXPECT_EQ(answered(second), 1U);
    const auto third = show(permissions);
    // In a button's text an ampersand is written twice.
    ASSERT_TRUE(button(u"Three && more"_s));
    button(u"Three && more"_s)->click();
    EXPECT_EQ(answered(third), 2U);
}

TEST_F(MessageBoxAlertsTest, enterPressesTheFirstButtonAndEscapeTheLast) {
    const auto first = show(permissions);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box()));
    QTest::keyClick(box(), Qt::Key_Return);
    EXPECT_EQ(answered(first), 0U);
    const auto second = show(permissions);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box()));
    QTest::keyClick(box(), Qt::Key_Escape);
    EXPECT_EQ(answered(second), 1U);
}

TEST_F(MessageBoxAlertsTest, closingItOtherwiseGivesTheLastButton) {
    const auto closed = show(permissions);
    box()->close();
    EXPECT_EQ(answered(closed), 1U);
    const auto done = show(permissions);
    box()->done(4711);
    EXPECT_EQ(answered(done), 1U);
}

TEST_F(MessageBoxAlertsTest, anOnlyButtonIsFirstAndLast) {
    permissions.buttonTitles = {u"OK"_s};
    const auto pressed = show(permissions);
    button(u"OK"_s)->click();
    EXPECT_EQ(answered(pressed), 0U);
    const auto escaped = show(permissions);
    QTest::keyClick(box(), Qt::Key_Escape);
    EXPECT_EQ(answered(escaped), 0U);
}

TEST_F(MessageBoxAlertsTest, blocksTheWindowsOfTheProgram) {
    QWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const auto answer = show(permissions);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(box()));
    EXPECT_EQ(QGuiApplication::modalWindow(), box()->windowHandle());
    button(u"Later"_s)->click();
    answered(answer);
    EXPECT_EQ(QGuiApplication::modalWindow(), nullptr);
}

TEST_F(MessageBoxAlertsTest, twoAtOnceAreAnsweredEachByItself) {
    const auto first = show(permissions);
    auto* const firstBox = box();
    const auto second = show(permissions);
    firstBox->close();
    EXPECT_EQ(answered(first), 1U);
    EXPECT_FALSE(second->button);
    ASSERT_TRUE(box());
    button(u"Open System Settings"_s)->click();
    EXPECT_EQ(answered(second), 0U);
}

TEST_F(MessageBoxAlertsTest, oneThatIsOpenAtTheEndIsClosedAsByTheUser) {
    const auto answer = show(permissions);
    ASSERT_TRUE(box());
    alerts.reset();
    EXPECT_FALSE(box());
    EXPECT_EQ(answered(answer), 1U);
}

TEST_F(MessageBoxAlertsTest, aScreenReaderHearsTextsAndButtons) {
    const auto answer = show(permissions);
    auto* const dialog = QAccessible::queryAccessibleInterface(box());
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->role(), QAccessible::AlertMessage);
    EXPECT_EQ(dialog->text(QAccessible::Name), permissions.messageText);
    EXPECT_EQ(dialog->text(QAccessible::Description), permissions.informativeText);
    auto* const later = QAccessible::queryAccessibleInterface(button(u"Later"_s));
    ASSERT_TRUE(later);
    EXPECT_EQ(later->role(), QAccessible::PushButton);
    EXPECT_EQ(later->text(QAccessible::Name), u"Later"_s);
}

}  // namespace
}  // namespace corvellan::test

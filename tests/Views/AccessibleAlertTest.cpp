#include "Views/AccessibleAlert.h"

#include <gtest/gtest.h>
#include <memory>
#include <QAccessible>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <vector>

#include "Base/Executor.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

struct Told {
    QAccessible::Event kind;
    QAccessible::Role role;
    QString name;

    bool operator==(const Told&) const = default;
};

std::vector<Told>& told() {
    static std::vector<Told> all;
    return all;
}

void note(QAccessibleEvent* event) {
    const QAccessibleInterface* const spoken = event->accessibleInterface();
    if ((event->type() == QAccessible::Alert || event->type() == QAccessible::ObjectShow) && spoken &&
        spoken->role() == QAccessible::Notification)
        told().push_back({event->type(), spoken->role(), spoken->text(QAccessible::Name)});
}

/// A text in a window, with its alert.
class AccessibleAlertTest : public testing::Test {
protected:
    AccessibleAlertTest() {
        m_window.show();
        QQmlComponent component{&m_engine};
        component.setData(
            "import QtQuick\n"
            "Text { Accessible.role: Accessible.Notification; Accessible.name: text }",
            {});
        m_text.reset(qobject_cast<QQuickItem*>(component.create()));
        m_text->setParentItem(m_window.contentItem());
        m_alert.setTarget(m_text.get());
        EXPECT_TRUE(spinUntil([] { return QAccessible::isActive(); }));
        QAccessible::installUpdateHandler(note);
        told().clear();
    }
    ~AccessibleAlertTest() override { QAccessible::installUpdateHandler(nullptr); }

    void show(const QString& text) {
        m_alert.setText(text);
        m_text->setProperty("text", text);
    }
    /// What has been told once `show` has been followed by all that follows.
    std::vector<Told> everythingTold() {
        settle();
        return told();
    }
    static std::vector<Told> announcement(const QString& text) {
        return {{QAccessible::Alert, QAccessible::Notification, text},
                {QAccessible::ObjectShow, QAccessible::Notification, text}};
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_text;
    AccessibleAlert m_alert;
};

}  // namespace

TEST_F(AccessibleAlertTest, aTextIsAnnouncedUnderItsOwnName) {
    show(u"Ask about budget"_s);
    EXPECT_EQ(everythingTold(), announcement(u"Ask about budget"_s));
}

TEST_F(AccessibleAlertTest, theSameTextAndNoTextAreNot) {
    show(u"Ask about budget"_s);
    everythingTold();
    told().clear();
    show(u"Ask about budget"_s);
    show({});
    EXPECT_TRUE(everythingTold().empty());
}

TEST_F(AccessibleAlertTest, ofTextsThatFollowAtOnceTheLastIsAnnounced) {
    show(u"Ask about budget"_s);
    show(u"Name the next step"_s);
    EXPECT_EQ(everythingTold(), announcement(u"Name the next step"_s));
}

TEST_F(AccessibleAlertTest, aSilentOneTellsNothingAndCatchesUpOnNothing) {
    m_alert.setIsSilent(true);
    show(u"Ask about budget"_s);
    m_alert.setIsSilent(false);
    EXPECT_TRUE(everythingTold().empty());
    show(u"Name the next step"_s);
    EXPECT_EQ(everythingTold(), announcement(u"Name the next step"_s));
}

TEST_F(AccessibleAlertTest, whatStandsOnADisabledScreenIsAnnouncedWhenThatIsEnabled) {
    m_text->setEnabled(false);
    show(u"Calendar unavailable"_s);
    EXPECT_TRUE(everythingTold().empty());
    m_text->setEnabled(true);
    EXPECT_EQ(everythingTold(), announcement(u"Calendar unavailable"_s));
    told().clear();
    m_text->setEnabled(false);
    m_text->setEnabled(true);
    EXPECT_TRUE(everythingTold().empty());
}

TEST_F(AccessibleAlertTest, whatHasGoneMeanwhileIsNot) {
    m_text->setEnabled(false);
    show(u"Calendar unavailable"_s);
    EXPECT_TRUE(everythingTold().empty());
    show({});
    m_text->setEnabled(true);
    EXPECT_TRUE(everythingTold().empty());
}

}  // namespace corvellan::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application{argc, argv};
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    return RUN_ALL_TESTS();
}

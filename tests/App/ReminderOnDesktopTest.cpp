#include <QGuiApplication>

#include "../Platform/Linux/Notifications/StandInNotifications.h"
#include "AppFixture.h"
#include "Base/Iso8601.h"
#include "Platform/Linux/Activation/DesktopActivation.h"
#include "Platform/Linux/Notifications/DesktopNotifications.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The shell in a real window under a window manager, with a notification service on a real bus.
class ReminderOnDesktopTest : public AppFixture {
protected:
    ~ReminderOnDesktopTest() override { takeDown(); }

    NotificationCenter& notificationCenter() override { return m_notifications; }
    WindowActivation& windowActivation() override { return m_activation; }

    void SetUp() override {
        launch();
        session().setUserEmail(u"ada@example.com"_s);
        session().setUpcomingMeetings({{.id = u"m-7"_s,
                                        .summary = u"Quarterly <talk>"_s,
                                        .start = iso8601(clock.wallNow() + 170s),
                                        .matchedCompany = ResolvedCompany{.name = u"Acme"_s}}});
        // A window that goes and comes back before the window manager has shown it stays away for good.
        ASSERT_TRUE(spinUntil([this] { return panel().isExposed(); }));
        panel().close();
        settleAfter(clock, 60s);
        ASSERT_TRUE(spinUntil([this] { return !service.notified.empty(); }));
    }

    void expectItsCall() {
        ASSERT_TRUE(spinUntil([this] { return session().isSessionActive(); }));
        EXPECT_EQ(session().currentCompany(), u"Acme"_s);
        EXPECT_EQ(std::get<StartSessionPayload>(services.ws->sent.front().value).calendarEventId, u"m-7"_s);
        EXPECT_TRUE(spinUntil([this] { return panel().isExposed() && panel().size() == QSize{700, 350}; }));
        EXPECT_TRUE(spinUntil([this] { return QGuiApplication::focusWindow() == &panel(); }));
    }

private:
    PrivateBus m_bus;

protected:
    StandInNotifications service{m_bus.connect()};

private:
    DesktopNotifications m_notifications{m_bus.connect()};
    DesktopActivation m_activation;
};

TEST_F(ReminderOnDesktopTest, showsTheMeetingAndWhatCanBeDone) {
    const auto& shown = service.notified.front();
    EXPECT_EQ(shown.summary, u"Meeting starting soon"_s);
    EXPECT_TRUE(shown.body.contains(u"Quarterly <talk>"_s)) << qPrintable(shown.body);
    EXPECT_TRUE(shown.body.contains(u"Start coaching with Corvellan Bram?"_s));
    EXPECT_TRUE(shown.actions.contains(u"START_COACHING"_s));
    EXPECT_TRUE(shown.actions.contains(u"Start Coaching"_s));
    EXPECT_TRUE(shown.actions.contains(u"default"_s));
}

TEST_F(ReminderOnDesktopTest, itsButtonStartsTheCallWithOnePress) {
    service.act(7, u"START_COACHING"_s);

    expectItsCall();
}

TEST_F(ReminderOnDesktopTest, aClickOnItDoesTheSame) {
    service.act(7, u"default"_s);

    expectItsCall();
}

}  // namespace corvellan::test

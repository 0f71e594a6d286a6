#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QUuid>

#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using SettingsCallDetectionTest = SettingsViewFixture;

TEST_F(SettingsCallDetectionTest, remindersAreOnWhereNothingWasChosen) {
    EXPECT_TRUE(view().meetingReminders());
    EXPECT_FALSE(fixture.preferences.boolean(u"meetingReminders"_s)) << "showing it stores nothing";
    view().setMeetingReminders(false);
    EXPECT_FALSE(view().meetingReminders());
    EXPECT_EQ(fixture.preferences.boolean(u"meetingReminders"_s), false);
    view().setMeetingReminders(true);
    EXPECT_EQ(fixture.preferences.boolean(u"meetingReminders"_s), true);
}

TEST_F(SettingsCallDetectionTest, theHotkeyNamesTheSuperKeyWhereThereIsNoCommand) {
    EXPECT_EQ(SettingsView::hotkeyText(), u"Cmd+Shift+J"_s);
    EXPECT_TRUE(SettingsView::hotkeyCaption().contains(u"Super"_s));
}

TEST_F(SettingsCallDetectionTest, theHotkeyTellsWhatTheDesktopMakesOfIt) {
    struct Row {
        GlobalKeyWatch watch;
        QString explanation, notice, color;
    };
    for (const Row& row : {Row{GlobalKeyWatch::starting, {}, {}, {}}, Row{GlobalKeyWatch::watching, {}, {}, {}},
                           Row{GlobalKeyWatch::watching, u"Set to Meta+J"_s, u"Set to Meta+J"_s, {}},
                           Row{GlobalKeyWatch::unavailable, u"No X server"_s, u"No X server"_s, u"orange"_s}}) {
        QSignalSpy changes{&view(), &SettingsView::hotkeyChanged};
        view().setGlobalKeyWatch(row.watch, row.explanation);
        EXPECT_EQ(view().hotkeyNotice(), row.notice);
        EXPECT_EQ(view().hotkeyNoticeColor(), row.color);
        EXPECT_EQ(changes.count(), 1);
    }
}

TEST_F(SettingsCallDetectionTest, aHotkeyThatNobodyWatchesIsNeverShownAsWorking) {
    EXPECT_FALSE(view().hotkeyNotice().isEmpty());
    EXPECT_EQ(view().hotkeyNoticeColor(), u"orange"_s);
    view().setGlobalKeyWatch(GlobalKeyWatch::unavailable, {});
    EXPECT_FALSE(view().hotkeyNotice().isEmpty());
}

TEST_F(SettingsCallDetectionTest, eachNotificationStatusHasItsTextAndColor) {
    struct Row {
        NotificationAuthorization status;
        QString text, color;
    };
    using enum NotificationAuthorization;
    for (const Row& row :
         {Row{notDetermined, u"Not requested"_s, u"orange"_s},
          Row{denied, u"Denied — enable in System Settings"_s, u"red"_s}, Row{authorized, u"Enabled"_s, u"green"_s},
          Row{provisional, u"Provisional"_s, u"orange"_s}, Row{unknown, u"Unknown"_s, u"orange"_s},
          Row{static_cast<NotificationAuthorization>(99), u"Unknown"_s, u"orange"_s}}) {
        EXPECT_EQ(SettingsView::notificationStatusText(row.status), row.text);
        EXPECT_EQ(SettingsView::notificationColor(row.status), row.color);
    }
}

TEST_F(SettingsCallDetectionTest, theNotificationStatusIsReadWhenTheScreenAppears) {
    settings.desktop.notifications.granted = NotificationAuthorization::denied;
    EXPECT_EQ(view().notificationStatusText(), u"Not requested"_s);
    view().appear();
    settle();
    EXPECT_EQ(view().notificationStatusText(), u"Denied — enable in System Settings"_s);
    EXPECT_FALSE(did("notifications.requestAuthorization")) << "only the user asks for it here";
}

TEST_F(SettingsCallDetectionTest, aRequestIsFollowedByItsOutcome) {
    settings.desktop.notifications.granted = NotificationAuthorization::notDetermined;
    settings.desktop.notifications.requestGate.close();
    view().appear();
    view().requestNotificationPermission();
    settle();
    EXPECT_TRUE(did("notifications.requestAuthorization"));
    EXPECT_EQ(view().notificationStatusText(), u"Not requested"_s);

    settings.desktop.notifications.granted = NotificationAuthorization::denied;
    settings.desktop.notifications.requestGate.open();
    settle();
    EXPECT_EQ(view().notificationStatusText(), u"Denied — enable in System Settings"_s);
}

TEST_F(SettingsCallDetectionTest, theTestNotificationIsTheReminderOfTheFirstMeeting) {
    session().setUpcomingMeetings(
        {CalendarMeeting{
             .id = u"m-1"_s, .summary = u"Renewal"_s, .matchedCompany = ResolvedCompany{.name = u"Nordwind"_s}},
         CalendarMeeting{.id = u"m-2"_s, .summary = u"Later"_s}});
    view().sendTestNotification();

    ASSERT_EQ(settings.desktop.notifications.categories.size(), 1U);
    const NotificationCategory& category = settings.desktop.notifications.categories.front();
    EXPECT_EQ(category.identifier, u"MEETING_REMINDER"_s);
    ASSERT_EQ(category.actions.size(), 1U);
    EXPECT_EQ(category.actions.front().identifier, u"START_COACHING"_s);
    EXPECT_EQ(category.actions.front().title, u"Start Coaching"_s);

    ASSERT_EQ(settings.desktop.notifications.requests.size(), 1U);
    const NotificationRequest& request = settings.desktop.notifications.requests.front();
    EXPECT_EQ(request.title, u"Meeting starting soon"_s);
    EXPECT_EQ(request.subtitle, u"Renewal"_s);
    EXPECT_EQ(request.body, u"Start coaching with Corvellan Bram?"_s);
    EXPECT_TRUE(request.playsDefaultSound);
    EXPECT_EQ(request.categoryIdentifier, u"MEETING_REMINDER"_s);
    EXPECT_EQ(request.userInfo, (QMap<QString, QString>{{u"meetingId"_s, u"m-1"_s}, {u"company"_s, u"Nordwind"_s}}));
    EXPECT_EQ(settings.desktop.log, (CallLog{"notifications.setCategory", "notifications.add"}));
}

TEST_F(SettingsCallDetectionTest, aTestNotificationWithoutAMatchNamesTheTestCompany) {
    session().setUpcomingMeetings({CalendarMeeting{.id = u"m-1"_s, .summary = u"Renewal"_s}});
    view().sendTestNotification();
    const NotificationRequest& request = settings.desktop.notifications.requests.front();
    EXPECT_EQ(request.subtitle, u"Renewal"_s);
    EXPECT_EQ(request.userInfo,
              (QMap<QString, QString>{{u"meetingId"_s, u"m-1"_s}, {u"company"_s, u"Test Company"_s}}));
}

TEST_F(SettingsCallDetectionTest, aTestNotificationWithoutAnyMeetingIsMadeUp) {
    view().sendTestNotification();
    const NotificationRequest& request = settings.desktop.notifications.requests.front();
    EXPECT_EQ(request.subtitle, u"Test Meeting"_s);
    EXPECT_EQ(request.userInfo,
              (QMap<QString, QString>{{u"meetingId"_s, u"test"_s}, {u"company"_s, u"Test Company"_s}}));
}

TEST_F(SettingsCallDetectionTest, everyTestNotificationHasAnIdentifierOfItsOwn) {
    view().sendTestNotification();
    view().sendTestNotification();
    const auto& requests = settings.desktop.notifications.requests;
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_NE(requests[0].identifier, requests[1].identifier);
    for (const NotificationRequest& request : requests) {
        ASSERT_TRUE(request.identifier.startsWith(u"test-"_s));
        EXPECT_FALSE(QUuid::fromString(request.identifier.mid(5)).isNull()) << qPrintable(request.identifier);
    }
}

}  // namespace

}  // namespace corvellan::test

#include "Views/SettingsView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QUuid>

#include "Base/SettingsPreferences.h"
#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

const QString production = u"wss://coach.test/ws"_s;
const QString local = u"ws://localhost:3001/ws"_s;
const QString chat = u"https://chat.test"_s;

class SettingsViewTest : public testing::Test {
protected:
    SettingsView& view() {
        if (!m_view)
            m_view = std::make_unique<SettingsView>(fixture.session(), fixture.preferences, settings.parts());
        return *m_view;
    }
    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] bool did(const std::string& step) const {
        return std::ranges::find(settings.desktop.log, step) != settings.desktop.log.end();
    }
    QString permission(int row, const QByteArray& role) { return view().permissionRows()->value(row, role).toString(); }

    SessionFixture fixture;
    SettingsFixture settings{fixture.preferences};

private:
    std::unique_ptr<SettingsView> m_view;
};

// MARK: - Server

TEST_F(SettingsViewTest, theServerModesAreNamedInTheirOrder) {
    EXPECT_EQ(SettingsView::serverModes(), (QStringList{u"Production"_s, u"Local (dev)"_s, u"Custom"_s}));
}

TEST_F(SettingsViewTest, eachModeIsStoredUnderItsRawValueAndGivesItsServer) {
    struct Row {
        int index;
        QString custom, stored, server;
    };
    for (const Row& row :
         {Row{0, u"ws://own.test/ws"_s, u"production"_s, production}, Row{1, u"ws://own.test/ws"_s, u"local"_s, local},
          Row{2, u"ws://own.test/ws"_s, u"custom"_s, u"ws://own.test/ws"_s}, Row{2, QString{}, u"custom"_s, production},
          Row{2, u" "_s, u"custom"_s, u" "_s}}) {
        view().setCustomServerURL(row.custom);
        view().setServerModeIndex(row.index);
        EXPECT_EQ(view().serverModeIndex(), row.index);
        EXPECT_EQ(fixture.preferences.string(u"serverMode"_s), row.stored);
        EXPECT_EQ(session().serverURL(), row.server) << qPrintable(row.stored);
    }
}

TEST_F(SettingsViewTest, customModeWithAnEmptyFieldConnectsToProduction) {
    view().setServerMode(ServerMode::custom);
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
    view().setCustomServerURL({});
    EXPECT_EQ(session().serverURL(), production);
}

TEST_F(SettingsViewTest, everyLetterOfACustomAddressIsAppliedAndStored) {
    view().setServerMode(ServerMode::custom);
    for (const QString& typed : {u"w"_s, u"ws"_s, u"ws:"_s}) {
        view().setCustomServerURL(typed);
        EXPECT_EQ(session().serverURL(), typed);
        EXPECT_EQ(fixture.preferences.string(u"customServerURL"_s), typed);
    }
}

TEST_F(SettingsViewTest, aCustomAddressIsKeptButUnusedInOtherModes) {
    view().setServerMode(ServerMode::local);
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), local);
    EXPECT_FALSE(view().isCustomServer());
    view().setServerMode(ServerMode::custom);
    EXPECT_TRUE(view().isCustomServer());
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
}

TEST_F(SettingsViewTest, signInStaysAtTheChatBackEndInEveryMode) {
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    for (const ServerModeRow& row : serverModeRows) {
        session().setAuthURL(u"https://elsewhere.test"_s);
        view().setServerMode(row.value);
        EXPECT_EQ(session().authURL(), chat) << row.raw;
    }
}

TEST_F(SettingsViewTest, aStoredModeThatIsNoneOfTheThreeCountsAsProduction) {
    for (const QString& stored : {u""_s, u"Local"_s, u"staging"_s, u"local "_s, u"2"_s}) {
        fixture.preferences.setString(u"serverMode"_s, stored);
        EXPECT_EQ(view().serverMode(), ServerMode::production) << qPrintable(stored);
        view().applyServerURL();
        EXPECT_EQ(session().serverURL(), production) << qPrintable(stored);
    }
    fixture.preferences.setBoolean(u"serverMode"_s, true);
    EXPECT_EQ(view().serverMode(), ServerMode::production);
}

TEST_F(SettingsViewTest, openingAppliesTheStoredServerAgain) {
    session().setServerURL(u"ws://elsewhere.test/ws"_s);
    session().setAuthURL(u"https://elsewhere.test"_s);
    EXPECT_EQ(view().serverMode(), ServerMode::local);

    view().appear();

    EXPECT_EQ(session().serverURL(), local);
    EXPECT_EQ(session().authURL(), chat);
}

TEST_F(SettingsViewTest, openingShowsWhatWasStoredElsewhereMeanwhile) {
    QSignalSpy modes{&view(), &SettingsView::serverModeChanged};
    QSignalSpy addresses{&view(), &SettingsView::customServerURLChanged};
    fixture.preferences.setString(u"serverMode"_s, u"custom"_s);
    fixture.preferences.setString(u"customServerURL"_s, u"ws://own.test/ws"_s);

    view().appear();

    EXPECT_EQ(modes.count(), 1);
    EXPECT_EQ(addresses.count(), 1);
    EXPECT_EQ(view().serverModeIndex(), 2);
    EXPECT_EQ(view().customServerURL(), u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
}

TEST_F(SettingsViewTest, aModeThatIsNotThereChangesNothing) {
    for (const int index : {-1, 3}) {
        view().setServerModeIndex(index);
        EXPECT_EQ(view().serverMode(), ServerMode::local);
    }
}

TEST_F(SettingsViewTest, theConnectionIsGreenOrGrayBesideTheStatus) {
    QSignalSpy changes{&view(), &SettingsView::statusChanged};
    EXPECT_EQ(view().connectionColor(), u"gray"_s);
    EXPECT_EQ(view().statusText(), u"Ready"_s);
    session().setIsConnected(true);
    EXPECT_EQ(view().connectionColor(), u"green"_s);
    session().setStatusText(u"Listening..."_s);
    EXPECT_EQ(view().statusText(), u"Listening..."_s);
    EXPECT_EQ(changes.count(), 2);
}

// MARK: - Account

TEST_F(SettingsViewTest, theAccountFollowsUserAndServer) {
    struct Row {
        std::optional<QString> user;
        ServerMode mode;
        QString text, color;
        bool canLogin, canLogout;
    };
    for (const Row& row : {Row{std::nullopt, ServerMode::production, u"Not signed in"_s, u"orange"_s, true, false},
                           Row{std::nullopt, ServerMode::local, u"Dev mode (no auth required)"_s, {}, false, false},
                           Row{std::nullopt, ServerMode::custom, u"Not signed in"_s, u"orange"_s, true, false}}) {
        session().setUserEmail(row.user);
        view().setServerMode(row.mode);
        EXPECT_EQ(view().accountText(), row.text);
        EXPECT_EQ(view().accountColor(), row.color);
        EXPECT_EQ(view().userEmail(), row.user.value_or(QString{}));
        EXPECT_EQ(view().canLogin(), row.canLogin);
        EXPECT_EQ(view().canLogout(), row.canLogout);
    }
}

TEST_F(SettingsViewTest, signedInAndTheLogoutAppearWhicheverTheMode) {
    session().setUserEmail(u"ada@teskara.test"_s);
    for (const ServerModeRow& row : serverModeRows) {
        view().setServerMode(row.value);
        EXPECT_EQ(view().accountText(), u"Signed in"_s) << row.raw;
        EXPECT_EQ(view().accountColor(), QString{}) << row.raw;
        EXPECT_EQ(view().userEmail(), u"ada@teskara.test"_s) << row.raw;
        EXPECT_TRUE(view().canLogout()) << row.raw;
        EXPECT_FALSE(view().canLogin()) << row.raw;
    }
}

TEST_F(SettingsViewTest, loginSignsInAtTheChatBackEnd) {
    view().setServerMode(ServerMode::production);
    view().login();
    settle();
    EXPECT_TRUE(fixture.did("auth.login"));
    EXPECT_EQ(fixture.auth->baseUrl, chat);
}

TEST_F(SettingsViewTest, logoutSignsOut) {
    session().setUserEmail(u"ada@teskara.test"_s);
    view().logout();
    settle();
    EXPECT_TRUE(fixture.did("auth.logout"));
    EXPECT_FALSE(view().canLogout());
}

TEST_F(SettingsViewTest, aCustomServerOnThisMachineNeedsNoAccountEither) {
    view().setServerMode(ServerMode::custom);
    view().setCustomServerURL(u"ws://127.0.0.1:9000/ws"_s);
    EXPECT_EQ(view().accountText(), u"Dev mode (no auth required)"_s);
}

TEST_F(SettingsViewTest, theAccountIsToldAnewWhenUserOrServerChange) {
    QSignalSpy changes{&view(), &SettingsView::accountChanged};
    session().setUserEmail(u"ada@teskara.test"_s);
    EXPECT_EQ(changes.count(), 1);
    session().setServerURL(u"wss://other.test/ws"_s);
    EXPECT_EQ(changes.count(), 2);
}

// MARK: - General, display, screen context

TEST_F(SettingsViewTest, launchAtLoginIsTheDesktopsOwnList) {
    EXPECT_FALSE(view().launchesAtLogin());
    view().setLaunchesAtLogin(true);
    EXPECT_TRUE(settings.desktop.loginItems.isRegistered);
    EXPECT_TRUE(view().launchesAtLogin());
    settings.desktop.loginItems.isRegistered = false;
    EXPECT_FALSE(view().launchesAtLogin());
}

TEST_F(SettingsViewTest, aRefusedLoginItemShowsTheTruthAgain) {
    settings.desktop.loginItems.failure = Error{TransportError{u"read-only"_s}};
    QSignalSpy changes{&view(), &SettingsView::launchesAtLoginChanged};
    view().setLaunchesAtLogin(true);
    EXPECT_FALSE(view().launchesAtLogin());
    EXPECT_EQ(changes.count(), 1) << "a switch that was pressed has to be set back";
}

TEST_F(SettingsViewTest, theFontSizesAreThreeScales) {
    EXPECT_EQ(SettingsView::fontSizes(), (QStringList{u"Normal"_s, u"Large (1.5x)"_s, u"Extra Large (2x)"_s}));
    QSignalSpy changes{&view(), &SettingsView::fontSizeChanged};
    const std::array scales{1.0, 1.5, 2.0};
    for (int index = 0; index < 3; ++index) {
        view().setFontSizeIndex(index);
        EXPECT_EQ(view().fontSizeIndex(), index);
        EXPECT_EQ(view().fontSizeText(), SettingsView::fontSizes().at(index));
        EXPECT_EQ(session().fontScale(), scales.at(static_cast<std::size_t>(index)));
        EXPECT_EQ(fixture.preferences.number(u"fontScale"_s), scales.at(static_cast<std::size_t>(index)));
    }
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(SettingsViewTest, aScaleThatIsNoneOfTheThreeIsShownAsItIs) {
    session().setFontScale(1.2);
    EXPECT_EQ(view().fontSizeIndex(), -1);
    EXPECT_EQ(view().fontSizeText(), u"1.2x"_s);
    view().setFontSizeIndex(-1);
    view().setFontSizeIndex(3);
    EXPECT_EQ(session().fontScale(), 1.2);
}

TEST_F(SettingsViewTest, sharingTheWindowIsStored) {
    QSignalSpy changes{&view(), &SettingsView::sharesScreenChanged};
    EXPECT_FALSE(view().sharesScreen());
    view().setSharesScreen(true);
    EXPECT_TRUE(view().sharesScreen());
    EXPECT_EQ(fixture.preferences.boolean(u"screenShareEnabled"_s), true);
    EXPECT_EQ(changes.count(), 1);
    session().setIsScreenShareEnabled(false);
    EXPECT_FALSE(view().sharesScreen());
    EXPECT_EQ(changes.count(), 2);
}

// MARK: - Browser extension

TEST_F(SettingsViewTest, theExtensionIsConnectedOrNot) {
    EXPECT_EQ(view().sensorText(), u"Not connected"_s);
    EXPECT_EQ(view().sensorColor(), u"gray"_s);
    session().setSensorConnected(true);
    EXPECT_EQ(view().sensorText(), u"Connected"_s);
    EXPECT_EQ(view().sensorColor(), u"green"_s);
}

TEST_F(SettingsViewTest, theExtensionsPageIsNamedByContactAndCompany) {
    struct Row {
        std::optional<QString> contact, company;
        QString text;
    };
    for (const Row& row :
         {Row{u"Sandra Weiss"_s, u"Nordwind"_s, u"Sandra Weiss (Nordwind)"_s},
          Row{u"Sandra Weiss"_s, std::nullopt, u"Sandra Weiss"_s}, Row{std::nullopt, u"Nordwind"_s, u"Nordwind"_s},
          Row{u""_s, u""_s, u"contact"_s}, Row{std::nullopt, std::nullopt, u"contact"_s}})
        EXPECT_EQ(SettingsView::viewing({.entityType = u"contact"_s,
                                         .entityId = u"7"_s,
                                         .displayName = row.contact,
                                         .companyName = row.company}),
                  row.text);
}

TEST_F(SettingsViewTest, pageAndCallOfTheExtensionShowOnlyWhileItIsConnected) {
    QSignalSpy changes{&view(), &SettingsView::sensorChanged};
    session().setExtensionContext(
        ExtensionContextPayload{.entityType = u"contact"_s, .entityId = u"7"_s, .displayName = u"Sandra Weiss"_s});
    session().setExtensionCallActive(true);
    EXPECT_EQ(view().viewingText(), QString{});
    EXPECT_FALSE(view().showsCall());
    session().setSensorConnected(true);
    EXPECT_EQ(view().viewingText(), u"Sandra Weiss"_s);
    EXPECT_TRUE(view().showsCall());
    EXPECT_EQ(changes.count(), 3);
    session().setExtensionContext(std::nullopt);
    session().setExtensionCallActive(false);
    EXPECT_EQ(view().viewingText(), QString{});
    EXPECT_FALSE(view().showsCall());
}

TEST_F(SettingsViewTest, autoStartIsOnUntilItIsSwitchedOff) {
    EXPECT_TRUE(view().autoStartOnCall());
    view().setAutoStartOnCall(false);
    EXPECT_FALSE(session().autoStartOnCall());
    EXPECT_EQ(fixture.preferences.boolean(u"autoStartOnCall"_s), false);
}

TEST_F(SettingsViewTest, theLinkOpensTheExtensionsPage) {
    view().openExtensionPage();
    settle();
    EXPECT_EQ(settings.desktop.browser.pages, std::vector{QUrl{u"https://store.test/corvellan-sensor"_s}});
}

TEST_F(SettingsViewTest, theStatusOfTheExtensionIsCheckedOnRequest) {
    fixture.auth->accessToken = u"token"_s;
    fixture.http.answer(200, R"({"sensor_connected": true})");
    view().checkSensorStatus();
    settle();
    EXPECT_EQ(fixture.http.requests.size(), 1U);
    EXPECT_EQ(view().sensorText(), u"Connected"_s);
}

// MARK: - Call detection

TEST_F(SettingsViewTest, remindersAreOnWhereNothingWasChosen) {
    EXPECT_TRUE(view().meetingReminders());
    EXPECT_FALSE(fixture.preferences.boolean(u"meetingReminders"_s)) << "showing it stores nothing";
    view().setMeetingReminders(false);
    EXPECT_FALSE(view().meetingReminders());
    EXPECT_EQ(fixture.preferences.boolean(u"meetingReminders"_s), false);
    view().setMeetingReminders(true);
    EXPECT_EQ(fixture.preferences.boolean(u"meetingReminders"_s), true);
}

TEST_F(SettingsViewTest, theHotkeyNamesTheSuperKeyWhereThereIsNoCommand) {
    EXPECT_EQ(SettingsView::hotkeyText(), u"Cmd+Shift+J"_s);
    EXPECT_TRUE(SettingsView::hotkeyCaption().contains(u"Super"_s));
}

TEST_F(SettingsViewTest, theHotkeyTellsWhatTheDesktopMakesOfIt) {
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

TEST_F(SettingsViewTest, aHotkeyThatNobodyWatchesIsNeverShownAsWorking) {
    EXPECT_FALSE(view().hotkeyNotice().isEmpty());
    EXPECT_EQ(view().hotkeyNoticeColor(), u"orange"_s);
    view().setGlobalKeyWatch(GlobalKeyWatch::unavailable, {});
    EXPECT_FALSE(view().hotkeyNotice().isEmpty());
}

TEST_F(SettingsViewTest, eachNotificationStatusHasItsTextAndColor) {
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

TEST_F(SettingsViewTest, theNotificationStatusIsReadWhenTheScreenAppears) {
    settings.desktop.notifications.granted = NotificationAuthorization::denied;
    EXPECT_EQ(view().notificationStatusText(), u"Not requested"_s);
    view().appear();
    settle();
    EXPECT_EQ(view().notificationStatusText(), u"Denied — enable in System Settings"_s);
    EXPECT_FALSE(did("notifications.requestAuthorization")) << "only the user asks for it here";
}

TEST_F(SettingsViewTest, aRequestIsFollowedByItsOutcome) {
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

TEST_F(SettingsViewTest, theTestNotificationIsTheReminderOfTheFirstMeeting) {
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

TEST_F(SettingsViewTest, aTestNotificationWithoutAMatchNamesTheTestCompany) {
    session().setUpcomingMeetings({CalendarMeeting{.id = u"m-1"_s, .summary = u"Renewal"_s}});
    view().sendTestNotification();
    const NotificationRequest& request = settings.desktop.notifications.requests.front();
    EXPECT_EQ(request.subtitle, u"Renewal"_s);
    EXPECT_EQ(request.userInfo,
              (QMap<QString, QString>{{u"meetingId"_s, u"m-1"_s}, {u"company"_s, u"Test Company"_s}}));
}

TEST_F(SettingsViewTest, aTestNotificationWithoutAnyMeetingIsMadeUp) {
    view().sendTestNotification();
    const NotificationRequest& request = settings.desktop.notifications.requests.front();
    EXPECT_EQ(request.subtitle, u"Test Meeting"_s);
    EXPECT_EQ(request.userInfo,
              (QMap<QString, QString>{{u"meetingId"_s, u"test"_s}, {u"company"_s, u"Test Company"_s}}));
}

TEST_F(SettingsViewTest, everyTestNotificationHasAnIdentifierOfItsOwn) {
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

// MARK: - Voice

TEST_F(SettingsViewTest, theVoiceLineNamesNoSystemThatIsNotThisOne) {
    EXPECT_TRUE(SettingsView::voiceText().contains(u"(premium > enhanced > default)"_s));
    EXPECT_FALSE(SettingsView::voiceText().contains(u"macOS"_s));
    EXPECT_FALSE(SettingsView::voiceCaption().contains(u"Spoken Content"_s));
}

// MARK: - Permissions

TEST_F(SettingsViewTest, aPermissionRowTellsItsStatus) {
    struct Row {
        std::optional<PermissionStatus> status;
        QString text, color;
    };
    for (const Row& row : {Row{PermissionStatus::granted, u"Granted"_s, u"green"_s},
                           Row{PermissionStatus::denied, u"Your voice — not allowed"_s, u"red"_s},
                           Row{PermissionStatus::unknown, u"Not requested"_s, u"gray"_s},
                           Row{std::nullopt, u"Not requested"_s, u"gray"_s}}) {
        const PermissionRow permission{u"Microphone"_s, u"Your voice"_s, row.status};
        EXPECT_EQ(permission.statusText(), row.text);
        EXPECT_EQ(permission.statusColor(), row.color);
    }
}

TEST_F(SettingsViewTest, thePermissionsAreReadWhenTheScreenAppears) {
    EXPECT_EQ(permission(0, "label"), u"Microphone"_s);
    EXPECT_EQ(permission(0, "detail"), u"Your voice"_s);
    EXPECT_EQ(permission(1, "label"), u"Screen Recording"_s);
    EXPECT_EQ(permission(1, "detail"), u"Customer voice (Zoom/Meet)"_s);
    for (const int row : {0, 1})
        EXPECT_EQ(permission(row, "statusText"), u"Not requested"_s);
    settings.desktop.permissions.contentFailure = Error{TransportError{u"refused"_s}};

    view().appear();
    settle();

    EXPECT_EQ(view().permissionState(),
              (PermissionState{.microphone = PermissionStatus::granted, .screenRecording = PermissionStatus::denied}));
    EXPECT_EQ(permission(0, "statusText"), u"Granted"_s);
    EXPECT_EQ(permission(0, "statusColor"), u"green"_s);
    EXPECT_EQ(permission(1, "statusText"), u"Customer voice (Zoom/Meet) — not allowed"_s);
    EXPECT_EQ(permission(1, "statusColor"), u"red"_s);
}

TEST_F(SettingsViewTest, permissionsAreReadAfreshEveryTimeAndNeverAskedFor) {
    settings.desktop.permissions.microphone = CaptureAuthorization::denied;
    view().appear();
    settle();
    EXPECT_EQ(permission(0, "statusText"), u"Your voice — not allowed"_s);
    settings.desktop.permissions.microphone = CaptureAuthorization::authorized;
    view().appear();
    settle();
    EXPECT_EQ(permission(0, "statusText"), u"Granted"_s);
    EXPECT_FALSE(did("permissions.requestMicrophoneAccess"));
}

TEST_F(SettingsViewTest, systemSettingsOpenAtScreenCapture) {
    view().openSystemSettings();
    EXPECT_EQ(settings.desktop.settings.opened, std::vector{PrivacyPane::screenCapture});
}

TEST(SharingTextTest, aDesktopWithoutWindowsSharesTheWholeScreenAndSaysSo) {
    SessionFixture fixture;
    SettingsFixture desktop{fixture.preferences};
    auto parts = desktop.parts();
    const auto text = [&] { return SettingsView{fixture.session(), fixture.preferences, parts}.sharingText(); };
    EXPECT_TRUE(text().endsWith(u"frames are never written to disk."_s));
    parts.sharesWindows = false;
    EXPECT_TRUE(text().contains(u"the coach sees your whole screen"_s));
}

// MARK: - About

TEST_F(SettingsViewTest, aboutTellsVersionAndBuild) {
    EXPECT_EQ(SettingsView::aboutText(),
              u"Corvellan Bram — AI sales coach by Teskara. Invisible during screen share, real-time MEDDIC "
              "tracking and call guidance."_s);
    EXPECT_EQ(view().version(), u"1.2.3"_s);
    EXPECT_EQ(view().build(), u"45"_s);
}

TEST_F(SettingsViewTest, updatesAreCheckedByTheUpdaterIfThereIsOne) {
    FakeUpdater updater;
    EXPECT_FALSE(view().canCheckForUpdates());
    view().checkForUpdates();
    QSignalSpy changes{&view(), &SettingsView::canCheckForUpdatesChanged};
    session().setSparkleUpdater(&updater);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(view().canCheckForUpdates());
    view().checkForUpdates();
    EXPECT_EQ(updater.checks, 1);
    session().setSparkleUpdater(nullptr);
}

// MARK: - Life

TEST_F(SettingsViewTest, aViewMayGoWhileAnswersAreOnTheirWay) {
    auto passing = std::make_unique<SettingsView>(session(), fixture.preferences, settings.parts());
    settings.desktop.notifications.requestGate.close();
    passing->requestNotificationPermission();
    settle();
    passing->appear();
    passing.reset();
    settings.desktop.notifications.requestGate.open();
    settle();
    EXPECT_FALSE(did("notifications.authorization"));
    EXPECT_FALSE(did("permissions.microphoneAuthorization"));
}

TEST_F(SettingsViewTest, whatWasChosenIsThereAtTheNextStart) {
    const QString path = fixture.folder.filePath(u"kept.ini"_s);
    {
        SettingsPreferences stored{path};
        SettingsView chosen{session(), stored, settings.parts()};
        chosen.setServerMode(ServerMode::custom);
        chosen.setCustomServerURL(u"ws://own.test/ws?a=1,2;3"_s);
        chosen.setMeetingReminders(false);
    }
    SettingsPreferences stored{path};
    SettingsView again{session(), stored, settings.parts()};
    EXPECT_EQ(again.serverMode(), ServerMode::custom);
    EXPECT_EQ(again.customServerURL(), u"ws://own.test/ws?a=1,2;3"_s);
    EXPECT_FALSE(again.meetingReminders());
}

}  // namespace

}  // namespace corvellan::test

#include <gtest/gtest.h>

#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class SettingsPermissionsTest : public SettingsViewFixture {
protected:
    QString permission(int row, const QByteArray& role) { return view().permissionRows()->value(row, role).toString(); }
};

TEST_F(SettingsPermissionsTest, aPermissionRowTellsItsStatus) {
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

TEST_F(SettingsPermissionsTest, thePermissionsAreReadWhenTheScreenAppears) {
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

TEST_F(SettingsPermissionsTest, permissionsAreReadAfreshEveryTimeAndNeverAskedFor) {
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

TEST_F(SettingsPermissionsTest, systemSettingsOpenAtScreenCapture) {
    view().openSystemSettings();
    EXPECT_EQ(settings.desktop.settings.opened, std::vector{PrivacyPane::screenCapture});
}

}  // namespace

}  // namespace corvellan::test

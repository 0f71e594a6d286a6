import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What leads to a call: reminders and the shortcut.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("Call Detection")

    FormSwitch {
        objectName: "meetingReminders"
        theme: root.theme
        text: qsTr("Meeting reminders")
        caption: qsTr("Notify 2 minutes before calendar meetings to start coaching")
        isOn: root.settings.meetingReminders
        onChanged: isOn => root.settings.meetingReminders = isOn
    }
    FormRow {
        objectName: "hotkeyRow"
        theme: root.theme
        label: qsTr("Global Hotkey")
        caption: root.settings.hotkeyCaption
        notice: root.settings.hotkeyNotice
        noticeColorName: root.settings.hotkeyNoticeColor
        contentShare: 0.4

        FormText {
            objectName: "hotkey"
            theme: root.theme
            text: root.settings.hotkeyText
        }
    }
    FormRow {
        theme: root.theme
        label: qsTr("Notifications")

        StatusDot {
            objectName: "notificationDot"
            theme: root.theme
            colorName: root.settings.notificationColor
        }
        FormText {
            objectName: "notificationStatus"
            theme: root.theme
            text: root.settings.notificationStatusText
        }
    }
    FormRow {
        theme: root.theme
        contentShare: 1

        FormButton {
            objectName: "testNotification"
            theme: root.theme
            text: qsTr("Test Notification")
            onClicked: root.settings.sendTestNotification()
        }
        FormButton {
            objectName: "requestNotifications"
            theme: root.theme
            text: qsTr("Request Permission")
            onClicked: root.settings.requestNotificationPermission()
        }
        Item {
            Layout.fillWidth: true
        }
    }
}

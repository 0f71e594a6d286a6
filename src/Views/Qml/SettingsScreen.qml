pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What the user can choose, and how things stand, in one form.
FocusScope {
    id: root

    required property SettingsView settings
    required property StealthView stealth
    required property Theme theme

    focus: true
    // The form scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    Keys.onTabPressed: serverMode.forceActiveFocus(Qt.TabFocusReason)
    Component.onCompleted: root.settings.appear()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ScreenTitle {
            Layout.fillWidth: true
            theme: root.theme
            text: qsTr("Settings")
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        ScrollArea {
            id: area

            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "form"
            focus: true
            theme: root.theme
            focusMargin: 36
            Accessible.name: qsTr("Settings")

            Item {
                width: parent ? parent.width : 0
                height: form.implicitHeight + 36

                ColumnLayout {
                    id: form

                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 16
                    width: Math.min(parent.width - 40, 620)
                    spacing: 20

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("Server")

                        FormRow {
                            theme: root.theme
                            label: qsTr("Mode")
                            isLabelSpoken: false

                            FormPicker {
                                id: serverMode

                                objectName: "serverMode"
                                theme: root.theme
                                label: qsTr("Mode")
                                model: root.settings.serverModes
                                selected: root.settings.serverModeIndex
                                onChosen: index => root.settings.serverModeIndex = index
                            }
                        }
                        FormRow {
                            theme: root.theme
                            visible: root.settings.isCustomServer
                            label: qsTr("WebSocket URL")
                            isLabelSpoken: false

                            FormTextField {
                                objectName: "customServerURL"
                                theme: root.theme
                                label: qsTr("WebSocket URL")
                                placeholderText: "ws://..."
                                text: root.settings.customServerURL
                                inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
                                onTextEdited: root.settings.customServerURL = text
                            }
                        }
                        FormRow {
                            theme: root.theme
                            label: qsTr("Status")

                            StatusDot {
                                objectName: "connectionDot"
                                theme: root.theme
                                colorName: root.settings.connectionColor
                            }
                            FormText {
                                objectName: "statusText"
                                theme: root.theme
                                text: root.settings.statusText
                            }
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("Account")

                        FormRow {
                            objectName: "accountRow"
                            theme: root.theme
                            label: root.settings.accountText
                            labelColorName: root.settings.accountColor

                            FormText {
                                objectName: "account"
                                theme: root.theme
                                text: root.settings.userEmail
                            }
                            FormButton {
                                objectName: "logout"
                                theme: root.theme
                                visible: root.settings.canLogout
                                text: qsTr("Logout")
                                onClicked: root.settings.logout()
                            }
                            FormButton {
                                objectName: "login"
                                theme: root.theme
                                visible: root.settings.canLogin
                                text: qsTr("Login with Teskara")
                                onClicked: root.settings.login()
                            }
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("General")

                        FormSwitch {
                            objectName: "launchAtLogin"
                            theme: root.theme
                            text: qsTr("Launch at login")
                            isOn: root.settings.launchesAtLogin
                            onChanged: isOn => root.settings.launchesAtLogin = isOn
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("Display")

                        FormRow {
                            theme: root.theme
                            label: qsTr("Coaching font size")
                            isLabelSpoken: false

                            FormPicker {
                                objectName: "fontSize"
                                theme: root.theme
                                label: qsTr("Coaching font size")
                                model: root.settings.fontSizes
                                selected: root.settings.fontSizeIndex
                                displayText: root.settings.fontSizeText
                                onChosen: index => root.settings.fontSizeIndex = index
                            }
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("Screen context")

                        FormSwitch {
                            objectName: "shareScreen"
                            theme: root.theme
                            text: qsTr("Share active window with coach")
                            caption: root.settings.sharingText
                            isOn: root.settings.sharesScreen
                            onChanged: isOn => root.settings.sharesScreen = isOn
                        }
                        FormRow {
                            objectName: "hiddenRow"
                            theme: root.theme
                            label: qsTr("Hidden from screen capture")
                            caption: root.stealth.statusText
                            notice: root.stealth.testResultText

                            FormButton {
                                objectName: "testHiding"
                                theme: root.theme
                                visible: root.stealth.canTest || root.stealth.isTesting
                                enabled: !root.stealth.isTesting
                                text: root.stealth.isTesting ? qsTr("Testing...") : qsTr("Test")
                                onClicked: root.stealth.runSelfTest()
                            }
                        }
                        FormCode {
                            objectName: "hidingAdvice"
                            theme: root.theme
                            visible: text.length > 0
                            label: qsTr("Lines for the desktop's configuration")
                            text: root.stealth.adviceText
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("HubSpot Sensor")

                        FormRow {
                            theme: root.theme
                            label: qsTr("Chrome Extension")

                            StatusDot {
                                objectName: "sensorDot"
                                theme: root.theme
                                colorName: root.settings.sensorColor
                            }
                            FormText {
                                objectName: "sensorText"
                                theme: root.theme
                                text: root.settings.sensorText
                            }
                        }
                        FormRow {
                            objectName: "installRow"
                            theme: root.theme
                            visible: !root.settings.sensorConnected
                            caption: qsTr("Install the Chrome extension to auto-detect HubSpot calls and contacts.")

                            FormLink {
                                objectName: "installSensor"
                                theme: root.theme
                                text: qsTr("Install Corvellan Sensor")
                                onClicked: root.settings.openExtensionPage()
                            }
                        }
                        FormRow {
                            objectName: "viewingRow"
                            theme: root.theme
                            visible: root.settings.viewingText.length > 0
                            label: qsTr("Viewing")

                            FormText {
                                objectName: "viewing"
                                theme: root.theme
                                text: root.settings.viewingText
                            }
                        }
                        FormRow {
                            objectName: "callRow"
                            theme: root.theme
                            visible: root.settings.showsCall
                            label: qsTr("Call")

                            FormText {
                                objectName: "call"
                                theme: root.theme
                                text: qsTr("Active")
                                colorName: "red"
                            }
                        }
                        FormSwitch {
                            objectName: "autoStart"
                            theme: root.theme
                            text: qsTr("Auto-start coaching on call")
                            isOn: root.settings.autoStartOnCall
                            onChanged: isOn => root.settings.autoStartOnCall = isOn
                        }
                        FormRow {
                            theme: root.theme
                            contentShare: 1

                            FormButton {
                                objectName: "checkStatus"
                                theme: root.theme
                                text: qsTr("Check Status")
                                onClicked: root.settings.checkSensorStatus()
                            }
                            Item {
                                Layout.fillWidth: true
                            }
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
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

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("TTS Voice")

                        FormRow {
                            objectName: "voiceRow"
                            theme: root.theme
                            label: root.settings.voiceText
                            caption: root.settings.voiceCaption
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("Permissions")

                        Repeater {
                            model: root.settings.permissionRows

                            FormRow {
                                id: permission

                                required label
                                required property int index
                                required property string detail
                                required property string statusText
                                required property string statusColor

                                objectName: "permissionRow" + index
                                theme: root.theme
                                caption: detail

                                FormText {
                                    objectName: "permissionStatus" + permission.index
                                    theme: root.theme
                                    text: permission.statusText
                                    size: 11
                                    colorName: permission.statusColor
                                }
                            }
                        }
                        FormRow {
                            theme: root.theme
                            contentShare: 1

                            FormButton {
                                objectName: "openSystemSettings"
                                theme: root.theme
                                text: qsTr("Open System Settings")
                                onClicked: root.settings.openSystemSettings()
                            }
                            Item {
                                Layout.fillWidth: true
                            }
                        }
                    }

                    FormSection {
                        Layout.fillWidth: true
                        theme: root.theme
                        title: qsTr("About")

                        FormRow {
                            objectName: "aboutRow"
                            theme: root.theme
                            caption: root.settings.aboutText
                        }
                        FormRow {
                            theme: root.theme
                            label: qsTr("Version")

                            FormText {
                                objectName: "version"
                                theme: root.theme
                                text: root.settings.version
                            }
                        }
                        FormRow {
                            theme: root.theme
                            label: qsTr("Build")

                            FormText {
                                objectName: "build"
                                theme: root.theme
                                text: root.settings.build
                            }
                        }
                        FormRow {
                            theme: root.theme
                            contentShare: 1

                            FormButton {
                                objectName: "checkForUpdates"
                                theme: root.theme
                                text: qsTr("Check for Updates")
                                symbol: "arrow.clockwise"
                                enabled: root.settings.canCheckForUpdates
                                onClicked: root.settings.checkForUpdates()
                            }
                            Item {
                                Layout.fillWidth: true
                            }
                        }
                    }
                }
            }
        }
    }
}

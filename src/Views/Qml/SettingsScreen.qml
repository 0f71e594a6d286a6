import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What the user can choose, and how things stand, in one form.
TabScreen {
    id: root

    required property SettingsView settings
    required property StealthView stealth
    required property Theme theme

    // The form scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    Keys.onTabPressed: server.first.forceActiveFocus(Qt.TabFocusReason)
    onAppeared: root.settings.appear()

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

                    SettingsServer {
                        id: server

                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsAccount {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsGeneral {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsDisplay {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsSharing {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                        stealth: root.stealth
                    }
                    SettingsSensor {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsDetection {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsVoice {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsPermissions {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                    SettingsAbout {
                        Layout.fillWidth: true
                        theme: root.theme
                        settings: root.settings
                    }
                }
            }
        }
    }
}

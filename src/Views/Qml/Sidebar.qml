pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The way to the other screens, the coaching mode, and the account.
FocusScope {
    id: root

    required property DashboardView dashboard
    required property Theme theme
    readonly property int margin: 8

    implicitWidth: 172

    /// Gives the keyboard to the tab that is open.
    function focusSelected() {
        for (let i = 0; i < tabs.count; ++i)
            if (tabs.itemAt(i).isSelected)
                tabs.itemAt(i).forceActiveFocus(Qt.TabFocusReason);
    }

    Box {
        anchors.fill: parent
        color: root.theme.cardBackground
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.topMargin: 10
        anchors.bottomMargin: 8
        spacing: 6

        ScrollArea {
            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "sidebarList"
            theme: root.theme
            focusMargin: 4
            Accessible.name: qsTr("Sidebar")

            Item {
                width: parent ? parent.width : 0
                height: lists.implicitHeight + 4

                ColumnLayout {
                    id: lists

                    x: root.margin
                    y: 2
                    width: parent.width - 2 * root.margin
                    spacing: 14

                    ColumnLayout {
                        Layout.fillWidth: true
                        objectName: "tabs"
                        spacing: 1
                        Accessible.role: Accessible.PageTabList
                        Accessible.name: qsTr("Screens")

                        Repeater {
                            id: tabs

                            model: root.dashboard.visibleTabs

                            SidebarTab {
                                required property var modelData
                                required property int index

                                Layout.fillWidth: true
                                objectName: "tab-" + modelData.name
                                theme: root.theme
                                text: modelData.title
                                symbol: modelData.symbol
                                isSelected: root.dashboard.selectedTab === modelData.name
                                onClicked: root.dashboard.selectTab(modelData.name)
                                Keys.onUpPressed: tabs.step(index - 1)
                                Keys.onDownPressed: tabs.step(index + 1)
                            }

                            function step(index: int) {
                                if (index >= 0 && index < count)
                                    itemAt(index).forceActiveFocus(Qt.TabFocusReason);
                            }
                        }
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        objectName: "modes"
                        spacing: 1
                        Accessible.role: Accessible.Grouping
                        Accessible.name: qsTr("Coaching mode")

                        Repeater {
                            id: modes

                            model: root.dashboard.modes

                            SidebarMode {
                                required property string label
                                required symbol
                                required accent
                                required isSelected
                                required property int index

                                Layout.fillWidth: true
                                objectName: "mode-" + index
                                theme: root.theme
                                text: label
                                onClicked: root.dashboard.chooseMode(index)
                                Keys.onUpPressed: modes.step(index - 1)
                                Keys.onDownPressed: modes.step(index + 1)
                            }

                            function step(index: int) {
                                if (index >= 0 && index < count)
                                    itemAt(index).forceActiveFocus(Qt.TabFocusReason);
                            }
                        }
                    }
                }
            }
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin
            spacing: 1

            SidebarRow {
                Layout.fillWidth: true
                objectName: "crmChat"
                theme: root.theme
                text: qsTr("CRM Chat")
                symbol: "bubble.left.and.text.bubble.right"
                tip: qsTr("Opens in the browser")
                onClicked: root.dashboard.openChat()
            }
            SidebarRow {
                Layout.fillWidth: true
                objectName: "sidebar-account"
                visible: root.dashboard.userEmail.length > 0
                theme: root.theme
                text: root.dashboard.sidebarUsername
                symbol: "person.crop.circle"
                tip: qsTr("%1: sign out").arg(root.dashboard.userEmail)
                Accessible.name: qsTr("Sign out %1").arg(root.dashboard.sidebarUsername)
                onClicked: root.dashboard.logout()
            }
            SidebarRow {
                Layout.fillWidth: true
                objectName: "sidebar-login"
                visible: root.dashboard.canLogin
                theme: root.theme
                text: qsTr("Login")
                symbol: "person.crop.circle"
                tip: qsTr("Signs in through the browser")
                onClicked: root.dashboard.login()
            }
            SidebarRow {
                Layout.fillWidth: true
                objectName: "sidebar-update"
                visible: root.dashboard.isUpdateAvailable
                theme: root.theme
                text: qsTr("Update Available")
                symbol: "arrow.down.circle.fill"
                plainColor: root.theme.green
                onClicked: root.dashboard.checkForUpdates()
            }
            ReadOut {
                Layout.fillWidth: true
                Layout.leftMargin: 9
                Layout.topMargin: 2
                objectName: "sidebar-version"
                visible: text.length > 0
                theme: root.theme
                text: root.dashboard.versionText
                size: 11
                color: root.theme.secondary
                elide: Text.ElideRight
                Accessible.name: qsTr("Version %1").arg(text.slice(1))
            }
        }
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What the history shows without any session.
FocusScope {
    id: root

    required property SessionHistoryView history
    required property Theme theme
    readonly property bool isBusy: history.state === "syncing" || history.state === "loading"

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 420)
        visible: root.isBusy
        spacing: 12

        Spinner {
            Layout.alignment: Qt.AlignHCenter
            objectName: "busySign"
            theme: root.theme
            size: 20
        }
        ReadOut {
            Layout.fillWidth: true
            objectName: "busyText"
            theme: root.theme
            text: root.history.state === "syncing" ? qsTr("Syncing from server...") : qsTr("Loading sessions...")
            size: 13
            color: root.theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 420)
        visible: !root.isBusy
        spacing: 8

        IconLabel {
            Layout.alignment: Qt.AlignHCenter
            theme: root.theme
            symbol: "tray"
            size: 34
            color: root.theme.secondary
        }
        ReadOut {
            Layout.fillWidth: true
            objectName: "emptyHeadline"
            theme: root.theme
            text: qsTr("No sessions yet")
            size: 16
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        ReadOut {
            Layout.fillWidth: true
            objectName: "emptyText"
            theme: root.theme
            text: qsTr("Start a call or training session to see history here.")
            size: 13
            color: root.theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        ReadOut {
            Layout.fillWidth: true
            objectName: "storeProblem"
            theme: root.theme
            visible: text.length > 0
            text: root.history.storeProblem
            size: 12
            color: root.theme.errorText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        FormButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 8
            objectName: "syncFromServer"
            theme: root.theme
            text: qsTr("Sync from Server")
            symbol: "arrow.clockwise"
            focus: true
            onClicked: root.history.syncHistory()
        }
    }
}

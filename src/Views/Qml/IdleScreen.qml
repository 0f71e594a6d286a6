import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Where a call is started, and how the last one went.
FocusScope {
    id: root

    required property IdleView idle
    required property Theme theme

    focus: true

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 460)
        spacing: 0

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 72
            implicitHeight: 72
            radius: 18
            color: Qt.alpha(root.theme.gold, 0.14)
            border.color: Qt.alpha(root.theme.gold, 0.35)

            IconLabel {
                anchors.centerIn: parent
                theme: root.theme
                symbol: "waveform"
                size: 32
                color: root.theme.gold
            }
        }
        ReadOut {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 18
            theme: root.theme
            text: root.idle.productName
            size: 26
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.topMargin: 6
            objectName: "statusText"
            theme: root.theme
            text: root.idle.statusText
            size: 14
            color: root.theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.topMargin: 18
            objectName: "errorBox"
            visible: root.idle.errorMessage.length > 0
            implicitHeight: Math.min(problem.implicitHeight, Math.max(34, root.height - 380)) + 20
            radius: 8
            color: Qt.alpha(root.theme.red, 0.12)
            border.color: Qt.alpha(root.theme.red, 0.35)
            clip: true

            IconLabel {
                id: mark

                x: 12
                y: 9
                theme: root.theme
                symbol: "exclamationmark.triangle.fill"
                size: 14
                color: root.theme.red
            }
            ScrollArea {
                anchors.fill: parent
                anchors.topMargin: 10
                anchors.bottomMargin: 10
                anchors.leftMargin: 40
                anchors.rightMargin: 6
                theme: root.theme
                Accessible.name: qsTr("Error")

                ReadOut {
                    id: problem

                    objectName: "errorMessage"
                    width: parent ? parent.width - 8 : 0
                    theme: root.theme
                    text: root.idle.errorMessage
                    size: 13
                    lineHeight: 1.15
                    color: root.theme.errorText
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.AlertMessage
                }
            }
            AccessibleAlert {
                target: problem
                text: root.idle.errorMessage
            }
        }

        ProminentButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 26
            objectName: "startCoaching"
            theme: root.theme
            text: qsTr("Start Coaching")
            symbol: "waveform"
            focus: true
            enabled: root.idle.canStart
            onClicked: root.idle.startCoaching()
        }
        ReadOut {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 16
            objectName: "lastCall"
            theme: root.theme
            visible: text.length > 0
            text: root.idle.lastCallText
            size: 13
            color: root.theme.secondary
        }
    }

    RowLayout {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        width: Math.min(implicitWidth, parent.width - 32)
        spacing: 6

        IconLabel {
            theme: root.theme
            symbol: "server.rack"
            size: 11
            color: root.theme.secondary
        }
        ReadOut {
            Layout.fillWidth: true
            objectName: "server"
            theme: root.theme
            text: root.idle.serverText
            size: 12
            color: root.theme.secondary
            elide: Text.ElideMiddle
        }
    }
}

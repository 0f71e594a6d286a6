import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A permission that the program needs: granted, or to be asked for.
Box {
    id: root

    required property Theme theme
    required property int index
    required property string symbol
    required property string title
    required property string detail
    required property bool isGranted
    /// What came of asking; empty for nothing to say.
    required property string notice

    signal enableRequested

    Layout.fillWidth: true
    implicitHeight: Math.max(72, line.implicitHeight + 28)
    radius: 10
    color: theme.cardBackground
    borderColor: theme.hairline

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 16
        anchors.rightMargin: 16
        spacing: 14

        IconLabel {
            objectName: "permissionSymbol" + root.index
            theme: root.theme
            symbol: root.symbol
            size: 24
            color: root.isGranted ? root.theme.green : root.theme.orange
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: root.title
                size: 14
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.name: root.isGranted ? qsTr("%1: granted").arg(root.title)
                                                : qsTr("%1: not granted").arg(root.title)
            }
            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: root.detail
                size: 12
                lineHeight: 1.15
                color: root.theme.secondary
                wrapMode: Text.Wrap
            }
            ProblemText {
                Layout.fillWidth: true
                Layout.topMargin: 2
                objectName: "permissionNotice" + root.index
                theme: root.theme
                colorName: "orange"
                text: root.notice
            }
        }
        FormButton {
            objectName: "enable" + root.index
            theme: root.theme
            visible: !root.isGranted
            text: qsTr("Enable")
            Accessible.name: qsTr("Enable %1").arg(root.title)
            onClicked: root.enableRequested()
        }
        IconLabel {
            objectName: "permissionMark" + root.index
            theme: root.theme
            visible: root.isGranted
            symbol: "checkmark.circle.fill"
            size: 20
            color: root.theme.green
        }
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One MEDDIC criterion of a finished session, and what spoke for it.
Item {
    id: root

    required property Theme theme
    required property int index
    required property string letter
    required property bool isMet
    required property string label
    required property string evidence
    required property string spoken

    Layout.fillWidth: true
    implicitHeight: Math.max(40, line.implicitHeight + 16)
    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Divider {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 14
        theme: root.theme
        visible: root.index > 0
    }

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 12

        ReadOut {
            Layout.preferredWidth: 16
            objectName: "letter"
            theme: root.theme
            text: root.letter
            size: 14
            isMonospaced: true
            font.weight: Font.Bold
            color: root.isMet ? root.theme.green : Qt.alpha(root.theme.gray, 0.4)
            Accessible.ignored: true
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                objectName: "label"
                theme: root.theme
                text: root.label
                size: 13
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "evidence"
                theme: root.theme
                visible: text.length > 0
                text: root.evidence
                size: 11
                lineHeight: 1.1
                color: root.theme.secondary
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
        IconLabel {
            objectName: "mark"
            theme: root.theme
            symbol: root.isMet ? "checkmark.circle.fill" : "circle"
            size: 15
            color: root.isMet ? root.theme.green : Qt.alpha(root.theme.gray, 0.3)
        }
    }
}

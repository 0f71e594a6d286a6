import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Lines to be copied as they are, by button or by hand.
Item {
    id: root

    required property Theme theme
    /// What the lines are for, for screen readers.
    required property string label
    property alias text: lines.text

    Layout.fillWidth: true
    implicitHeight: Math.max(lines.implicitHeight, copyButton.implicitHeight) + 28

    Divider {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 14
        theme: root.theme
        visible: root.y > 0
    }

    Box {
        anchors.fill: parent
        anchors.margins: 8
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        radius: 6
        color: root.theme.windowBackground
        borderWidth: lines.activeFocus ? 2 : 1
        borderColor: lines.activeFocus ? root.theme.focusRing : root.theme.hairline

        TextEdit {
            id: lines

            anchors.left: parent.left
            anchors.right: copyButton.left
            anchors.verticalCenter: parent.verticalCenter
            anchors.leftMargin: 10
            anchors.rightMargin: 10
            objectName: "code"
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            activeFocusOnTab: true
            // The Tab key leaves; nothing is written here.
            KeyNavigation.priority: KeyNavigation.BeforeItem
            KeyNavigation.tab: copyButton
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.WrapAnywhere
            font.family: root.theme.monospacedFamily
            font.pixelSize: 11
            color: root.theme.foreground
            selectionColor: root.theme.accent
            selectedTextColor: root.theme.white

            Accessible.role: Accessible.EditableText
            Accessible.readOnly: true
            Accessible.name: root.label
        }

        FormButton {
            id: copyButton

            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 6
            objectName: "copyCode"
            theme: root.theme
            text: qsTr("Copy")
            onClicked: {
                lines.selectAll();
                lines.copy();
                lines.deselect();
            }
        }
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A row that is a switch, pressed anywhere. It shows `isOn` and nothing else: who refuses a change leaves
/// that as it is.
PressButton {
    id: root

    required property Theme theme
    property string caption: ""
    /// Before the text; empty for none.
    property string symbol: ""
    property bool isOn: false

    signal changed(isOn: bool)

    Layout.fillWidth: true
    implicitHeight: Math.max(44, implicitContentHeight + 20)
    leftPadding: 14
    rightPadding: 14
    checkable: true
    checked: isOn
    opacity: enabled ? 1 : 0.5

    onClicked: {
        root.changed(!root.isOn);
        // A press has set it by itself.
        root.checked = Qt.binding(() => root.isOn);
    }

    Accessible.role: Accessible.CheckBox
    Accessible.description: root.caption
    Accessible.onToggleAction: root.clicked()

    contentItem: RowLayout {
        spacing: 14

        IconLabel {
            theme: root.theme
            visible: root.symbol.length > 0
            symbol: root.symbol
            size: 14
            color: root.theme.secondary
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: root.text
                size: 13
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                visible: text.length > 0
                text: root.caption
                size: 11
                lineHeight: 1.1
                color: root.theme.secondary
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
        Box {
            implicitWidth: 38
            implicitHeight: 22
            radius: 11
            color: root.isOn ? root.theme.accent : root.theme.controlBackground
            borderWidth: root.isOn ? 0 : 1
            borderColor: root.theme.controlBorder

            Box {
                x: root.isOn ? parent.width - width - 3 : 3
                y: 3
                width: 16
                height: 16
                radius: 8
                color: root.isOn ? root.theme.white : root.theme.controlBorder

                Behavior on x {
                    NumberAnimation {
                        duration: 120
                        easing.type: Easing.InOutQuad
                    }
                }
            }
        }
    }

    background: Box {
        radius: 10
        color: Qt.alpha(root.theme.foreground, !root.enabled ? 0 : root.down ? 0.08 : root.hovered ? 0.04 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing

        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 14
            theme: root.theme
            visible: root.y > 0 && !root.visualFocus
        }
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A buyer to practise with, one of several. It shows `isSelected` and nothing else.
PressRadio {
    id: root

    required property Theme theme
    required property string detail

    // One stop for the Tab key: the choice that holds.
    focusPolicy: isSelected ? Qt.StrongFocus : Qt.ClickFocus
    implicitHeight: Math.max(44, implicitContentHeight + topPadding + bottomPadding)
    leftPadding: 14
    rightPadding: 14
    topPadding: 8
    bottomPadding: 8

    Accessible.description: root.detail

    contentItem: RowLayout {
        spacing: 12

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                objectName: "scenarioName"
                theme: root.theme
                text: root.text
                size: 13
                font.weight: root.isSelected ? Font.DemiBold : Font.Normal
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "scenarioDetail"
                theme: root.theme
                text: root.detail
                size: 11
                color: root.theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        IconLabel {
            objectName: "scenarioMark"
            theme: root.theme
            // Its room stays, so that names don't move.
            opacity: root.isSelected ? 1 : 0
            symbol: "checkmark"
            size: 14
            color: root.theme.cyan
        }
    }

    background: Box {
        radius: 10
        color: Qt.alpha(root.theme.foreground, root.down ? 0.1 : root.hovered ? 0.05 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing

        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 14
            theme: root.theme
            // The first row of a card has no line above it.
            visible: root.y > 0 && !root.visualFocus
        }
    }
}

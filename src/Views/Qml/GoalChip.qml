import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A goal of the call, chosen or not. It shows `isSelected` and nothing else.
PressButton {
    id: root

    required property Theme theme
    required property string symbol
    required property string colorName
    required property bool isSelected
    readonly property color tint: theme.named[colorName]

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight + topPadding + bottomPadding, theme.hitTarget)
    leftPadding: 10
    rightPadding: 12
    topPadding: 5
    bottomPadding: 5
    checkable: true
    checked: isSelected
    // A press has set it by itself.
    onToggled: root.checked = Qt.binding(() => root.isSelected)

    Accessible.role: Accessible.CheckBox
    Accessible.onToggleAction: root.clicked()

    contentItem: RowLayout {
        spacing: 6

        IconLabel {
            theme: root.theme
            symbol: root.symbol
            size: 12
            color: root.tint
        }
        ReadOut {
            theme: root.theme
            text: root.text
            size: 12
            font.weight: root.isSelected ? Font.DemiBold : Font.Normal
            Accessible.ignored: true
        }
    }

    background: Box {
        objectName: "chip"
        radius: height / 2
        color: Qt.alpha(root.tint, root.isSelected ? 0.25 : 0.1)
        borderWidth: root.visualFocus ? 2 : 1
        borderColor: root.visualFocus ? root.theme.focusRing : Qt.alpha(root.tint, root.isSelected ? 0.5 : 0.2)

        Box {
            anchors.fill: parent
            radius: parent.radius
            color: Qt.alpha(root.theme.foreground, root.down ? 0.12 : root.hovered ? 0.06 : 0)
        }
    }
}

import QtQuick
import Corvellan.Views

/// A row of the sidebar: symbol and title, lit while it is the one that is on.
PressButton {
    id: root

    required property Theme theme
    required property string symbol
    property bool isSelected: false
    property color accent: theme.accent
    /// Of symbol and title while it is not selected.
    property color plainColor: theme.secondary
    /// While it is.
    property color selectedColor: theme.foreground
    property real symbolSize: 13
    property string tip: ""
    readonly property color textColor: isSelected ? selectedColor : hovered || visualFocus ? theme.foreground : plainColor

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: theme.hitTarget
    leftPadding: 9
    rightPadding: 9

    contentItem: Item {
        implicitHeight: 16

        IconLabel {
            width: 20
            anchors.verticalCenter: parent.verticalCenter
            theme: root.theme
            symbol: root.symbol
            size: root.symbolSize
            color: root.isSelected ? root.accent : root.textColor
            horizontalAlignment: Text.AlignHCenter
        }
        ReadOut {
            x: 28
            width: parent.width - x
            anchors.verticalCenter: parent.verticalCenter
            theme: root.theme
            text: root.text
            size: 13
            font.weight: root.isSelected ? Font.DemiBold : Font.Normal
            color: root.textColor
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    background: Box {
        radius: 6
        color: root.isSelected ? Qt.alpha(root.accent, root.down ? 0.2 : root.hovered ? 0.15 : 0.1)
                               : Qt.alpha(root.theme.foreground, root.down ? 0.12 : root.hovered ? 0.06 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    Tip {
        theme: root.theme
        text: root.tip
        visible: root.tip.length > 0 && root.hovered && !root.down
    }
}

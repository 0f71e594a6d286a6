import QtQuick
import Corvellan.Views

/// A row of the sidebar that does something: symbol and title.
PressButton {
    id: root

    required property Theme theme
    required property string symbol
    property color plainColor: theme.secondary
    property string tip: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: theme.hitTarget
    leftPadding: 9
    rightPadding: 9

    contentItem: SidebarFace {
        theme: root.theme
        symbol: root.symbol
        text: root.text
        isSelected: false
        isLit: root.hovered || root.visualFocus
        plainColor: root.plainColor
    }

    background: SidebarGround {
        theme: root.theme
        isSelected: false
        isDown: root.down
        isHovered: root.hovered
        hasRing: root.visualFocus
    }

    Tip {
        theme: root.theme
        text: root.tip
        visible: root.tip.length > 0 && root.hovered && !root.down
    }
}

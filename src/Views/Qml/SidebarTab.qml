import QtQuick
import Corvellan.Views

/// A row of the sidebar that leads to a screen.
PressTab {
    id: root

    required property Theme theme
    required property string symbol

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: theme.hitTarget
    leftPadding: 9
    rightPadding: 9

    contentItem: SidebarFace {
        theme: root.theme
        symbol: root.symbol
        text: root.text
        isSelected: root.isSelected
        isLit: root.hovered || root.visualFocus
        plainColor: root.theme.foreground
    }

    background: SidebarGround {
        theme: root.theme
        isSelected: root.isSelected
        isDown: root.down
        isHovered: root.hovered
        hasRing: root.visualFocus
    }
}

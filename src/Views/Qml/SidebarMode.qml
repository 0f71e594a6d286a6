import QtQuick
import Corvellan.Views

/// A row of the sidebar that picks a coaching mode.
PressRadio {
    id: root

    required property Theme theme
    required property string symbol
    property color accent: theme.accent

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
        accent: root.accent
        symbolSize: 12
    }

    background: SidebarGround {
        theme: root.theme
        isSelected: root.isSelected
        isDown: root.down
        isHovered: root.hovered
        hasRing: root.visualFocus
        accent: root.accent
    }
}

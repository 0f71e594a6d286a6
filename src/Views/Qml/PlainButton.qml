import QtQuick
import Corvellan.Views

/// A button without a frame of its own: text, or any other content.
PressButton {
    id: root

    required property Theme theme
    property color color: theme.foreground
    property real size: 11

    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, theme.hitTarget)
    implicitHeight: Math.max(implicitContentHeight + topPadding + bottomPadding, theme.hitTarget)
    leftPadding: 8
    rightPadding: 8

    contentItem: ReadOut {
        theme: root.theme
        text: root.text
        size: root.size
        color: root.hovered || root.visualFocus ? Qt.alpha(root.color, Math.min(1, root.color.a + 0.3)) : root.color
        verticalAlignment: Text.AlignVCenter
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }

    background: Box {
        radius: 5
        color: Qt.alpha(root.theme.foreground, root.down ? 0.14 : root.hovered && root.enabled ? 0.08 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }
}

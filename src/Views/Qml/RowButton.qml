import QtQuick
import Corvellan.Views

/// A row of a card that is pressed as a whole. Its content is up to its user.
PressButton {
    id: root

    required property Theme theme
    /// The first row of a card has no line above it.
    property bool hasDivider: root.y > 0

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(44, implicitContentHeight + topPadding + bottomPadding)
    leftPadding: 14
    rightPadding: 14
    topPadding: 8
    bottomPadding: 8

    background: Box {
        radius: 10
        color: Qt.alpha(root.theme.foreground, !root.enabled ? 0 : root.down ? 0.1 : root.hovered ? 0.05 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing

        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 14
            theme: root.theme
            visible: root.hasDivider && !root.visualFocus
        }
    }
}

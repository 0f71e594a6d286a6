import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A link to a page in the user's browser.
PressButton {
    id: root

    required property Theme theme

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: theme.hitTarget
    leftPadding: 6
    rightPadding: 6

    Accessible.role: Accessible.Link

    contentItem: RowLayout {
        spacing: 5

        ReadOut {
            theme: root.theme
            text: root.text
            size: 13
            color: root.theme.accent
            font.underline: root.hovered || root.visualFocus
            Accessible.ignored: true
        }
        IconLabel {
            theme: root.theme
            symbol: "arrow.up.forward.square"
            size: 12
            color: root.theme.accent
        }
    }

    background: Rectangle {
        radius: 6
        color: Qt.alpha(root.theme.foreground, root.down ? 0.1 : root.hovered ? 0.05 : 0)
        border.width: root.visualFocus ? 2 : 0
        border.color: root.theme.focusRing
    }
}

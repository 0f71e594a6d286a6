import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A small button that opens a page of the company.
PressButton {
    id: root

    required property Theme theme

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight, theme.hitTarget)
    leftPadding: 9
    rightPadding: 10
    Accessible.description: qsTr("Opens in the browser")

    contentItem: RowLayout {
        spacing: 5

        IconLabel {
            theme: root.theme
            symbol: "link"
            size: 12
            color: root.theme.cyan
        }
        ReadOut {
            theme: root.theme
            text: root.text
            size: 12
            Accessible.ignored: true
        }
    }

    background: Box {
        radius: 6
        color: Qt.alpha(root.theme.foreground, root.down ? 0.14 : root.hovered ? 0.09 : 0.05)
        borderWidth: root.visualFocus ? 2 : 1
        borderColor: root.visualFocus ? root.theme.focusRing : root.theme.hairline
    }
}

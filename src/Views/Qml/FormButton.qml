import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A button in a form, with an optional symbol.
PressButton {
    id: root

    required property Theme theme
    property string symbol: ""
    /// Of symbol and text.
    property color color: theme.foreground

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight + topPadding + bottomPadding, theme.hitTarget)
    leftPadding: 12
    rightPadding: 12
    topPadding: 5
    bottomPadding: 5
    opacity: enabled ? 1 : 0.45

    contentItem: RowLayout {
        spacing: 6

        IconLabel {
            theme: root.theme
            visible: root.symbol.length > 0
            symbol: root.symbol
            size: 13
            color: root.color
        }
        ReadOut {
            theme: root.theme
            text: root.text
            size: 13
            color: root.color
            Accessible.ignored: true
        }
    }

    background: Box {
        radius: 6
        color: Qt.tint(root.theme.controlBackground,
                       Qt.alpha(root.theme.foreground, !root.enabled ? 0 : root.down ? 0.16 : root.hovered ? 0.07 : 0))
        borderWidth: root.visualFocus ? 2 : 1
        borderColor: root.visualFocus ? root.theme.focusRing : root.theme.controlBorder
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The one button that a screen is about.
PressButton {
    id: root

    required property Theme theme
    /// Empty for none.
    required property string symbol
    property color color: theme.green

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 44
    leftPadding: 22
    rightPadding: 24
    opacity: enabled ? 1 : 0.4

    contentItem: RowLayout {
        spacing: 8

        IconLabel {
            theme: root.theme
            visible: root.symbol.length > 0
            symbol: root.symbol
            size: 16
            color: root.theme.prominentText
        }
        ReadOut {
            theme: root.theme
            text: root.text
            size: 15
            font.weight: Font.DemiBold
            color: root.theme.prominentText
            Accessible.ignored: true
        }
    }

    background: Box {
        radius: 10
        color: root.down ? Qt.darker(root.color, 1.2) : root.hovered ? Qt.lighter(root.color, 1.12) : root.color

        Box {
            anchors.fill: parent
            anchors.margins: -4
            radius: 14
            color: "transparent"
            borderWidth: 2
            borderColor: root.theme.focusRing
            visible: root.visualFocus
        }
    }
}

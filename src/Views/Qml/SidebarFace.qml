import QtQuick
import Corvellan.Views

/// Symbol and title of a row of the sidebar.
Item {
    id: root

    required property Theme theme
    required property string symbol
    required property string text
    required property bool isSelected
    /// Under the pointer, or with the keyboard.
    required property bool isLit
    property color accent: theme.accent
    /// Of symbol and title while it is not selected.
    property color plainColor: theme.secondary
    property real symbolSize: 13
    readonly property color textColor: isSelected || isLit ? theme.foreground : plainColor

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

import QtQuick
import Corvellan.Views

/// A figure beside its symbol.
Row {
    id: root

    required property Theme theme
    required property string symbol
    required property string text
    property color color: theme.secondary

    spacing: 5

    IconLabel {
        anchors.verticalCenter: parent.verticalCenter
        theme: root.theme
        symbol: root.symbol
        size: 11
        color: root.color
    }
    ReadOut {
        anchors.verticalCenter: parent.verticalCenter
        theme: root.theme
        text: root.text
        size: 11
        color: root.color
    }
}

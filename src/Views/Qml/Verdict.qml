import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// How the user found a session.
RowLayout {
    id: root

    required property Theme theme
    required property string symbol
    required property string word
    /// One of the theme's named colours.
    required property string colorName

    spacing: 7

    IconLabel {
        theme: root.theme
        symbol: root.symbol
        size: 15
        color: root.theme.named[root.colorName]
    }
    ReadOut {
        Layout.fillWidth: true
        theme: root.theme
        text: root.word
        size: 13
        font.weight: Font.Medium
        color: root.theme.named[root.colorName]
    }
}

import QtQuick
import Corvellan.Views

/// A piece of text. What servers and people wrote is never taken for markup.
Text {
    id: root

    required property Theme theme
    /// Height of the letters in pixels, before rounding.
    property real size: 12
    property bool isMonospaced: false

    font.family: root.isMonospaced ? root.theme.monospacedFamily : root.theme.textFamily
    font.pixelSize: Math.round(root.size)
    color: root.theme.foreground
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: root.text
    Accessible.ignored: root.text.length === 0
}

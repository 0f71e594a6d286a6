import QtQuick
import Corvellan.Views

/// A symbol, tinted by `color`. Decoration: what it means stands beside it in words.
Text {
    id: root

    required property Theme theme
    required property string symbol
    property real size: 12

    text: root.symbol.length > 0 ? root.theme.glyph(root.symbol) : ""
    font.family: root.theme.iconFamily
    // The font's glyphs keep a margin inside their square; letters of the same size don't.
    font.pixelSize: Math.round(root.size * 1.3)
    color: root.theme.foreground
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter

    Accessible.ignored: true
}

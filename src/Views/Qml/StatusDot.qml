import QtQuick
import Corvellan.Views

/// A coloured dot. Decoration: what it means stands beside it in words.
Box {
    id: root

    required property Theme theme
    /// One of the theme's named colours.
    required property string colorName

    implicitWidth: 6
    implicitHeight: 6
    radius: 3
    color: root.theme.named[root.colorName]
}

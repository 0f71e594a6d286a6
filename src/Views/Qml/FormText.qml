import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A value at the right end of a row.
ReadOut {
    id: root

    /// One of the theme's named colours; empty for the quiet one of values.
    property string colorName: ""

    Layout.fillWidth: true
    size: 13
    color: root.colorName.length > 0 ? root.theme.named[root.colorName] : root.theme.secondary
    horizontalAlignment: Text.AlignRight
    wrapMode: Text.Wrap
}

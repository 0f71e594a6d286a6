import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A big value with a small title under it.
ColumnLayout {
    id: root

    required property Theme theme
    required property string title
    required property string value
    /// One of the theme's named colours.
    required property string colorName

    spacing: 1
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("%1: %2").arg(title).arg(value)

    ReadOut {
        Layout.fillWidth: true
        objectName: "value"
        theme: root.theme
        text: root.value
        size: 20
        font.weight: Font.DemiBold
        color: root.theme.named[root.colorName]
        horizontalAlignment: Text.AlignHCenter
        // A value keeps its letters: a narrow card shows them smaller.
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 11
        Accessible.ignored: true
    }
    ReadOut {
        Layout.fillWidth: true
        theme: root.theme
        text: root.title
        size: 11
        color: root.theme.secondary
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}

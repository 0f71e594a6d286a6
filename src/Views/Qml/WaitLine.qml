import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A spinner and what is being waited for.
RowLayout {
    id: root

    required property Theme theme
    required property string text

    spacing: 8

    Spinner {
        theme: root.theme
    }
    ReadOut {
        Layout.fillWidth: true
        theme: root.theme
        text: root.text
        size: 12
        color: root.theme.secondary
        wrapMode: Text.Wrap
    }
}

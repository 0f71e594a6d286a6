import QtQuick
import Corvellan.Views

/// A word on a ground of its own colour.
Box {
    id: root

    required property Theme theme
    required property string text
    /// One of the theme's named colours.
    required property string colorName
    property bool isMonospaced: false

    visible: text.length > 0
    implicitWidth: word.implicitWidth + 12
    implicitHeight: word.implicitHeight + 4
    radius: 4
    color: Qt.alpha(root.theme.named[root.colorName], 0.14)

    ReadOut {
        id: word

        anchors.centerIn: parent
        theme: root.theme
        text: root.text
        size: 10
        isMonospaced: root.isMonospaced
        font.weight: Font.Bold
        color: root.theme.named[root.colorName]
        Accessible.ignored: parent.Accessible.ignored
    }
}

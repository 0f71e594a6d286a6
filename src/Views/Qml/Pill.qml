import QtQuick
import Corvellan.Views

/// A few letters on a ground of their own. Its button says what it means.
Box {
    id: root

    required property Theme theme
    required property string text
    property color tint: theme.foreground
    property color textColor: theme.secondary
    property real strength: 0.1
    property bool isCode: false

    implicitWidth: Math.max(letters.implicitWidth + 10, implicitHeight)
    implicitHeight: letters.implicitHeight + 4
    radius: 4
    color: Qt.alpha(root.tint, root.strength)

    ReadOut {
        id: letters

        anchors.centerIn: parent
        theme: root.theme
        text: root.text
        size: 10
        isMonospaced: root.isCode
        font.weight: root.isCode ? Font.Bold : Font.Normal
        color: root.textColor
        Accessible.ignored: true
    }
}

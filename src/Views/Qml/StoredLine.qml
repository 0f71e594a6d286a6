import QtQuick
import Corvellan.Views

/// One line of a stored transcript.
Item {
    id: root

    required property Theme theme
    required property string tag
    required property string tagColor
    required property string line
    required property string lineColor
    required property real lineOpacity
    required property string spoken

    implicitHeight: Math.max(tagText.implicitHeight, lineText.implicitHeight) + 8
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken

    ReadOut {
        id: tagText

        x: 14
        y: 4 + Math.round((lineText.font.pixelSize - font.pixelSize) * 0.9)
        width: 18
        objectName: "tag"
        theme: root.theme
        text: root.tag
        size: 11
        isMonospaced: true
        font.weight: Font.Bold
        color: root.theme.named[root.tagColor]
        Accessible.ignored: true
    }
    ReadOut {
        id: lineText

        x: 40
        y: 4
        width: root.width - x - 14
        objectName: "line"
        theme: root.theme
        text: root.line
        size: 13
        color: Qt.alpha(root.theme.named[root.lineColor], root.lineOpacity)
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}

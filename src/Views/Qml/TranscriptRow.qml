import QtQuick
import Corvellan.Views

/// One line of the transcript, its text beside the tag of who said it.
Item {
    id: root

    required property Theme theme
    required property string tag
    required property color tagColor
    required property string text
    /// 1 is the standard size.
    property real letterScale: 1
    property real tagWidth: 36 * letterScale
    property bool isCoach: false
    property bool hasLine: false
    property real textSize: (isCoach ? 10 : 11) * letterScale
    property color textColor: Qt.alpha(theme.white, isCoach ? 0.5 : 0.8)

    implicitHeight: Math.max(name.implicitHeight, body.implicitHeight) + 6

    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1: %2").arg(root.tag).arg(root.text)

    Box {
        width: parent.width
        height: 1
        objectName: "hairline"
        visible: root.hasLine
        color: Qt.alpha(root.theme.white, 0.06)
    }
    ReadOut {
        id: name

        y: 3 + Math.max(0, body.font.pixelSize - font.pixelSize)
        width: root.tagWidth
        objectName: "tag"
        theme: root.theme
        text: root.tag
        size: 8 * root.letterScale
        isMonospaced: true
        font.weight: Font.Bold
        color: root.tagColor
        Accessible.ignored: true
    }
    ReadOut {
        id: body

        x: name.width
        y: 3
        width: parent.width - x
        objectName: "text"
        theme: root.theme
        text: root.text
        size: root.textSize
        color: root.textColor
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}

import QtQuick
import Corvellan.Views

/// A personality that the buyer can have, one of several. It shows `isSelected` and nothing else.
PressRadio {
    id: root

    required property Theme theme
    required property string colorName
    /// The opacity of its colour.
    required property real strength
    readonly property color tint: Qt.alpha(theme.named[colorName], strength)

    // One stop for the Tab key: the choice that holds.
    focusPolicy: isSelected ? Qt.StrongFocus : Qt.ClickFocus
    implicitWidth: Math.ceil(widest.advanceWidth) + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight + topPadding + bottomPadding, theme.hitTarget)
    leftPadding: 12
    rightPadding: 12
    topPadding: 5
    bottomPadding: 5

    // Room for the bold letters, so that a choice does not move its neighbours.
    TextMetrics {
        id: widest

        text: root.text
        font.family: root.theme.textFamily
        font.pixelSize: 12
        font.weight: Font.Bold
    }

    contentItem: ReadOut {
        objectName: "chipLabel"
        theme: root.theme
        text: root.text
        size: 12
        font.weight: root.isSelected ? Font.Bold : Font.Normal
        color: root.isSelected ? root.tint : root.theme.gray
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    background: Box {
        objectName: "chip"
        radius: height / 2
        color: root.isSelected ? Qt.alpha(root.tint, root.tint.a * 0.3) : Qt.alpha(root.theme.gray, 0.06)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing

        Box {
            anchors.fill: parent
            radius: parent.radius
            color: Qt.alpha(root.theme.foreground, root.down ? 0.12 : root.hovered ? 0.06 : 0)
        }
    }
}

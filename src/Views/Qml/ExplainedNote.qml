import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A hint on a ground of its own colour.
Box {
    id: root

    required property Theme theme
    required property string symbol
    /// One of the theme's named colours.
    required property string colorName
    /// How strong the ground is.
    required property real strength
    required property string text

    Layout.fillWidth: true
    implicitHeight: line.implicitHeight + 20
    radius: 8
    color: Qt.alpha(theme.named[colorName], strength)

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 10

        IconLabel {
            Layout.alignment: Qt.AlignTop
            theme: root.theme
            symbol: root.symbol
            size: 13
            color: root.theme.named[root.colorName]
        }
        ReadOut {
            Layout.fillWidth: true
            theme: root.theme
            text: root.text
            size: 12
            lineHeight: 1.15
            wrapMode: Text.Wrap
        }
    }
}

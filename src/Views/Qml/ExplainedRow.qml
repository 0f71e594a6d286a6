import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One point of an explanation: a letter or a symbol, what it is called, and what it means.
Item {
    id: root

    required property Theme theme
    /// Letter or number; empty for a symbol.
    required property string letter
    required property string symbol
    /// One of the theme's named colours.
    required property string colorName
    required property string name
    required property string text
    property bool isCompact: false
    /// The symbol is a filled circle by itself.
    readonly property bool isRound: symbol.endsWith(".circle.fill")
    readonly property color tint: theme.named[colorName]

    Layout.fillWidth: true
    implicitHeight: line.implicitHeight + (isCompact ? 12 : 20)
    Accessible.role: Accessible.StaticText
    Accessible.name: letter.length > 0 ? qsTr("%1, %2: %3").arg(letter).arg(name).arg(text)
                                       : qsTr("%1: %2").arg(name).arg(text)

    Divider {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 54
        theme: root.theme
        // Only the first row of a group stands at its top.
        visible: root.y > 0
    }

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 12

        Box {
            Layout.alignment: Qt.AlignTop
            implicitWidth: 28
            implicitHeight: 28
            radius: 14
            color: Qt.alpha(root.tint, root.isRound ? 0 : 0.14)

            ReadOut {
                anchors.centerIn: parent
                objectName: "mark"
                theme: root.theme
                visible: text.length > 0
                text: root.letter
                size: 13
                font.weight: Font.Bold
                color: root.tint
                Accessible.ignored: true
            }
            IconLabel {
                anchors.centerIn: parent
                objectName: "symbol"
                theme: root.theme
                visible: root.symbol.length > 0
                symbol: root.symbol
                size: root.isRound ? 18 : 13
                color: root.tint
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: root.name
                size: 13
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: root.text
                size: 12
                lineHeight: root.isCompact ? 1 : 1.15
                color: root.theme.secondary
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
}

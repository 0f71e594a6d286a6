import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A titled group of rows.
ColumnLayout {
    id: root

    required property Theme theme
    /// Empty for a group that needs none.
    required property string title
    /// Behind the title; empty for none.
    property string value: ""
    property color valueColor: theme.foreground
    default property alias rows: column.data
    /// What stands at the right end of the title's line.
    property alias header: trailing.data

    spacing: 6

    RowLayout {
        Layout.leftMargin: 14
        Layout.rightMargin: 14
        Layout.fillWidth: true
        visible: root.title.length > 0
        spacing: 8

        ReadOut {
            Layout.fillWidth: true
            theme: root.theme
            text: root.title
            size: 12
            font.weight: Font.DemiBold
            color: root.theme.secondary
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        ReadOut {
            objectName: "sectionValue"
            theme: root.theme
            visible: text.length > 0
            text: root.value
            size: 14
            isMonospaced: true
            font.weight: Font.Bold
            color: root.valueColor
        }
        RowLayout {
            id: trailing

            visible: children.length > 0
            spacing: 8
        }
    }
    Box {
        Layout.fillWidth: true
        implicitHeight: column.implicitHeight
        radius: 10
        color: root.theme.cardBackground
        borderColor: root.theme.hairline

        ColumnLayout {
            id: column

            anchors.left: parent.left
            anchors.right: parent.right
            spacing: 0
        }
    }
}

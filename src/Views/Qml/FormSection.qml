import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A titled group of rows.
ColumnLayout {
    id: root

    required property Theme theme
    required property string title
    default property alias rows: column.data

    spacing: 6

    ReadOut {
        Layout.leftMargin: 14
        Layout.fillWidth: true
        theme: root.theme
        text: root.title
        size: 12
        font.weight: Font.DemiBold
        color: root.theme.secondary
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: column.implicitHeight
        radius: 10
        color: root.theme.cardBackground
        border.color: root.theme.hairline

        ColumnLayout {
            id: column

            anchors.left: parent.left
            anchors.right: parent.right
            spacing: 0
        }
    }
}

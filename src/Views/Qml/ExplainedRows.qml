pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A card of such rows. Each is a map with "letter", "symbol", "colorName", "name" and "text".
Box {
    id: root

    required property Theme theme
    required property var rows
    property bool isCompact: false

    Layout.fillWidth: true
    visible: rows.length > 0
    implicitHeight: column.implicitHeight
    radius: 10
    color: theme.cardBackground
    borderColor: theme.hairline

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 0

        Repeater {
            model: root.rows

            ExplainedRow {
                required property var modelData
                required property int index

                objectName: "row" + index
                theme: root.theme
                isCompact: root.isCompact
                letter: modelData.letter
                symbol: modelData.symbol
                colorName: modelData.colorName
                name: modelData.name
                text: modelData.text
            }
        }
    }
}

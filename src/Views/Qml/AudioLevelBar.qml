import QtQuick
import Corvellan.Views

/// How loud a side is, 0 to 1, as the share of a track that is filled.
Box {
    id: root

    required property Theme theme
    required property real level
    required property color fillColor

    implicitHeight: 4
    radius: 2
    color: Qt.alpha(theme.white, 0.1)

    Box {
        objectName: "fill"
        width: parent.width * Math.max(0, Math.min(1, root.level))
        height: parent.height
        radius: 2
        color: root.fillColor
    }
}

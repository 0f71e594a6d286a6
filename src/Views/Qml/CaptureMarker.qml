pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// The code that a picture of the screen is searched for. Meant for no person.
Grid {
    id: root

    required property StealthView stealth

    columns: root.stealth.markerColumns
    visible: cells.count > 0
    Accessible.ignored: true

    Repeater {
        id: cells

        model: root.stealth.markerColors

        Rectangle {
            required property color modelData

            width: root.stealth.markerCellSize
            height: root.stealth.markerCellSize
            color: modelData
        }
    }
}

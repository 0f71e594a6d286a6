import QtQuick
import Corvellan.Views

/// The stealth button, and beside it the warning when it doesn't hide the window.
Row {
    id: root

    required property StealthView stealth
    required property Theme theme
    property alias shownColor: button.shownColor
    property alias hiddenColor: button.hiddenColor
    property alias size: button.size
    property alias hasTipsAbove: button.hasTipsAbove
    /// For a window that is hardly higher than a tip.
    property alias isCompact: button.isCompact

    StealthButton {
        id: button

        objectName: "stealthButton"
        stealth: root.stealth
        theme: root.theme
    }
    StealthWarning {
        objectName: "stealthWarning"
        stealth: root.stealth
        theme: root.theme
        size: root.size
        hasTipsAbove: root.hasTipsAbove
        isCompact: root.isCompact
    }
}

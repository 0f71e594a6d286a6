import QtQuick
import Corvellan.Views

/// The ground of a row of the sidebar, lit while it is the one that is on.
Box {
    id: root

    required property Theme theme
    required property bool isSelected
    required property bool isDown
    required property bool isHovered
    required property bool hasRing
    property color accent: theme.accent

    radius: 6
    color: root.isSelected ? Qt.alpha(root.accent, root.isDown ? 0.2 : root.isHovered ? 0.15 : 0.1)
                           : Qt.alpha(root.theme.foreground, root.isDown ? 0.12 : root.isHovered ? 0.06 : 0)
    borderWidth: root.hasRing ? 2 : 0
    borderColor: root.theme.focusRing
}

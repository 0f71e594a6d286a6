import QtQuick
import Corvellan.Views

/// A symbol to press on the dark panel of a call. Its text is for screen readers and, with the reason to press
/// it, for a pointer that rests here.
PressButton {
    id: root

    required property Theme theme
    required property string symbol
    property real size: 13
    property color color: Qt.alpha(theme.white, 0.4)
    property string tip: text
    property bool hasTipsAbove: false
    /// For a window that is hardly higher than a tip.
    property bool isCompact: false

    implicitWidth: theme.hitTarget
    implicitHeight: theme.hitTarget

    contentItem: IconLabel {
        theme: root.theme
        symbol: root.symbol
        size: root.size
        color: root.hovered || root.visualFocus ? Qt.alpha(root.color, Math.min(1, root.color.a + 0.3)) : root.color
        horizontalAlignment: Text.AlignHCenter
    }

    background: Box {
        radius: 5
        color: Qt.alpha(root.theme.white, root.down ? 0.14 : root.hovered ? 0.08 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    Tip {
        theme: root.theme
        text: root.tip
        isAbove: root.hasTipsAbove
        margins: root.isCompact ? 1 : 6
        topPadding: root.isCompact ? 2 : 6
        bottomPadding: topPadding
        visible: (root.hovered || root.visualFocus) && !root.down
    }
}

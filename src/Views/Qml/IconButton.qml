import QtQuick
import Corvellan.Views

/// A button that shows a symbol alone; its text is for screen readers.
PressButton {
    id: root

    required property Theme theme
    required property string symbol
    /// Shown under a pointer that rests here.
    property string tip: text

    implicitWidth: 34
    implicitHeight: 34

    contentItem: IconLabel {
        theme: root.theme
        symbol: root.symbol
        size: 16
        color: root.hovered || root.visualFocus ? root.theme.foreground : root.theme.secondary
        horizontalAlignment: Text.AlignHCenter
    }

    background: Box {
        radius: 7
        color: Qt.alpha(root.theme.foreground, root.down ? 0.14 : root.hovered ? 0.08 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    Tip {
        // At the window's edge it keeps its distance by itself.
        parent: root
        theme: root.theme
        text: root.tip
        visible: root.hovered && !root.down
    }
}

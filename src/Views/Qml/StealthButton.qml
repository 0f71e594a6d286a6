import QtQuick
import Corvellan.Views

/// Hides the window from screen sharing, or shows it again. Hovered or focused it says whether that works here.
PressButton {
    id: root

    required property StealthView stealth
    required property Theme theme
    /// Of the eye while the window is shown in captures, and while stealth is on.
    property color shownColor: theme.cyan
    property color hiddenColor: Qt.alpha(theme.white, 0.25)
    property real size: 13
    property bool hasTipsAbove: false
    /// Where the window is hardly higher than a tip.
    property bool isCompact: false

    implicitWidth: theme.hitTarget
    implicitHeight: theme.hitTarget
    checkable: false
    Accessible.name: qsTr("Stealth")
    Accessible.description: root.stealth.controlTip
    Accessible.checkable: true
    Accessible.checked: root.stealth.isStealthOn
    onClicked: root.stealth.toggle()

    contentItem: IconLabel {
        theme: root.theme
        symbol: root.stealth.controlSymbol
        size: root.size
        color: root.stealth.isStealthOn ? root.hiddenColor : root.shownColor
        horizontalAlignment: Text.AlignHCenter
    }

    background: Box {
        radius: 5
        color: Qt.alpha(root.theme.white, root.down ? 0.14 : root.hovered ? 0.08 : 0)
        borderWidth: root.visualFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    Tip {
        objectName: "stealthTip"
        theme: root.theme
        text: root.stealth.controlTip
        isAbove: root.hasTipsAbove
        widest: root.isCompact && root.Window.window ? root.Window.window.width - 2 * margins : 360
        margins: root.isCompact ? 1 : 6
        topPadding: root.isCompact ? 2 : 6
        bottomPadding: topPadding
        visible: root.hovered || root.visualFocus
    }
}

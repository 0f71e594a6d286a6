import QtQuick
import Corvellan.Views

/// Stands where stealth is on and the window is not confirmed hidden; hovered or focused it says why.
Item {
    id: root

    required property StealthView stealth
    required property Theme theme
    property real size: 13
    property bool hasTipsAbove: false
    /// Where the window is hardly higher than a tip.
    property bool isCompact: false

    visible: root.stealth.hasWarning
    implicitWidth: 20
    implicitHeight: theme.hitTarget
    activeFocusOnTab: true

    Accessible.role: Accessible.Notification
    Accessible.name: root.stealth.warningText
    Accessible.ignored: !root.visible
    Accessible.focusable: true

    Box {
        anchors.centerIn: parent
        width: 20
        height: 22
        radius: 5
        color: "transparent"
        borderWidth: root.activeFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    IconLabel {
        anchors.centerIn: parent
        theme: root.theme
        symbol: "exclamationmark.triangle.fill"
        size: root.size
        color: root.theme.orange
    }

    HoverHandler {
        id: pointer
    }

    Tip {
        objectName: "stealthWarningTip"
        theme: root.theme
        text: root.stealth.warningText
        isAbove: root.hasTipsAbove
        widest: root.isCompact && root.Window.window ? root.Window.window.width - 2 * margins : 360
        margins: root.isCompact ? 1 : 6
        topPadding: root.isCompact ? 2 : 6
        bottomPadding: topPadding
        visible: root.visible && (pointer.hovered || root.activeFocus)
    }

    AccessibleAlert {
        objectName: "stealthAlert"
        target: root
        text: root.stealth.alertText
    }
}

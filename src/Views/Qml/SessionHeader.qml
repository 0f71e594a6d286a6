import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Stealth, letters and layout at the left; what the call is about; its time and its end at the right.
RowLayout {
    id: root

    required property ViewStates views
    readonly property Theme theme: views.callTheme
    readonly property Item layoutButton: layout

    spacing: 2

    Item {
        implicitWidth: 4
    }
    StealthControl {
        objectName: "stealthControl"
        stealth: root.views.stealth
        theme: root.theme
    }
    PanelButton {
        objectName: "fontButton"
        theme: root.theme
        symbol: root.views.live.fontScaleIcon
        text: qsTr("Text size")
        tip: qsTr("Text size: %1 times").arg(root.views.live.fontScale)
        Accessible.description: tip
        onClicked: root.views.live.cycleFontScale()
    }
    PanelButton {
        id: layout

        objectName: "layoutButton"
        theme: root.theme
        symbol: root.views.live.sessionTabIcon
        text: qsTr("Layout")
        tip: qsTr("Layout: %1, next: %2 (Ctrl+L)").arg(root.views.live.sessionTab).arg(root.views.live.nextSessionTab)
        Accessible.description: tip
        onClicked: root.views.live.cycleSessionTab()
    }
    ReadOut {
        Layout.leftMargin: 6
        Layout.fillWidth: true
        objectName: "company"
        theme: root.theme
        text: root.views.overlay.companyName
        size: 11
        font.weight: Font.Medium
        color: Qt.alpha(root.theme.white, 0.7)
        elide: Text.ElideRight
    }
    PanelButton {
        objectName: "handoffButton"
        theme: root.theme
        visible: root.views.overlay.hasHandoff
        symbol: "doc.text"
        text: qsTr("Open AE Handoff")
        color: Qt.alpha(root.theme.orange, 0.8)
        onClicked: root.views.live.openHandoff()
    }
    ReadOut {
        Layout.leftMargin: 4
        Layout.rightMargin: 4
        objectName: "timer"
        theme: root.theme
        text: root.views.live.timerText
        size: 12
        isMonospaced: true
        font.weight: Font.Medium
        color: Qt.alpha(root.theme.white, 0.5)
        Accessible.name: qsTr("Time: %1").arg(text)
    }
    PanelButton {
        objectName: "stopButton"
        theme: root.theme
        symbol: "stop.fill"
        size: 10
        text: qsTr("Stop")
        tip: qsTr("End the session")
        color: Qt.alpha(root.theme.red, 0.7)
        onClicked: root.views.overlay.endSession()
    }
    Item {
        implicitWidth: 4
    }
}

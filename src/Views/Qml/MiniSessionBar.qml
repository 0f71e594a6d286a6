import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The session in one line.
RowLayout {
    id: root

    required property ViewStates views
    readonly property Theme theme: views.callTheme
    readonly property LiveSessionView live: views.live
    readonly property CoachingOverlayView overlay: views.overlay
    readonly property Item layoutButton: expand

    spacing: 6

    PanelButton {
        id: expand

        Layout.leftMargin: 4
        objectName: "expandButton"
        theme: root.theme
        isCompact: true
        symbol: "chevron.up.chevron.down"
        text: qsTr("Expand")
        tip: qsTr("Expand (Ctrl+L)")
        onClicked: root.live.cycleSessionTab()
    }
    ReadOut {
        objectName: "miniScore"
        theme: root.theme
        visible: root.overlay.showsMeddic
        text: root.overlay.scoreText
        size: 10
        font.weight: Font.Bold
        color: root.overlay.scoreColor
        Accessible.name: qsTr("MEDDIC score %1").arg(text)
    }
    Box {
        objectName: "miniDisc"
        visible: root.live.discLetter.length > 0
        implicitWidth: 16
        implicitHeight: 16
        radius: 8
        color: Qt.alpha(root.overlay.buyerColor, 0.35)
        borderColor: root.overlay.buyerColor

        ReadOut {
            anchors.centerIn: parent
            objectName: "miniDiscLetter"
            theme: root.theme
            text: root.live.discLetter
            size: 9
            font.weight: Font.Bold
            Accessible.name: qsTr("Buyer: %1").arg(root.overlay.buyerLabel)
        }
    }
    Text {
        objectName: "miniMood"
        text: root.overlay.moodEmoji
        font.family: root.theme.emojiFamily
        font.pixelSize: 14
        textFormat: Text.PlainText
        Accessible.role: Accessible.StaticText
        Accessible.name: qsTr("Mood: %1").arg(root.overlay.moodLabel)
    }
    ReadOut {
        id: message

        Layout.fillWidth: true
        objectName: "miniMessage"
        theme: root.theme
        text: root.overlay.message
        size: root.overlay.hasMessage ? 11 : 10
        font.weight: root.overlay.hasMessage ? Font.Medium : Font.Normal
        color: Qt.alpha(root.theme.white, root.overlay.hasMessage ? 1 : 0.5)
        elide: Text.ElideRight
        maximumLineCount: 1
        Accessible.role: Accessible.Notification
    }
    AccessibleAlert {
        objectName: "miniTipAlert"
        target: message
        isSilent: !root.visible
        text: root.overlay.hasMessage ? root.overlay.message : ""
    }
    ReadOut {
        objectName: "miniTimer"
        theme: root.theme
        text: root.live.timerText
        size: 10
        isMonospaced: true
        color: Qt.alpha(root.theme.white, 0.5)
        Accessible.name: qsTr("Time: %1").arg(text)
    }
    StealthControl {
        objectName: "miniStealth"
        stealth: root.views.stealth
        theme: root.theme
        shownColor: Qt.alpha(root.theme.cyan, 0.6)
        hiddenColor: Qt.alpha(root.theme.white, 0.2)
        isCompact: true
    }
    PanelButton {
        Layout.rightMargin: 4
        objectName: "miniStop"
        theme: root.theme
        isCompact: true
        symbol: "stop.fill"
        size: 9
        text: qsTr("Stop")
        tip: qsTr("End the session")
        color: Qt.alpha(root.theme.red, 0.6)
        onClicked: root.overlay.endSession()
    }
}

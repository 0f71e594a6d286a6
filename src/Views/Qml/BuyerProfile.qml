import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Who the buyer is, and how the buyer feels.
RowLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme
    readonly property real fs: overlay.fs

    spacing: 12

    ColumnLayout {
        Layout.alignment: Qt.AlignTop
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        spacing: 0

        ReadOut {
            theme: root.theme
            text: "DISC"
            size: 9 * root.fs
            color: Qt.alpha(root.theme.white, 0.4)
            Accessible.ignored: true
        }
        RowLayout {
            Layout.preferredHeight: mood.implicitHeight
            spacing: 5

            ReadOut {
                objectName: "discLabel"
                theme: root.theme
                text: root.overlay.buyerLabel
                size: 11 * root.fs
                font.weight: Font.Medium
                color: root.overlay.buyerColor
                Accessible.name: qsTr("DISC: %1 %2").arg(root.overlay.buyerLabel).arg(root.overlay.buyerConfidence)
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "discConfidence"
                theme: root.theme
                text: root.overlay.buyerConfidence
                size: 9 * root.fs
                color: Qt.alpha(root.theme.white, 0.3)
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }

    ColumnLayout {
        Layout.alignment: Qt.AlignTop
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        spacing: 0

        ReadOut {
            theme: root.theme
            text: "Mood"
            size: 9 * root.fs
            color: Qt.alpha(root.theme.white, 0.4)
            Accessible.ignored: true
        }
        RowLayout {
            id: mood

            spacing: 6

            Text {
                objectName: "moodEmoji"
                text: root.overlay.moodEmoji
                textFormat: Text.PlainText
                font.family: root.theme.emojiFamily
                font.pixelSize: Math.round(18 * root.fs)
                // The font's own line is taller than its pictures.
                Layout.preferredHeight: font.pixelSize
                verticalAlignment: Text.AlignVCenter
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "moodLabel"
                theme: root.theme
                text: root.overlay.moodLabel
                size: 10 * root.fs
                color: root.overlay.moodColor
                elide: Text.ElideRight
                Accessible.name: qsTr("Mood: %1").arg(root.overlay.moodLabel)
            }
        }
    }
}

pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// Mode, stage strip and, at the right, the score; the score goes below where that is too wide.
Item {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme
    readonly property int gap: 10
    readonly property bool isOneLine: place.width + gap + score.width <= width

    implicitHeight: isOneLine || !score.visible ? place.height : place.height + 6 + score.height

    Row {
        id: place

        spacing: root.gap

        Box {
            width: mode.implicitWidth + 12
            height: mode.implicitHeight + 4
            radius: 4
            color: Qt.alpha(root.overlay.modeColor, 0.2)

            ReadOut {
                id: mode

                anchors.centerIn: parent
                objectName: "modeBadge"
                theme: root.theme
                text: root.overlay.modeLabel
                size: 9 * root.overlay.fs
                font.weight: Font.DemiBold
                color: root.overlay.modeColor
                Accessible.name: qsTr("Mode: %1").arg(root.overlay.modeLabel)
            }
        }

        Row {
            anchors.verticalCenter: parent.verticalCenter
            objectName: "stageProgressBar"
            spacing: 3
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTr("Stage: %1").arg(root.overlay.stageName)

            Repeater {
                model: root.overlay.stages

                Box {
                    id: cell

                    required property string label
                    required property color textColor
                    required property color background
                    required property bool isCurrent

                    width: 25
                    height: 16
                    radius: 3
                    color: background

                    ReadOut {
                        anchors.centerIn: parent
                        theme: root.theme
                        text: cell.label
                        size: 8
                        isMonospaced: true
                        font.bold: cell.isCurrent
                        color: cell.textColor
                        Accessible.ignored: true
                    }
                }
            }
        }
    }

    Row {
        id: score

        x: root.isOneLine ? root.width - width : 0
        y: root.isOneLine ? (place.height - height) / 2 : place.height + 6
        objectName: "score"
        visible: root.overlay.showsMeddic
        spacing: 7

        ReadOut {
            objectName: "scoreText"
            theme: root.theme
            text: root.overlay.scoreText
            size: 10 * root.overlay.fs
            font.weight: Font.Bold
            color: root.overlay.scoreColor
            Accessible.name: qsTr("MEDDIC score %1").arg(root.overlay.scoreText)
        }
        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            Repeater {
                model: root.overlay.scoreBars

                Box {
                    required property color barColor

                    width: 8
                    height: 6
                    radius: 2
                    color: barColor
                }
            }
        }
    }
}

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The six criteria, with what the customer said about each.
ColumnLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme

    spacing: 0

    Repeater {
        model: root.overlay.checklist

        Box {
            id: row

            required property int index
            required property string mark
            required property color markColor
            required property string label
            required property color labelColor
            required property string evidence
            required property bool isHighlighted
            required property string spoken

            Layout.fillWidth: true
            objectName: "criterion" + index
            implicitHeight: name.implicitHeight
            radius: 4
            color: Qt.alpha(root.theme.green, isHighlighted ? 0.2 : 0)

            property real inset: isHighlighted ? 4 : 0

            Accessible.role: Accessible.ListItem
            Accessible.name: spoken

            Behavior on color {
                objectName: "lighting"

                ColorAnimation {
                    duration: 400
                    easing.type: Easing.InOutQuad
                }
            }
            Behavior on inset {
                objectName: "insetting"

                NumberAnimation {
                    duration: 400
                    easing.type: Easing.InOutQuad
                }
            }

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: row.inset
                anchors.rightMargin: row.inset
                spacing: 6

                ReadOut {
                    Layout.preferredWidth: Math.round(10 * root.overlay.fs)
                    theme: root.theme
                    text: row.mark
                    size: 9 * root.overlay.fs
                    isMonospaced: true
                    font.bold: true
                    color: row.markColor
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.ignored: true
                }
                ReadOut {
                    id: name

                    theme: root.theme
                    text: row.label
                    size: 10 * root.overlay.fs
                    font.bold: row.isHighlighted
                    color: row.labelColor
                    Accessible.ignored: true
                }
                ReadOut {
                    id: quote

                    Layout.fillWidth: true
                    objectName: "evidence" + row.index
                    theme: root.theme
                    text: row.evidence
                    size: 9 * root.overlay.fs
                    color: Qt.alpha(root.theme.white, 0.4)
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    Accessible.ignored: true

                    HoverHandler {
                        id: pointer

                        enabled: quote.truncated
                    }
                    Tip {
                        parent: quote
                        theme: root.theme
                        text: row.evidence
                        visible: pointer.hovered && quote.truncated
                    }
                }
            }
        }
    }
}

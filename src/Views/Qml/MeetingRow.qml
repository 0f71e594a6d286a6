import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One of the next meetings; a press starts its call.
RowButton {
    id: root

    required property string summary
    required property string timeRange

    text: summary
    opacity: enabled ? 1 : 0.5
    Accessible.description: qsTr("%1. Starts the call").arg(root.timeRange)

    contentItem: RowLayout {
        spacing: 10

        IconLabel {
            theme: root.theme
            symbol: "waveform"
            size: 15
            color: root.theme.green
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1

            ReadOut {
                Layout.fillWidth: true
                objectName: "meetingSummary"
                theme: root.theme
                text: root.summary
                size: 13
                font.weight: Font.Medium
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "meetingTime"
                theme: root.theme
                text: root.timeRange
                size: 11
                color: root.theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}

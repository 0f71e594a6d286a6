import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The newest session; a press leads to the history.
RowButton {
    id: root

    required property LastSession session

    text: session.title
    Accessible.description: session.spoken

    contentItem: RowLayout {
        spacing: 12

        ReadOut {
            objectName: "lastScore"
            theme: root.theme
            visible: text.length > 0
            text: root.session.score
            size: 15
            isMonospaced: true
            font.weight: Font.Bold
            color: Qt.alpha(root.theme.named[root.session.scoreColor], root.session.scoreOpacity)
            Accessible.ignored: true
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            RowLayout {
                spacing: 8

                ReadOut {
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth
                    objectName: "lastTitle"
                    theme: root.theme
                    text: root.session.title
                    size: 13
                    font.weight: Font.Medium
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                Pill {
                    objectName: "trainBadge"
                    visible: root.session.wasTraining
                    theme: root.theme
                    text: qsTr("TRAIN")
                    tint: root.theme.orange
                    textColor: root.theme.orange
                    strength: 0.15
                    isCode: true
                }
                Item {
                    Layout.fillWidth: true
                }
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "lastCaption"
                theme: root.theme
                text: root.session.caption
                size: 11
                color: root.theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        IconLabel {
            theme: root.theme
            symbol: "chevron.right"
            size: 14
            color: root.theme.secondary
        }
    }
}

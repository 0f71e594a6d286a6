import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One session of the history.
PressRow {
    id: root

    required property Theme theme
    required property int index
    required property string title
    required property string titleColor
    required property string score
    required property string scoreColor
    required property real scoreOpacity
    required property string symbol
    required property bool isTraining
    required property string badge
    required property string badgeColor
    required property string duration
    required property string turns
    required property string spoken
    /// The keyboard is on it.
    property bool isCurrent: false

    implicitHeight: Math.max(implicitContentHeight + 16, 52)
    leftPadding: 14
    rightPadding: 10
    focusPolicy: Qt.NoFocus
    text: spoken

    contentItem: RowLayout {
        spacing: 12

        Item {
            Layout.preferredWidth: 34
            implicitHeight: 20

            ReadOut {
                anchors.centerIn: parent
                objectName: "score"
                theme: root.theme
                text: root.score
                size: 14
                isMonospaced: true
                font.weight: Font.Bold
                color: Qt.alpha(root.theme.named[root.scoreColor], root.scoreOpacity)
                Accessible.ignored: true
            }
            IconLabel {
                anchors.centerIn: parent
                objectName: "symbol"
                theme: root.theme
                symbol: root.symbol
                size: 15
                color: root.theme.orange
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            RowLayout {
                Layout.fillWidth: true
                visible: root.title.length > 0 || root.isTraining || root.badge.length > 0
                spacing: 6

                ReadOut {
                    Layout.fillWidth: true
                    Layout.maximumWidth: Math.ceil(implicitWidth)
                    objectName: "rowTitle"
                    theme: root.theme
                    visible: text.length > 0
                    text: root.title
                    size: 13
                    font.weight: root.titleColor.length > 0 ? Font.Normal : Font.Medium
                    color: root.theme.named[root.titleColor]
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    Accessible.ignored: true
                }
                TagBadge {
                    objectName: "trainBadge"
                    theme: root.theme
                    visible: root.isTraining
                    text: qsTr("TRAIN")
                    colorName: "orange"
                    isMonospaced: true
                    Accessible.ignored: true
                }
                TagBadge {
                    objectName: "audienceBadge"
                    theme: root.theme
                    text: root.badge
                    colorName: root.badgeColor
                    Accessible.ignored: true
                }
                Item {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 0
                }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 10

                ReadOut {
                    objectName: "duration"
                    theme: root.theme
                    text: root.duration
                    size: 11
                    color: root.theme.secondary
                    Accessible.ignored: true
                }
                ReadOut {
                    Layout.fillWidth: true
                    objectName: "turns"
                    theme: root.theme
                    text: root.turns
                    size: 11
                    color: root.theme.secondary
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
            }
        }
        IconLabel {
            theme: root.theme
            symbol: "chevron.right"
            size: 13
            color: root.theme.secondary
        }
    }

    background: Box {
        radius: 8
        color: Qt.tint(root.theme.cardBackground,
                       Qt.alpha(root.theme.foreground, root.down ? 0.14 : root.hovered ? 0.06 : 0))
        borderWidth: root.isCurrent ? 2 : 1
        borderColor: root.isCurrent ? root.theme.focusRing : root.theme.hairline
    }
}

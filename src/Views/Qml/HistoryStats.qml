pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The filters of the history, and what the sessions behind them come to.
FormSection {
    id: root

    required property SessionHistoryView history

    title: qsTr("Your Stats")

    FormRow {
        theme: root.theme
        label: qsTr("Type")
        isLabelSpoken: false

        SegmentedPicker {
            Layout.fillWidth: true
            objectName: "filterMode"
            theme: root.theme
            label: qsTr("Type")
            choices: root.history.filterModes
            selected: root.history.filterModeIndex
            onChosen: index => root.history.filterModeIndex = index
        }
    }
    FormRow {
        theme: root.theme
        label: qsTr("Period")
        isLabelSpoken: false

        SegmentedPicker {
            Layout.fillWidth: true
            objectName: "timeRange"
            theme: root.theme
            label: qsTr("Period")
            choices: root.history.timeRanges
            selected: root.history.timeRangeIndex
            onChosen: index => root.history.timeRangeIndex = index
        }
    }
    FormRow {
        objectName: "noMatch"
        theme: root.theme
        visible: root.history.noMatchText.length > 0
        caption: root.history.noMatchText
    }
    Item {
        Layout.fillWidth: true
        objectName: "statCards"
        visible: root.history.noMatchText.length === 0
        implicitHeight: cards.implicitHeight + 24

        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 14
            theme: root.theme
        }
        RowLayout {
            id: cards

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.margins: 10
            spacing: 8

            Repeater {
                model: root.history.statCards

                StatCard {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.alignment: Qt.AlignTop
                    objectName: "statCard" + index
                    required property int index
                    theme: root.theme
                }
            }
        }
    }
    Item {
        Layout.fillWidth: true
        objectName: "criterionRates"
        visible: root.history.noMatchText.length === 0
        implicitHeight: rates.implicitHeight + 20

        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 14
            theme: root.theme
        }
        RowLayout {
            id: rates

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.margins: 10
            spacing: 4

            Repeater {
                model: root.history.criterionRates

                ColumnLayout {
                    id: column

                    required property int index
                    required property string letter
                    required property bool isHigh
                    required property string rate
                    required property string spoken

                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    objectName: "criterionRate" + index
                    spacing: 1
                    Accessible.role: Accessible.StaticText
                    Accessible.name: spoken

                    ReadOut {
                        Layout.fillWidth: true
                        objectName: "letter"
                        theme: root.theme
                        text: column.letter
                        size: 12
                        isMonospaced: true
                        font.weight: Font.Bold
                        color: column.isHigh ? root.theme.green : Qt.alpha(root.theme.gray, 0.5)
                        horizontalAlignment: Text.AlignHCenter
                        Accessible.ignored: true
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        objectName: "rate"
                        theme: root.theme
                        text: column.rate
                        size: 11
                        color: root.theme.secondary
                        horizontalAlignment: Text.AlignHCenter
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The note that hands the company over, with what can be done with it.
FoldGroup {
    id: root

    required property HomeView home
    /// Of the results.
    required property int row
    readonly property CompanyDossier dossier: home.dossier

    label: qsTr("AE Handoff")
    symbol: "doc.text"
    color: theme.orange
    isUnfolded: dossier.homeHandoffExpanded
    onToggled: home.toggleHandoff(row)

    WaitLine {
        Layout.fillWidth: true
        objectName: "handoffWait"
        visible: root.dossier.isLoadingHomeHandoff
        theme: root.theme
        text: qsTr("Generating handoff...")
    }
    ColumnLayout {
        Layout.fillWidth: true
        visible: root.dossier.hasHandoff
        spacing: 8

        FlowLayout {
            Layout.fillWidth: true
            visible: root.dossier.handoffStatistics.length > 0
            spacing: 14

            Repeater {
                model: root.dossier.handoffStatistics

                RowLayout {
                    id: statistic

                    required property var modelData

                    spacing: 5

                    IconLabel {
                        theme: root.theme
                        symbol: statistic.modelData.symbol
                        size: 11
                        color: root.theme.secondary
                    }
                    ReadOut {
                        theme: root.theme
                        text: statistic.modelData.text
                        size: 11
                        color: root.theme.secondary
                    }
                }
            }
        }
        MarkdownText {
            Layout.fillWidth: true
            objectName: "handoffNote"
            theme: root.theme
            text: root.dossier.handoffNote
            onLinkActivated: address => root.dossier.openNoteLink(address)
        }
        RowLayout {
            spacing: 8

            FormButton {
                objectName: "copyHandoff"
                theme: root.theme
                text: qsTr("Copy")
                symbol: "doc.on.doc"
                onClicked: root.dossier.copyHandoff()
            }
            FormButton {
                objectName: "openHandoff"
                theme: root.theme
                text: qsTr("Open Window")
                symbol: "arrow.up.forward.square"
                onClicked: root.dossier.openHandoffWindow()
            }
        }
    }
    ProblemText {
        Layout.fillWidth: true
        objectName: "handoffProblem"
        theme: root.theme
        text: root.dossier.handoffProblem
    }
    FormButton {
        objectName: "loadHandoff"
        visible: !root.dossier.hasHandoff && !root.dossier.isLoadingHomeHandoff
        theme: root.theme
        text: qsTr("Load Handoff")
        onClicked: root.home.loadHandoffOf(root.row)
    }
}

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What is known of the unfolded company, and the button that starts the call.
ColumnLayout {
    id: root

    required property HomeView home
    required property Theme theme
    /// Of the results.
    required property int row

    spacing: 12

    WaitLine {
        Layout.fillWidth: true
        objectName: "briefWait"
        visible: root.home.isLoadingBrief
        theme: root.theme
        text: qsTr("Loading brief...")
    }

    ColumnLayout {
        Layout.fillWidth: true
        objectName: "brief"
        visible: root.home.hasBrief
        spacing: 12

        ReadOut {
            Layout.fillWidth: true
            objectName: "briefRemark"
            visible: text.length > 0
            theme: root.theme
            text: root.home.briefRemark
            size: 12
            color: root.theme.secondary
            wrapMode: Text.Wrap
        }
        FlowLayout {
            Layout.fillWidth: true
            visible: root.home.revenueFacts.length > 0
            spacing: 24

            Repeater {
                model: root.home.revenueFacts

                ColumnLayout {
                    id: fact

                    required property var modelData

                    spacing: 1

                    BriefTitle {
                        theme: root.theme
                        text: fact.modelData.label
                        Accessible.ignored: true
                    }
                    ReadOut {
                        theme: root.theme
                        text: fact.modelData.value
                        size: 15
                        isMonospaced: true
                        font.weight: Font.DemiBold
                        Accessible.name: fact.modelData.label + ": " + fact.modelData.value
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            visible: root.home.products.length > 0
            spacing: 4

            BriefTitle {
                theme: root.theme
                text: qsTr("Products")
            }
            Repeater {
                model: root.home.products

                RowLayout {
                    id: product

                    required property var modelData

                    Layout.fillWidth: true
                    spacing: 8

                    ReadOut {
                        Layout.fillWidth: true
                        theme: root.theme
                        text: product.modelData.name
                        size: 13
                        wrapMode: Text.Wrap
                    }
                    ReadOut {
                        theme: root.theme
                        text: product.modelData.value
                        size: 11
                        isMonospaced: true
                        color: root.theme.gray
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            visible: root.home.contacts.length > 0
            spacing: 4

            BriefTitle {
                theme: root.theme
                text: qsTr("Contacts")
            }
            Repeater {
                model: root.home.contacts

                ColumnLayout {
                    id: contact

                    required property var modelData

                    Layout.fillWidth: true
                    spacing: 0

                    ReadOut {
                        Layout.fillWidth: true
                        visible: text.length > 0
                        theme: root.theme
                        text: contact.modelData.name
                        size: 13
                        wrapMode: Text.Wrap
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        visible: text.length > 0
                        theme: root.theme
                        text: contact.modelData.detail
                        size: 11
                        color: root.theme.secondary
                        wrapMode: Text.Wrap
                    }
                }
            }
        }
        FoldGroup {
            id: notes

            Layout.fillWidth: true
            objectName: "notes"
            visible: root.home.notesTitle.length > 0
            theme: root.theme
            label: root.home.notesTitle
            symbol: "note.text"
            onToggled: isUnfolded = !isUnfolded

            FoldList {
                id: noteList

                Layout.fillWidth: true
                objectName: "noteList"
                theme: root.theme
                model: root.home.notes
                Accessible.name: root.home.notesTitle

                delegate: ColumnLayout {
                    id: note

                    required property string body
                    required property string caption

                    width: noteList.width - 12
                    spacing: 2

                    ReadOut {
                        Layout.fillWidth: true
                        theme: root.theme
                        text: note.body
                        size: 12
                        lineHeight: 1.1
                        color: root.theme.secondary
                        wrapMode: Text.Wrap
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        visible: text.length > 0
                        theme: root.theme
                        text: note.caption
                        size: 11
                        color: root.theme.gray
                        elide: Text.ElideRight
                    }
                }
            }
        }
        RowLayout {
            visible: root.home.hasCrmLink || root.home.hasHubspotLink
            spacing: 8

            BriefLink {
                objectName: "crmLink"
                visible: root.home.hasCrmLink
                theme: root.theme
                text: qsTr("CRM")
                onClicked: root.home.openCrm()
            }
            BriefLink {
                objectName: "hubspotLink"
                visible: root.home.hasHubspotLink
                theme: root.theme
                text: qsTr("HubSpot")
                onClicked: root.home.openHubspot()
            }
        }
        HandoffSection {
            Layout.fillWidth: true
            objectName: "handoff"
            home: root.home
            theme: root.theme
            row: root.row
        }
        TimelineSection {
            Layout.fillWidth: true
            objectName: "timeline"
            home: root.home
            theme: root.theme
            row: root.row
        }
    }

    ProblemText {
        Layout.fillWidth: true
        objectName: "briefProblem"
        theme: root.theme
        text: root.home.briefProblem
    }

    ProminentButton {
        Layout.topMargin: 2
        objectName: "startCoaching"
        theme: root.theme
        text: qsTr("Start Coaching")
        symbol: "waveform"
        enabled: root.home.canStart
        onClicked: root.home.startCallWithCompany(root.row)
    }
}

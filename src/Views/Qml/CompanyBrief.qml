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
    readonly property CompanyDossier dossier: home.dossier

    spacing: 12

    WaitLine {
        Layout.fillWidth: true
        objectName: "briefWait"
        visible: root.dossier.isLoadingBrief
        theme: root.theme
        text: qsTr("Loading brief...")
    }

    ColumnLayout {
        Layout.fillWidth: true
        objectName: "brief"
        visible: root.dossier.hasBrief
        spacing: 12

        ReadOut {
            Layout.fillWidth: true
            objectName: "briefRemark"
            visible: text.length > 0
            theme: root.theme
            text: root.dossier.briefRemark
            size: 12
            color: root.theme.secondary
            wrapMode: Text.Wrap
        }
        FlowLayout {
            Layout.fillWidth: true
            visible: root.dossier.revenueFacts.length > 0
            spacing: 24

            Repeater {
                model: root.dossier.revenueFacts

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
            visible: root.dossier.products.length > 0
            spacing: 4

            BriefTitle {
                theme: root.theme
                text: qsTr("Products")
            }
            FoldList {
                id: productList

                Layout.fillWidth: true
                objectName: "productList"
                theme: root.theme
                spacing: 4
                model: root.dossier.products
                Accessible.name: qsTr("Products")

                delegate: RowLayout {
                    id: product

                    required property var modelData

                    width: productList.width - 12
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
            visible: root.dossier.contacts.length > 0
            spacing: 4

            BriefTitle {
                theme: root.theme
                text: qsTr("Contacts")
            }
            FoldList {
                id: contactList

                Layout.fillWidth: true
                objectName: "contactList"
                theme: root.theme
                spacing: 4
                model: root.dossier.contacts
                Accessible.name: qsTr("Contacts")

                delegate: ColumnLayout {
                    id: contact

                    required property var modelData

                    width: contactList.width - 12
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
            visible: root.dossier.notesTitle.length > 0
            theme: root.theme
            label: root.dossier.notesTitle
            symbol: "note.text"
            onToggled: isUnfolded = !isUnfolded

            FoldList {
                id: noteList

                Layout.fillWidth: true
                objectName: "noteList"
                theme: root.theme
                model: root.dossier.notes
                Accessible.name: root.dossier.notesTitle

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
            visible: root.dossier.hasCrmLink || root.dossier.hasHubspotLink
            spacing: 8

            BriefLink {
                objectName: "crmLink"
                visible: root.dossier.hasCrmLink
                theme: root.theme
                text: qsTr("CRM")
                onClicked: root.dossier.openCrm()
            }
            BriefLink {
                objectName: "hubspotLink"
                visible: root.dossier.hasHubspotLink
                theme: root.theme
                text: qsTr("HubSpot")
                onClicked: root.dossier.openHubspot()
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
        text: root.dossier.briefProblem
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

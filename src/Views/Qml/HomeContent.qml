pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The home screen of somebody who is signed in.
FocusScope {
    id: root

    required property HomeView home
    required property Theme theme

    focus: true
    // The page scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    Keys.onEscapePressed: event => {
        event.accepted = root.home.canClearSearch;
        if (event.accepted)
            search.clear();
    }

    ScrollArea {
        id: area

        anchors.fill: parent
        objectName: "homeArea"
        theme: root.theme
        focusMargin: 24
        Accessible.name: qsTr("Home")

        Item {
            width: parent ? parent.width : 0
            height: form.implicitHeight + 40

            ColumnLayout {
                id: form

                anchors.horizontalCenter: parent.horizontalCenter
                y: 20
                width: Math.min(parent.width - 40, 620)
                spacing: 20

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    ReadOut {
                        Layout.fillWidth: true
                        Layout.leftMargin: 2
                        objectName: "homeTitle"
                        theme: root.theme
                        text: root.home.productName
                        size: 20
                        font.weight: Font.DemiBold
                        Accessible.role: Accessible.Heading
                    }
                    SearchField {
                        id: search

                        Layout.fillWidth: true
                        objectName: "searchField"
                        onResultsWanted: {
                            if (results.count > 0)
                                (results.itemAt(0) as CompanyResultRow).head.forceActiveFocus(Qt.TabFocusReason);
                        }
                        home: root.home
                        theme: root.theme
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        Layout.leftMargin: 14
                        Layout.rightMargin: 14
                        objectName: "searchHint"
                        visible: root.home.showsSearchHint
                        theme: root.theme
                        text: qsTr("Search CRM & HubSpot to get company context before your call.")
                        size: 11
                        color: root.theme.secondary
                        wrapMode: Text.Wrap
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "resultsSection"
                    visible: root.home.hasResults
                    theme: root.theme
                    title: qsTr("Results")

                    Repeater {
                        id: results

                        model: root.home.results

                        CompanyResultRow {
                            Layout.fillWidth: true
                            objectName: "result" + index
                            home: root.home
                            theme: root.theme
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "prepSection"
                    theme: root.theme
                    title: qsTr("Call Prep")
                    header: ReadOut {
                        objectName: "notesCounter"
                        theme: root.theme
                        text: root.home.callPrep.notesCounter
                        size: 11
                        isMonospaced: true
                        color: root.theme.named[root.home.callPrep.notesCounterColor]
                        Accessible.name: qsTr("%1 characters").arg(root.home.callPrep.notesCounter)
                    }

                    ColumnLayout {
                        Layout.fillWidth: true
                        Layout.margins: 14
                        spacing: 12

                        FlowLayout {
                            Layout.fillWidth: true
                            objectName: "goals"
                            spacing: 8

                            Repeater {
                                model: root.home.callPrep.goals

                                GoalChip {
                                    required property int index
                                    required property string label

                                    objectName: "goal" + index
                                    theme: root.theme
                                    text: label
                                    onClicked: root.home.callPrep.toggleGoal(index)
                                }
                            }
                        }
                        NotesField {
                            Layout.fillWidth: true
                            prep: root.home.callPrep
                            theme: root.theme
                        }
                    }
                }

                ProminentButton {
                    Layout.alignment: Qt.AlignHCenter
                    objectName: "startWithoutCompany"
                    theme: root.theme
                    text: qsTr("Start Coaching")
                    symbol: "waveform"
                    enabled: root.home.canStart
                    onClicked: root.home.startCallWithoutCompany()
                }

                Box {
                    Layout.fillWidth: true
                    objectName: "errorSection"
                    visible: root.home.errorMessage.length > 0
                    implicitHeight: problem.implicitHeight + 20
                    radius: 10
                    color: Qt.alpha(root.theme.red, 0.12)
                    borderColor: Qt.alpha(root.theme.red, 0.35)

                    ProblemLine {
                        id: problem

                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        anchors.margins: 14
                        theme: root.theme
                        text: root.home.errorMessage
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "upcomingSection"
                    visible: root.home.hasMeetings
                    theme: root.theme
                    title: qsTr("Upcoming")

                    Repeater {
                        model: root.home.meetings

                        MeetingRow {
                            required property int index

                            Layout.fillWidth: true
                            objectName: "meeting" + index
                            theme: root.theme
                            enabled: root.home.canStart
                            onClicked: root.home.startMeeting(index)
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "lastSessionSection"
                    visible: root.home.lastSession.isThere
                    theme: root.theme
                    title: qsTr("Last Session")

                    LastSessionCard {
                        Layout.fillWidth: true
                        objectName: "lastSession"
                        session: root.home.lastSession
                        theme: root.theme
                        onClicked: root.home.openHistory()
                    }
                }
            }
        }
    }
}

// Unbound: a view of Qt 6.4 makes no header of a bound component. What follows from that is on purpose.
// qmllint disable unqualified
import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The summary of one finished session.
FocusScope {
    id: root

    required property SessionRecordDetailView detail
    required property Theme theme

    focus: true
    Keys.onEscapePressed: root.detail.back()
    Keys.onPressed: event => event.accepted = list.scrollByKey(event.key)

    HistoryList {
        id: list

        readonly property real column: Math.min(width - 40, 620)
        readonly property real margin: Math.round((width - column) / 2)

        anchors.fill: parent
        objectName: "summaryForm"
        focus: true
        theme: root.theme
        model: root.detail.transcript
        keyNavigationEnabled: false
        currentIndex: -1
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Session summary")

        header: Item {
            width: list.width
            height: form.implicitHeight + 32

            ColumnLayout {
                id: form

                x: list.margin
                y: 14
                width: list.column
                spacing: 18

                SummaryHeader {
                    Layout.fillWidth: true
                    detail: root.detail
                    theme: root.theme
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "feedback"
                    theme: root.theme
                    visible: root.detail.showsFeedback
                    title: root.detail.feedbackTitle

                    FormRow {
                        objectName: "ratingRow"
                        theme: root.theme
                        visible: root.detail.canRate
                        contentShare: 1

                        FormButton {
                            objectName: "helpful"
                            theme: root.theme
                            text: qsTr("Helpful")
                            symbol: "hand.thumbsup"
                            color: root.theme.green
                            onClicked: root.detail.rateHelpful()
                        }
                        FormButton {
                            objectName: "notHelpful"
                            theme: root.theme
                            text: qsTr("Not helpful")
                            symbol: "hand.thumbsdown"
                            color: root.theme.orange
                            onClicked: root.detail.rateNotHelpful()
                        }
                        Item {
                            Layout.fillWidth: true
                        }
                    }
                    FormRow {
                        theme: root.theme
                        visible: root.detail.canRate
                        contentShare: 1

                        FormTextArea {
                            objectName: "feedbackNote"
                            theme: root.theme
                            label: qsTr("Note")
                            placeholderText: qsTr("Optional note...")
                            text: root.detail.feedbackNote
                            onTextChanged: root.detail.feedbackNote = text
                        }
                    }
                    FormRow {
                        theme: root.theme
                        visible: !root.detail.canRate
                        contentShare: 1

                        Verdict {
                            objectName: "result"
                            theme: root.theme
                            symbol: root.detail.resultSymbol
                            word: root.detail.resultWord
                            colorName: root.detail.resultColor
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "meddic"
                    theme: root.theme
                    visible: root.detail.showsMeddic
                    title: qsTr("MEDDIC Score")
                    value: root.detail.scoreText
                    valueColor: Qt.alpha(root.theme.named[root.detail.scoreColor], root.detail.scoreOpacity)

                    Repeater {
                        model: root.detail.criteria

                        CriterionRow {
                            objectName: "criterion" + index
                            theme: root.theme
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "facts"
                    theme: root.theme
                    title: qsTr("Session")

                    FormRow {
                        theme: root.theme
                        label: qsTr("Duration")

                        FormText {
                            objectName: "duration"
                            theme: root.theme
                            text: root.detail.durationText
                        }
                    }
                    FormRow {
                        theme: root.theme
                        label: qsTr("Turns")

                        FormText {
                            objectName: "turns"
                            theme: root.theme
                            text: root.detail.turnsText
                        }
                    }
                    FormRow {
                        theme: root.theme
                        label: qsTr("DISC")

                        FormText {
                            objectName: "disc"
                            theme: root.theme
                            text: root.detail.discText
                        }
                    }
                    FormRow {
                        theme: root.theme
                        label: qsTr("Date")

                        FormText {
                            objectName: "date"
                            theme: root.theme
                            text: root.detail.dateText
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "keyPoints"
                    theme: root.theme
                    visible: root.detail.coachingPoints.length > 0
                    title: qsTr("Key Points")

                    Repeater {
                        model: root.detail.coachingPoints

                        FormRow {
                            id: point

                            required property string modelData

                            theme: root.theme
                            contentShare: 1

                            IconLabel {
                                Layout.alignment: Qt.AlignTop
                                theme: root.theme
                                symbol: "lightbulb"
                                size: 14
                                color: root.theme.cyan
                            }
                            ReadOut {
                                Layout.fillWidth: true
                                theme: root.theme
                                text: point.modelData
                                size: 13
                                wrapMode: Text.Wrap
                            }
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "storedFeedback"
                    theme: root.theme
                    visible: root.detail.showsStoredFeedback
                    title: qsTr("Feedback")

                    FormRow {
                        theme: root.theme
                        contentShare: 1

                        Verdict {
                            objectName: "storedResult"
                            theme: root.theme
                            symbol: root.detail.storedSymbol
                            word: root.detail.storedWord
                            colorName: root.detail.storedColor
                        }
                    }
                }

                ReadOut {
                    Layout.fillWidth: true
                    Layout.leftMargin: 14
                    objectName: "transcriptTitle"
                    theme: root.theme
                    visible: root.detail.hasTranscript
                    text: qsTr("Transcript")
                    size: 12
                    font.weight: Font.DemiBold
                    color: root.theme.secondary
                    Accessible.role: Accessible.Heading
                }
            }
        }
        footer: Item {
            width: list.width
            height: 20
        }
        delegate: StoredLine {
            x: list.margin
            width: list.column
            theme: root.theme
        }
    }
}

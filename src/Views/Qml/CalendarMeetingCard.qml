pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A meeting of the calendar: its head, and when unfolded who is invited and what company it is with.
Item {
    id: root

    required property CalendarView calendar
    required property Theme theme
    required property int index
    required property string summary
    required property string timeRange
    required property bool isExpanded
    required property string chevron
    required property var attendees
    required property string moreAttendees
    required property string companyName
    required property string companyCountry
    required property string companyRevenue
    readonly property int chevronWidth: 14

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    // What is about to fold may have the keyboard.
    Keys.onEscapePressed: event => {
        event.accepted = isExpanded;
        if (!isExpanded)
            return;
        head.forceActiveFocus(Qt.TabFocusReason);
        calendar.foldMeeting();
    }

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 0

        Item {
            Layout.fillWidth: true
            implicitHeight: head.implicitHeight

            RowButton {
                id: head

                anchors.fill: parent
                objectName: "meetingHead" + root.index
                theme: root.theme
                hasDivider: root.index > 0
                text: root.summary
                Accessible.description: qsTr("%1, %2").arg(root.isExpanded ? qsTr("Unfolded") : qsTr("Folded"))
                                                      .arg(root.timeRange)
                onClicked: root.calendar.toggleMeeting(root.index)

                contentItem: RowLayout {
                    spacing: 10

                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 2

                        ReadOut {
                            Layout.fillWidth: true
                            objectName: "summary"
                            theme: root.theme
                            text: root.summary
                            size: 14
                            font.weight: Font.Medium
                            wrapMode: root.isExpanded ? Text.Wrap : Text.NoWrap
                            elide: Text.ElideRight
                            Accessible.ignored: true
                        }
                        ReadOut {
                            Layout.fillWidth: true
                            objectName: "timeRange"
                            theme: root.theme
                            text: root.timeRange
                            size: 11
                            color: root.theme.secondary
                            elide: Text.ElideRight
                            Accessible.ignored: true
                        }
                    }
                    // The place of the button that lies above: within it, it could not be reached by itself.
                    Item {
                        visible: !root.isExpanded
                        implicitWidth: quickCall.width
                    }
                    IconLabel {
                        Layout.preferredWidth: root.chevronWidth
                        objectName: "chevron"
                        theme: root.theme
                        symbol: root.chevron
                        size: 14
                        color: root.theme.secondary
                    }
                }
            }
            IconButton {
                id: quickCall

                anchors.right: parent.right
                anchors.rightMargin: head.rightPadding + root.chevronWidth + 10
                anchors.verticalCenter: parent.verticalCenter
                objectName: "quickCall" + root.index
                visible: !root.isExpanded
                theme: root.theme
                symbol: "phone.fill"
                text: qsTr("Start call: %1").arg(root.summary)
                tip: qsTr("Start Call")
                enabled: root.calendar.canStart
                opacity: enabled ? 1 : 0.45
                onClicked: root.calendar.startCall(root.index)
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 14
            Layout.rightMargin: 14
            Layout.bottomMargin: 14
            visible: root.isExpanded
            spacing: 12

            ColumnLayout {
                Layout.fillWidth: true
                visible: root.attendees.length > 0
                spacing: 6

                Repeater {
                    model: root.attendees

                    ColumnLayout {
                        id: attendee

                        required property var modelData

                        Layout.fillWidth: true
                        spacing: 0

                        ReadOut {
                            Layout.fillWidth: true
                            objectName: "attendeeName"
                            theme: root.theme
                            text: attendee.modelData.name
                            size: 13
                            elide: Text.ElideRight
                        }
                        ReadOut {
                            Layout.fillWidth: true
                            theme: root.theme
                            text: attendee.modelData.email
                            size: 11
                            color: root.theme.secondary
                            elide: Text.ElideRight
                        }
                    }
                }
                ReadOut {
                    objectName: "moreAttendees" + root.index
                    visible: text.length > 0
                    theme: root.theme
                    text: root.moreAttendees
                    size: 11
                    color: root.theme.secondary
                }
            }
            RowLayout {
                Layout.fillWidth: true
                visible: root.companyName.length > 0
                spacing: 8

                ReadOut {
                    Layout.alignment: Qt.AlignTop
                    theme: root.theme
                    text: qsTr("Company")
                    size: 13
                    color: root.theme.secondary
                }
                FlowLayout {
                    Layout.fillWidth: true
                    spacing: 5

                    ReadOut {
                        objectName: "companyName"
                        theme: root.theme
                        text: root.companyName
                        size: 13
                        color: root.theme.cyan
                    }
                    ReadOut {
                        objectName: "companyCountry"
                        visible: text.length > 0
                        theme: root.theme
                        text: root.companyCountry
                        size: 13
                        color: root.theme.secondary
                    }
                    ReadOut {
                        objectName: "companyRevenue"
                        visible: text.length > 0
                        theme: root.theme
                        text: root.companyRevenue
                        size: 13
                        color: root.theme.green
                    }
                }
            }
            ProminentButton {
                objectName: "startCall" + root.index
                theme: root.theme
                text: qsTr("Start Call")
                symbol: "phone.fill"
                color: root.theme.accent
                enabled: root.calendar.canStart
                onClicked: root.calendar.startCall(root.index)
            }
        }
    }
}

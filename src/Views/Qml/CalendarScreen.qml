pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The upcoming meetings, each of which can become a coached call.
TabScreen {
    id: root

    required property CalendarView calendar
    required property Theme theme

    // The page scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    // From wherever on the screen the keyboard is.
    Keys.onEscapePressed: event => event.accepted = root.calendar.foldMeeting()
    onAppeared: root.calendar.appear()

    ScrollArea {
        id: area

        anchors.fill: parent
        objectName: "calendarArea"
        theme: root.theme
        focusMargin: 24
        visible: !emptyState.visible
        Accessible.name: qsTr("Calendar")

        Item {
            width: parent ? parent.width : 0
            height: form.implicitHeight + 40

            ColumnLayout {
                id: form

                anchors.horizontalCenter: parent.horizontalCenter
                y: 20
                width: Math.min(parent.width - 40, 620)
                spacing: 20

                Box {
                    Layout.fillWidth: true
                    objectName: "calendarProblem"
                    visible: root.calendar.calendarError.length > 0
                    implicitHeight: Math.max(words.height, retry.height) + 28
                    radius: 10
                    color: root.theme.cardBackground
                    borderColor: root.theme.hairline

                    // No layouts: one that holds wrapped text and a button settles only in a third round, and Qt
                    // gives up after two.
                    IconLabel {
                        id: sign

                        x: 14
                        y: 14
                        theme: root.theme
                        symbol: "exclamationmark.triangle.fill"
                        size: 18
                        color: root.theme.orange
                    }
                    Column {
                        id: words

                        anchors.left: sign.right
                        anchors.right: retry.left
                        anchors.verticalCenter: parent.verticalCenter
                        anchors.margins: 12
                        spacing: 3

                        ReadOut {
                            width: parent.width
                            theme: root.theme
                            text: qsTr("Calendar unavailable")
                            size: 14
                            font.weight: Font.DemiBold
                            wrapMode: Text.Wrap
                            Accessible.role: Accessible.Heading
                        }
                        ReadOut {
                            id: problem

                            width: parent.width
                            objectName: "calendarError"
                            theme: root.theme
                            text: root.calendar.calendarError
                            size: 12
                            color: root.theme.secondary
                            wrapMode: Text.Wrap
                            Accessible.role: Accessible.Notification
                        }
                    }
                    FormButton {
                        id: retry

                        anchors.right: parent.right
                        anchors.rightMargin: 14
                        anchors.verticalCenter: parent.verticalCenter
                        objectName: "retry"
                        theme: root.theme
                        text: qsTr("Retry")
                        onClicked: root.calendar.refresh()
                    }
                    AccessibleAlert {
                        target: problem
                        text: root.calendar.calendarError
                    }
                }

                WaitLine {
                    Layout.fillWidth: true
                    Layout.leftMargin: 14
                    objectName: "calendarWait"
                    visible: root.calendar.showsLoading
                    theme: root.theme
                    text: qsTr("Loading calendar...")
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "meetingsSection"
                    visible: root.calendar.showsMeetings
                    theme: root.theme
                    title: qsTr("Upcoming Meetings")
                    header: IconButton {
                        objectName: "refresh"
                        theme: root.theme
                        symbol: "arrow.clockwise"
                        text: qsTr("Refresh")
                        implicitWidth: root.theme.hitTarget
                        implicitHeight: root.theme.hitTarget
                        focus: root.calendar.showsMeetings
                        onClicked: root.calendar.refresh()
                    }

                    Repeater {
                        model: root.calendar.meetings

                        CalendarMeetingCard {
                            Layout.fillWidth: true
                            objectName: "card" + index
                            calendar: root.calendar
                            theme: root.theme
                        }
                    }
                }
            }
        }
    }

    ColumnLayout {
        id: emptyState

        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 420)
        objectName: "calendarEmptyState"
        visible: root.calendar.showsEmptyState
        spacing: 0

        IconLabel {
            Layout.alignment: Qt.AlignHCenter
            theme: root.theme
            symbol: "calendar"
            size: 36
            color: root.theme.cyan
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.topMargin: 12
            theme: root.theme
            text: qsTr("No upcoming meetings")
            size: 17
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.topMargin: 6
            theme: root.theme
            text: qsTr("Your Google Calendar meetings will appear here.")
            size: 13
            color: root.theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        FormButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 18
            objectName: "emptyRefresh"
            theme: root.theme
            text: qsTr("Refresh")
            symbol: "arrow.clockwise"
            // Out of sight it would hold the keyboard, and Tab would lead nowhere.
            focus: emptyState.visible
            onClicked: root.calendar.refresh()
        }
    }
}

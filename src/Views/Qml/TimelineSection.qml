pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What has happened with the company lately.
FoldGroup {
    id: root

    required property HomeView home
    /// Of the results.
    required property int row
    readonly property CompanyDossier dossier: home.dossier

    label: qsTr("Engagement")
    badge: dossier.eventCountText
    isUnfolded: dossier.homeTimelineExpanded
    onToggled: home.toggleTimeline(row)

    WaitLine {
        Layout.fillWidth: true
        objectName: "timelineWait"
        visible: root.dossier.isLoadingHomeTimeline
        theme: root.theme
        text: qsTr("Loading timeline...")
    }
    FoldList {
        id: list

        Layout.fillWidth: true
        objectName: "eventList"
        visible: root.dossier.hasEvents
        theme: root.theme
        model: root.dossier.events
        Accessible.name: qsTr("Engagement")

        delegate: RowLayout {
            id: event

            required property string symbol
            required property string colorName
            required property string title
            required property string detail
            required property string date

            width: list.width - 12
            spacing: 10

            IconLabel {
                Layout.alignment: Qt.AlignTop
                theme: root.theme
                symbol: event.symbol
                size: 12
                color: root.theme.named[event.colorName]
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 1

                ReadOut {
                    Layout.fillWidth: true
                    theme: root.theme
                    text: event.title
                    size: 12
                    wrapMode: Text.Wrap
                }
                ReadOut {
                    Layout.fillWidth: true
                    visible: text.length > 0
                    theme: root.theme
                    text: event.detail
                    size: 11
                    color: root.theme.secondary
                    wrapMode: Text.Wrap
                }
            }
            ReadOut {
                Layout.alignment: Qt.AlignTop
                theme: root.theme
                text: event.date
                size: 11
                color: root.theme.gray
            }
        }
    }
    ProblemText {
        Layout.fillWidth: true
        objectName: "timelineProblem"
        theme: root.theme
        text: root.dossier.timelineProblem
    }
    ReadOut {
        objectName: "noEvents"
        visible: !root.dossier.hasEvents && !root.dossier.isLoadingHomeTimeline
        theme: root.theme
        text: qsTr("No recent activity")
        size: 12
        color: root.theme.secondary
    }
}

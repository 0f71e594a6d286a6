pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The content of the window with a company's handoff note. Dark whatever the desktop is, since the note's
/// colours are made for that.
Box {
    id: root

    required property HandoffWindowView handoff
    required property Theme theme

    readonly property real leastZoom: 0.5
    readonly property real greatestZoom: 3

    function zoomBy(factor: real) {
        note.zoom = Math.max(leastZoom, Math.min(note.zoom * factor, greatestZoom));
    }

    color: theme.windowBackground

    Shortcut {
        sequences: ["Ctrl+W", "Esc"]
        onActivated: root.handoff.close()
    }
    Shortcut {
        sequences: ["Ctrl++", "Ctrl+="]
        onActivated: root.zoomBy(1.2)
    }
    Shortcut {
        sequence: "Ctrl+-"
        onActivated: root.zoomBy(1 / 1.2)
    }
    Shortcut {
        sequence: "Ctrl+0"
        onActivated: note.zoom = 1
    }
    Shortcut {
        sequence: "Ctrl+C"
        enabled: note.page.selectedText.length > 0
        onActivated: note.page.copy()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 10
            Layout.leftMargin: 16
            spacing: 8

            IconLabel {
                theme: root.theme
                symbol: "doc.text"
                size: 14
                color: root.theme.orange
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "title"
                theme: root.theme
                text: qsTr("AE Handoff")
                size: 14
                font.weight: Font.DemiBold
                color: root.theme.orange
                elide: Text.ElideRight
                maximumLineCount: 1
                Accessible.role: Accessible.Heading
            }
            FormButton {
                objectName: "hubSpot"
                theme: root.theme
                visible: root.handoff.hasCompanyPage
                text: qsTr("HubSpot")
                symbol: "link"
                onClicked: root.handoff.openCompanyPage()
                Accessible.description: qsTr("Opens the company's page in the browser")
            }
            FormButton {
                objectName: "copy"
                theme: root.theme
                text: qsTr("Copy")
                symbol: "doc.on.doc"
                onClicked: root.handoff.copyNote()
                Accessible.description: qsTr("Copies the whole note")
            }
            IconButton {
                objectName: "close"
                theme: root.theme
                visible: root.handoff.canClose
                text: qsTr("Close")
                symbol: "xmark.circle.fill"
                onClicked: root.handoff.close()
            }
        }

        Row {
            Layout.fillWidth: true
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            Layout.bottomMargin: 10
            objectName: "statistics"
            visible: root.handoff.hasStatistics
            spacing: 16

            Repeater {
                model: root.handoff.statistics

                Statistic {
                    required symbol
                    required text
                    required property int index

                    objectName: "statistic" + index
                    theme: root.theme
                }
            }
        }

        ReadOut {
            id: notice

            Layout.fillWidth: true
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            Layout.bottomMargin: 10
            objectName: "notice"
            theme: root.theme
            visible: text.length > 0
            text: root.handoff.notice
            size: 11
            color: root.theme.errorText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Notification

            AccessibleAlert {
                target: notice
                text: root.handoff.notice
            }
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        MarkdownPage {
            id: note

            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "note"
            theme: root.theme
            markdown: root.handoff.handoffNote
            onLinkActivated: address => root.handoff.openLink(address)
            Component.onCompleted: page.forceActiveFocus()

            ReadOut {
                anchors.centerIn: parent
                width: Math.min(implicitWidth, parent.width - 32)
                objectName: "emptyNote"
                theme: root.theme
                visible: root.handoff.handoffNote.trim().length === 0
                text: qsTr("The note is empty.")
                size: 13
                color: root.theme.secondary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
        }

        CutNotice {
            Layout.fillWidth: true
            Layout.preferredHeight: takenHeight
            theme: root.theme
            isCut: note.page.isCut
        }
    }
}

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Whose session it was, and what can be done with it.
ColumnLayout {
    id: root

    required property SessionRecordDetailView detail
    required property Theme theme
    property bool isSharing: false

    spacing: 10

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        PressButton {
            id: backButton

            objectName: "back"
            focus: true
            text: qsTr("Back")
            implicitWidth: implicitContentWidth + 16
            implicitHeight: Math.max(implicitContentHeight + 10, root.theme.hitTarget)
            leftPadding: 6
            rightPadding: 10
            onClicked: root.detail.back()

            contentItem: RowLayout {
                spacing: 3

                IconLabel {
                    theme: root.theme
                    symbol: "chevron.left"
                    size: 15
                    color: root.theme.cyan
                }
                ReadOut {
                    theme: root.theme
                    text: backButton.text
                    size: 13
                    color: root.theme.cyan
                    Accessible.ignored: true
                }
            }
            background: Box {
                radius: 6
                color: Qt.alpha(root.theme.foreground, backButton.down ? 0.14 : backButton.hovered ? 0.08 : 0)
                borderWidth: backButton.visualFocus ? 2 : 0
                borderColor: root.theme.focusRing
            }
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.maximumWidth: Math.ceil(implicitWidth)
            objectName: "company"
            theme: root.theme
            visible: text.length > 0
            text: root.detail.companyName
            size: 15
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            maximumLineCount: 1
            Accessible.role: Accessible.Heading
        }
        TagBadge {
            objectName: "trainBadge"
            theme: root.theme
            visible: root.detail.isTraining
            text: qsTr("TRAIN")
            colorName: "orange"
            isMonospaced: true
        }
        TagBadge {
            objectName: "audienceBadge"
            theme: root.theme
            text: root.detail.badge
            colorName: root.detail.badgeColor
        }
        Item {
            Layout.fillWidth: true
            Layout.preferredWidth: 0
        }
        PressButton {
            id: done

            objectName: "done"
            visible: root.detail.isFresh
            text: qsTr("Done")
            implicitWidth: implicitContentWidth + 32
            implicitHeight: Math.max(implicitContentHeight + 12, 32)
            onClicked: root.detail.back()

            contentItem: ReadOut {
                theme: root.theme
                text: done.text
                size: 13
                font.weight: Font.DemiBold
                color: root.theme.prominentText
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                Accessible.ignored: true
            }
            background: Box {
                radius: 7
                color: done.down ? Qt.darker(root.theme.cyan, 1.2)
                     : done.hovered ? Qt.lighter(root.theme.cyan, 1.12) : root.theme.cyan

                Box {
                    anchors.fill: parent
                    anchors.margins: -3
                    radius: 10
                    color: "transparent"
                    borderWidth: 2
                    borderColor: root.theme.focusRing
                    visible: done.visualFocus
                }
            }
        }
    }

    Flow {
        Layout.fillWidth: true
        spacing: 8

        FormButton {
            objectName: "copyTranscript"
            theme: root.theme
            text: qsTr("Copy Transcript")
            symbol: "doc.on.doc"
            onClicked: root.detail.copyTranscript()
        }
        FormButton {
            objectName: "copySummary"
            theme: root.theme
            text: qsTr("Copy Summary")
            symbol: "square.and.arrow.up"
            onClicked: root.detail.copySessionSummary()
        }
        FormButton {
            objectName: "share"
            theme: root.theme
            text: qsTr("Share")
            symbol: "square.and.arrow.up.on.square"
            Accessible.description: root.isSharing ? qsTr("Folds the ways to share") : qsTr("Unfolds the ways to share")
            onClicked: root.isSharing = !root.isSharing
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        objectName: "shareWays"
        visible: root.isSharing
        spacing: 6

        ReadOut {
            Layout.fillWidth: true
            theme: root.theme
            text: qsTr("There is no share menu on this desktop. Send the report by mail, or save it and attach it wherever you like.")
            size: 11
            color: root.theme.secondary
            wrapMode: Text.Wrap
        }
        Flow {
            Layout.fillWidth: true
            spacing: 8

            FormButton {
                objectName: "shareByMail"
                theme: root.theme
                text: qsTr("New Mail")
                symbol: "envelope"
                onClicked: root.detail.shareByMail()
            }
            FormButton {
                objectName: "shareAsFile"
                theme: root.theme
                text: qsTr("Save to Documents")
                symbol: "doc.text"
                onClicked: root.detail.shareAsFile()
            }
        }
    }

    ReadOut {
        id: notice

        Layout.fillWidth: true
        objectName: "shareNotice"
        theme: root.theme
        visible: text.length > 0
        text: root.detail.notice
        size: 12
        color: root.theme.secondary
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        Accessible.role: Accessible.Notification
    }
    AccessibleAlert {
        target: notice
        text: root.detail.notice
    }
}

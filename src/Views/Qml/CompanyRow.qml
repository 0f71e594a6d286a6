import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The company of the call. Opens the handoff notes, or folds the brief below it.
ColumnLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme
    readonly property Item button: press

    spacing: 1

    Divider {
        Layout.fillWidth: true
        theme: root.theme
    }

    PlainButton {
        id: press

        Layout.fillWidth: true
        objectName: "companyRow"
        theme: root.theme
        text: root.overlay.companyName
        enabled: root.overlay.isCompanyRowActive
        leftPadding: 4
        rightPadding: 4
        onClicked: root.overlay.pressCompanyRow()

        Accessible.description: root.overlay.hasHandoff ? qsTr("Opens the handoff notes")
                              : root.overlay.isBriefShown ? qsTr("Folds the brief")
                              : root.overlay.isCompanyRowActive ? qsTr("Unfolds the brief") : ""

        contentItem: Item {
            implicitHeight: 16

            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: 6

                IconLabel {
                    anchors.verticalCenter: parent.verticalCenter
                    theme: root.theme
                    symbol: root.overlay.companySymbol
                    size: 9
                    color: root.overlay.companySymbolColor
                }
                ReadOut {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, press.availableWidth - 80)
                    objectName: "companyName"
                    theme: root.theme
                    text: root.overlay.companyName
                    size: 10
                    color: Qt.alpha(root.theme.white, press.hovered && press.enabled ? 0.9 : 0.7)
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    Accessible.ignored: true
                }
                ReadOut {
                    anchors.verticalCenter: parent.verticalCenter
                    objectName: "handoffCaption"
                    theme: root.theme
                    visible: root.overlay.hasHandoff
                    text: qsTr("Brief")
                    size: 8
                    color: Qt.alpha(root.theme.orange, 0.5)
                    Accessible.ignored: true
                }
            }
            IconLabel {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                objectName: "chevron"
                theme: root.theme
                visible: symbol.length > 0
                symbol: root.overlay.chevronSymbol
                size: 8
                color: Qt.alpha(root.theme.white, 0.3)
            }
        }
    }

    Item {
        id: fold

        Layout.fillWidth: true
        objectName: "brief"
        implicitHeight: unfolded
        // A handoff note takes the brief's place at once, without its folding being watched.
        visible: unfolded > 0 && !root.overlay.hasHandoff
        clip: true

        property real unfolded: root.overlay.isBriefShown ? brief.implicitHeight + 12 : 0

        Behavior on unfolded {
            NumberAnimation {
                duration: 200
                easing.type: Easing.InOutQuad
            }
        }

        Box {
            width: fold.width
            height: brief.implicitHeight + 12
            radius: 5
            color: Qt.alpha(root.theme.white, 0.05)

            ReadOut {
                id: brief

                x: 8
                y: 6
                width: parent.width - 16
                theme: root.theme
                text: root.overlay.briefText
                size: 9
                lineHeight: 1.25
                color: Qt.alpha(root.theme.white, 0.65)
                wrapMode: Text.Wrap
                Accessible.ignored: !root.overlay.isBriefShown
            }
        }
    }
}

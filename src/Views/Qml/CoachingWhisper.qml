import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What the coach says now.
ColumnLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme

    spacing: 3

    Item {
        Layout.fillWidth: true
        implicitHeight: 18

        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            visible: root.overlay.tipLabel.length > 0

            Box {
                width: chip.implicitWidth + 12
                height: 16
                radius: 4
                color: root.overlay.tipBackground

                ReadOut {
                    id: chip

                    anchors.centerIn: parent
                    objectName: "tipLabel"
                    theme: root.theme
                    text: root.overlay.tipLabel
                    size: 9
                    isMonospaced: true
                    font.weight: Font.DemiBold
                    color: root.overlay.tipColor
                }
            }
            ReadOut {
                anchors.verticalCenter: parent.verticalCenter
                objectName: "urgency"
                theme: root.theme
                text: "!!!"
                visible: root.overlay.isUrgent
                size: 10
                font.weight: Font.Bold
                color: root.theme.red
                Accessible.name: qsTr("Urgent")
            }
        }
    }

    ReadOut {
        id: message

        Layout.fillWidth: true
        objectName: "message"
        theme: root.theme
        text: root.overlay.message
        size: (root.overlay.hasMessage ? 14 : 12) * root.overlay.fs
        font.weight: root.overlay.hasMessage ? Font.Medium : Font.Normal
        color: root.overlay.hasMessage ? root.theme.white : Qt.alpha(root.theme.white, 0.3)
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Notification
    }

    AccessibleAlert {
        objectName: "tipAlert"
        target: message
        isSilent: !root.visible
        text: root.overlay.hasMessage ? root.overlay.message : ""
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 5
        visible: root.overlay.productHint.length > 0

        IconLabel {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: Math.max(0, (hint.font.pixelSize * 1.2 - implicitHeight) / 2)
            theme: root.theme
            symbol: "shippingbox.fill"
            size: 9
            color: Qt.alpha(root.theme.cyan, 0.7)
        }
        ReadOut {
            id: hint

            Layout.fillWidth: true
            objectName: "productHint"
            theme: root.theme
            text: root.overlay.productHint
            size: 10 * root.overlay.fs
            color: Qt.alpha(root.theme.cyan, 0.8)
            wrapMode: Text.Wrap
        }
    }
}

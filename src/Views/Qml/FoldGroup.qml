import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A group that folds out below its label. It shows `isUnfolded`; whoever owns that changes it when asked to.
ColumnLayout {
    id: root

    required property Theme theme
    required property string label
    property string symbol: ""
    property color color: theme.foreground
    /// A number behind the label; empty for none.
    property string badge: ""
    property bool isUnfolded: false
    readonly property Item head: press
    default property alias content: body.data

    signal toggled

    spacing: 4

    PressButton {
        id: press

        Layout.fillWidth: true
        Layout.leftMargin: -8
        Layout.rightMargin: -8
        objectName: "foldHead"
        text: root.badge.length > 0 ? qsTr("%1, %2").arg(root.label).arg(root.badge) : root.label
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        implicitHeight: Math.max(root.theme.hitTarget, implicitContentHeight)
        leftPadding: 8
        rightPadding: 8
        Accessible.description: root.isUnfolded ? qsTr("Unfolded") : qsTr("Folded")
        onClicked: root.toggled()

        contentItem: RowLayout {
            spacing: 6

            IconLabel {
                theme: root.theme
                symbol: root.isUnfolded ? "chevron.down" : "chevron.right"
                size: 12
                color: root.theme.secondary
            }
            IconLabel {
                theme: root.theme
                visible: root.symbol.length > 0
                symbol: root.symbol
                size: 12
                color: root.color
            }
            ReadOut {
                theme: root.theme
                text: root.label
                size: 13
                font.weight: Font.Medium
                color: root.color
                Accessible.ignored: true
            }
            Pill {
                objectName: "badge"
                visible: root.badge.length > 0
                theme: root.theme
                text: root.badge
            }
            Item {
                Layout.fillWidth: true
            }
        }

        background: Box {
            radius: 6
            color: Qt.alpha(root.theme.foreground, press.down ? 0.1 : press.hovered ? 0.05 : 0)
            borderWidth: press.visualFocus ? 2 : 0
            borderColor: root.theme.focusRing
        }
    }
    ColumnLayout {
        id: body

        Layout.fillWidth: true
        Layout.leftMargin: 20
        Layout.bottomMargin: 6
        visible: root.isUnfolded
        spacing: 8
    }
}

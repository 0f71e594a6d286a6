import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One row of a form: what it is about on the left, a line below that explains it, the value or the
/// controls on the right.
Item {
    id: root

    required property Theme theme
    property string label: ""
    /// One of the theme's named colours.
    property string labelColorName: ""
    property string caption: ""
    /// One more line, for what the user should know at present.
    property string notice: ""
    /// One of the theme's named colours; empty for the quiet one of captions.
    property string noticeColorName: ""
    /// The control in the row says its label itself.
    property bool isLabelSpoken: true
    /// The widest that the right side may get, as a share of the row.
    property real contentShare: 0.64
    default property alias content: trailing.data

    Layout.fillWidth: true
    implicitHeight: Math.max(44, line.implicitHeight + 20)

    Divider {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 14
        theme: root.theme
        // Only the first row of a group stands at its top.
        visible: root.y > 0
    }

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 14

        ColumnLayout {
            Layout.fillWidth: true
            visible: root.label.length > 0 || root.caption.length > 0
            spacing: 2

            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                visible: text.length > 0
                text: root.label
                size: 13
                color: root.theme.named[root.labelColorName]
                wrapMode: Text.Wrap
                Accessible.ignored: !root.isLabelSpoken || text.length === 0
            }
            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                visible: text.length > 0
                text: root.caption
                size: 11
                lineHeight: 1.1
                color: root.theme.secondary
                wrapMode: Text.Wrap
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "notice"
                theme: root.theme
                visible: text.length > 0
                text: root.notice
                size: 11
                lineHeight: 1.1
                color: root.noticeColorName.length > 0 ? root.theme.named[root.noticeColorName] : root.theme.secondary
                wrapMode: Text.Wrap
            }
        }
        RowLayout {
            id: trailing

            Layout.fillWidth: root.contentShare >= 1
            Layout.maximumWidth: Math.round(root.width * root.contentShare)
            spacing: 8
        }
    }
}

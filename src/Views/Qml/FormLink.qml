import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A link to a page in the user's browser. No control underneath: those are spoken in a role of their own,
/// whatever role they are given.
Item {
    id: root

    required property Theme theme
    required property string text
    readonly property int padding: 6

    signal clicked

    implicitWidth: words.implicitWidth + 2 * padding
    implicitHeight: theme.hitTarget
    // The words stand flush with what other rows have there.
    Layout.rightMargin: -padding
    activeFocusOnTab: true

    Keys.onPressed: (event) => {
        event.accepted = event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space;
        if (event.accepted && !event.isAutoRepeat)
            root.clicked();
    }

    Accessible.role: Accessible.Link
    Accessible.name: root.text
    Accessible.focusable: true
    Accessible.onPressAction: root.clicked()

    Box {
        anchors.fill: parent
        radius: 6
        color: Qt.alpha(root.theme.foreground, pointer.pressed ? 0.1 : pointer.containsMouse ? 0.05 : 0)
        borderWidth: root.activeFocus ? 2 : 0
        borderColor: root.theme.focusRing
    }

    RowLayout {
        id: words

        anchors.centerIn: parent
        spacing: 5

        ReadOut {
            theme: root.theme
            text: root.text
            size: 13
            color: root.theme.accent
            font.underline: pointer.containsMouse || root.activeFocus
            Accessible.ignored: true
        }
        IconLabel {
            theme: root.theme
            symbol: "arrow.up.forward.square"
            size: 12
            color: root.theme.accent
        }
    }

    MouseArea {
        id: pointer

        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.clicked()
    }
}

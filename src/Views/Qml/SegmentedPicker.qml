pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// One of a few choices, all of them in view. Left and Right choose as well.
FocusScope {
    id: root

    required property Theme theme
    /// What is picked.
    required property string label
    required property var choices
    required property int selected

    signal chosen(index: int)

    implicitWidth: line.implicitWidth
    implicitHeight: Math.max(line.implicitHeight, theme.hitTarget)
    Accessible.role: Accessible.PageTabList
    Accessible.name: root.label

    function choose(index: int) {
        if (index < 0 || index >= choices.length)
            return;
        segments.itemAt(index).forceActiveFocus(Qt.TabFocusReason);
        root.chosen(index);
    }

    Keys.onLeftPressed: choose(selected - 1)
    Keys.onRightPressed: choose(selected + 1)

    Box {
        anchors.fill: line
        radius: 7
        color: root.theme.controlBackground
        borderColor: root.theme.controlBorder
    }

    RowLayout {
        id: line

        anchors.fill: parent
        spacing: 0

        Repeater {
            id: segments

            model: root.choices

            PressRadio {
                id: segment

                required property int index
                required property string modelData

                Layout.fillWidth: true
                Layout.fillHeight: true
                // As wide as its neighbours, whatever the words.
                Layout.preferredWidth: 1
                Layout.minimumWidth: implicitWidth
                objectName: "segment" + index
                text: modelData
                isSelected: index === root.selected
                implicitWidth: implicitContentWidth + 24
                implicitHeight: Math.max(implicitContentHeight + 10, root.theme.hitTarget)
                // One stop for the Tab key: the choice that holds.
                focusPolicy: isSelected ? Qt.StrongFocus : Qt.ClickFocus
                focus: isSelected
                onClicked: root.chosen(index)
                Accessible.name: qsTr("%1: %2").arg(root.label).arg(text)

                contentItem: ReadOut {
                    theme: root.theme
                    text: segment.text
                    size: 12
                    font.weight: segment.isSelected ? Font.DemiBold : Font.Normal
                    color: segment.isSelected ? root.theme.foreground : root.theme.secondary
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    Accessible.ignored: true
                }

                background: Item {
                    Box {
                        anchors.fill: parent
                        anchors.margins: 2
                        radius: 5
                        color: segment.isSelected ? Qt.alpha(root.theme.accent, segment.down ? 0.42 : 0.3)
                             : Qt.alpha(root.theme.foreground, segment.down ? 0.14 : segment.hovered ? 0.07 : 0)
                        borderWidth: segment.visualFocus ? 2 : 0
                        borderColor: root.theme.focusRing
                    }
                }
            }
        }
    }
}

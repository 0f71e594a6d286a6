pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// One of a few choices, in a list that opens. It shows `selected` and nothing else.
T.ComboBox {
    id: root

    required property Theme theme
    /// What is picked, for screen readers.
    required property string label
    property int selected: -1
    readonly property int choiceHeight: 30

    signal chosen(index: int)

    // Room for the longest choice, so that the list never cuts one off.
    implicitWidth: 190
    implicitHeight: 30
    leftPadding: 11
    rightPadding: 30
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    currentIndex: selected

    onActivated: (index) => {
        root.chosen(index);
        // Choosing has set it by itself.
        root.currentIndex = Qt.binding(() => root.selected);
    }

    // Return opens as Space does; in the list, the release of Return chooses.
    property bool opensOnRelease: false

    Keys.onPressed: (event) => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        event.accepted = isReturn && !root.popup.visible;
        if (event.accepted && !event.isAutoRepeat)
            root.opensOnRelease = true;
    }
    Keys.onReleased: (event) => {
        event.accepted = root.opensOnRelease && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter);
        if (!event.accepted)
            return;
        root.opensOnRelease = false;
        root.popup.open();
    }

    Accessible.role: Accessible.ComboBox
    Accessible.name: qsTr("%1: %2").arg(root.label).arg(root.displayText)
    Accessible.onPressAction: root.popup.open()

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    contentItem: ReadOut {
        theme: root.theme
        text: root.displayText
        size: 13
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    indicator: IconLabel {
        x: root.width - width - 8
        height: root.height
        theme: root.theme
        symbol: "chevron.up.chevron.down"
        size: 12
        color: root.theme.secondary
    }

    background: Box {
        radius: 6
        color: Qt.tint(root.theme.controlBackground,
                       Qt.alpha(root.theme.foreground, root.down ? 0.16 : root.hovered ? 0.07 : 0))
        borderWidth: root.visualFocus ? 2 : 1
        borderColor: root.visualFocus ? root.theme.focusRing : root.theme.controlBorder
    }

    delegate: T.ItemDelegate {
        id: choice

        required property int index
        required property string modelData

        width: ListView.view ? ListView.view.width : 0
        implicitHeight: root.choiceHeight
        leftPadding: 28
        rightPadding: 10
        highlighted: root.highlightedIndex === index
        hoverEnabled: true
        text: modelData

        Accessible.role: Accessible.ListItem
        Accessible.name: text
        Accessible.onPressAction: choice.clicked()

        contentItem: ReadOut {
            theme: root.theme
            text: choice.text
            size: 13
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        background: Box {
            radius: 5
            color: Qt.alpha(root.theme.accent, choice.highlighted ? 0.25 : 0)
        }

        IconLabel {
            x: 8
            height: choice.height
            theme: root.theme
            visible: choice.index === root.selected
            symbol: "checkmark"
            size: 12
        }
    }

    popup: T.Popup {
        y: root.height + 4
        width: root.width
        // Not by the list's own height: a list that has none yet makes no rows to have a height.
        height: Math.min(root.count * root.choiceHeight + topPadding + bottomPadding, 240)
        margins: 8
        padding: 5

        contentItem: ListView {
            clip: true
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex
        }

        background: Box {
            radius: 8
            color: root.theme.popupBackground
            borderColor: root.theme.controlBorder
        }
    }
}
